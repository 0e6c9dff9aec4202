#pragma once
// qChecksum takes (pointer, length) in Qt 5 and a byte view in Qt 6.

#include <QByteArray>
#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QByteArrayView>
#endif

namespace ZuCompat {

/// Qt's CRC-16 (ISO 3309, qChecksum's default) of @p data.
inline quint16 checksum16(const QByteArray &data)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return qChecksum(QByteArrayView(data));
#else
    return qChecksum(data.constData(), uint(data.size()));
#endif
}

} // namespace ZuCompat
