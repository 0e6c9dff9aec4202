#pragma once
// Qt 6's QVariant::isNull() is true only for an empty variant or a null
// pointer; Qt 5's also asks the held value (a null QString, QByteArray, date,
// ...). The models mark a never-submitted cell by a null value in Qt 5's sense.

#include <QVariant>
#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QByteArray>
#include <QChar>
#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTime>
#endif

namespace ZuCompat {

/// Whether @p value is null as Qt 5's QVariant::isNull() answers.
inline bool isNull(const QVariant &value)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    if (value.isNull())
        return true;
    switch (value.typeId()) {
    case QMetaType::QString:
        return static_cast<const QString *>(value.constData())->isNull();
    case QMetaType::QByteArray:
        return static_cast<const QByteArray *>(value.constData())->isNull();
    case QMetaType::QChar:
        return static_cast<const QChar *>(value.constData())->isNull();
    case QMetaType::QDate:
        return static_cast<const QDate *>(value.constData())->isNull();
    case QMetaType::QTime:
        return static_cast<const QTime *>(value.constData())->isNull();
    case QMetaType::QDateTime:
        return static_cast<const QDateTime *>(value.constData())->isNull();
    default:
        return false;
    }
#else
    return value.isNull();
#endif
}

} // namespace ZuCompat
