#pragma once
// Binary JSON: part of QJsonDocument in Qt 5, of Qt5Compat's QBinaryJson later.
// Both write the same "qbjs" image, so a file saved by one build reads in the other.

#include <QByteArray>
#include <QJsonDocument>
#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QBinaryJson>
#endif

namespace ZuCompat {

inline QByteArray toBinaryJson(const QJsonDocument &document)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QBinaryJson::toBinaryData(document);
#else
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return document.toBinaryData();
    QT_WARNING_POP
#endif
}

/// Reads a binary JSON image with validation on; a damaged image gives a null document.
inline QJsonDocument fromBinaryJson(const QByteArray &data)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QBinaryJson::fromBinaryData(data, QBinaryJson::Validate);
#else
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return QJsonDocument::fromBinaryData(data, QJsonDocument::Validate);
    QT_WARNING_POP
#endif
}

} // namespace ZuCompat
