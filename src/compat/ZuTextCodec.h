#pragma once
// A text stream's encoding: a QTextCodec in Qt 5, a QStringConverter in Qt 6.

#include <QtGlobal>
#include <QByteArray>
#include <QString>
#include <QTextStream>

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

} // namespace ZuCompat
