#pragma once
// A text stream's encoding: a QTextCodec in Qt 5, a QStringConverter in Qt 6.

#include <QByteArray>
#include <QString>
#include <QStringView>
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

/// The bytes that @p stream would write for the @p length characters at @p text, in @p out,
/// which keeps its capacity from call to call.
inline void encodeAsStream(const QTextStream &stream, const QChar *text, int length,
                           QByteArray &out)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    const bool utf8 = stream.encoding() == QStringConverter::Utf8;
#else
    const bool utf8 = stream.codec()->mibEnum() == 106;
#endif
    if (!utf8) {
        out = encodeAsStream(stream, QString(text, length)); // rare: a copy is fine
        return;
    }
    // ASCII, nearly every log line, is its own UTF-8: narrowed here into the kept buffer in one
    // pass (which compilers turn into vector code), with one test at the end for anything else.
    if (out.size() != length)
        out.resize(length);
    char *const bytes = out.data();
    const char16_t *const units = reinterpret_cast<const char16_t *>(text);
    char16_t high = 0;
    for (int k = 0; k < length; ++k) {
        high |= units[k];
        bytes[k] = char(units[k]);
    }
    if (high >= 0x80)
        out = QStringView(text, length).toUtf8();
}

} // namespace ZuCompat
