#pragma once
// A text stream's encoding: a QTextCodec in Qt 5, a QStringConverter in Qt 6.

#include <QByteArray>
#include <QString>
#include <QTextStream>
#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QStringEncoder>
#else
#include <QTextCodec>
#endif

namespace ZuCompat {

/// Makes @p stream read and write UTF-8 without a byte order mark.
inline void setUtf8(QTextStream &stream)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    stream.setEncoding(QStringConverter::Utf8);
#else
    stream.setCodec("UTF-8");
#endif
    stream.setGenerateByteOrderMark(false);
}

/// The bytes that @p stream would write for @p text, in the stream's encoding.
inline QByteArray encodeAsStream(const QTextStream &stream, const QString &text)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    if (stream.encoding() == QStringConverter::Utf8)
        return text.toUtf8();
    QStringEncoder encoder(stream.encoding());
    return encoder.encode(text);
#else
    QTextCodec *const codec = stream.codec();
    // UTF-8, the usual case, takes QString's vectorised encoder.
    return codec->mibEnum() == 106 ? text.toUtf8() : codec->fromUnicode(text);
#endif
}

} // namespace ZuCompat
