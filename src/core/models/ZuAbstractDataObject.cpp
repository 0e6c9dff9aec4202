#include "compat/ZuVariantCompare.h"

#include <zucore/Logger.h>
#include <zucore/ZuAbstractDataObject.h>

#include <QJsonValue>

ZuAbstractDataObject::ZuAbstractDataObject(QObject *parent)
    : QObject(parent)
{ }

ZuAbstractDataObject::ZuAbstractDataObject(const ZuAbstractDataObject *other, QObject *parent)
    : QObject(parent)
{
    // No fields yet, so nothing moves; a deriving class copies once it has laid
    // out its own.
    if (other)
        ZuAbstractDataObject::copy(*other);
}

ZuAbstractDataObject::~ZuAbstractDataObject() = default;

bool ZuAbstractDataObject::operator==(const ZuAbstractDataObject &other) const
{
    return compare(other);
}

bool ZuAbstractDataObject::operator!=(const ZuAbstractDataObject &other) const
{
    return !compare(other);
}

void ZuAbstractDataObject::operator=(const ZuAbstractDataObject &other)
{
    copy(other);
}

QVariant ZuAbstractDataObject::data(int column) const
{
    if (column < 0 || column >= fieldCount() || column >= fieldValues.size())
        return QVariant();
    return fieldValues.at(column);
}

QString ZuAbstractDataObject::fieldName(int column) const
{
    return QStringLiteral("Field%1").arg(column);
}

QStringList ZuAbstractDataObject::fieldNames() const
{
    QStringList names;
    const int count = fieldCount();
    names.reserve(count);
    for (int i = 0; i < count; ++i)
        names.append(fieldName(i));
    return names;
}

int ZuAbstractDataObject::fieldCount() const
{
    return fieldValues.size();
}

bool ZuAbstractDataObject::setData(int column, const QVariant &value)
{
    if (column < 0 || column >= fieldCount() || column >= fieldValues.size())
        return false;
    fieldValues[column] = value;
    return true;
}

void ZuAbstractDataObject::fromJsonObject(const QJsonObject &object)
{
    if (object.isEmpty())
        return;
    const int count = fieldCount();
    for (int i = 0; i < count; ++i) {
        const auto it = object.constFind(fieldName(i));
        if (it != object.constEnd())
            fieldValues[i] = it.value().toVariant();
    }
}

QJsonObject ZuAbstractDataObject::toJsonObject()
{
    QJsonObject object;
    const int count = fieldCount();
    for (int i = 0; i < count; ++i)
        object.insert(fieldName(i), QJsonValue::fromVariant(fieldValues.at(i)));
    return object;
}

void ZuAbstractDataObject::fromFieldsMap(const QMap<QString, QVariant> &map)
{
    const int count = fieldCount();
    if (count != map.size()) {
        LOG_WARNING(QStringLiteral("<%3>: Field Count (%1) != Map Count (%2)")
                        .arg(count)
                        .arg(map.size())
                        .arg(objectName()));
    }
    if (map.isEmpty())
        return;
    for (int i = 0; i < count; ++i) {
        const auto it = map.constFind(fieldName(i));
        if (it != map.constEnd())
            fieldValues[i] = it.value();
    }
}

QMap<QString, QVariant> ZuAbstractDataObject::toFieldsMap() const
{
    QMap<QString, QVariant> map;
    const int count = fieldCount();
    for (int i = 0; i < count; ++i)
        map.insert(fieldName(i), fieldValues.at(i));
    return map;
}

void ZuAbstractDataObject::fromStringList(const QStringList &strings)
{
    const int count = fieldCount();
    if (count != strings.size()) {
        LOG_WARNING(QStringLiteral("<%3>: Field Count (%1) != Strings Count (%2)")
                        .arg(count)
                        .arg(strings.size())
                        .arg(objectName()));
        // Written out by hand: QDebug's own form of a list differs between Qt builds.
        QString list;
        {
            QDebug debug(&list);
            debug.nospace() << '(';
            for (int i = 0; i < strings.size(); ++i)
                debug << (i ? ", " : "") << strings.at(i);
            debug << ')';
        }
        LOG_DEBUG(list);
    }
    const int n = qMin(count, strings.size());
    for (int i = 0; i < n; ++i)
        fieldValues[i] = QVariant(strings.at(i));
}

QStringList ZuAbstractDataObject::toStringList() const
{
    QStringList strings;
    const int count = fieldCount();
    strings.reserve(count);
    for (int i = 0; i < count; ++i)
        strings.append(fieldValues.at(i).toString());
    return strings;
}

bool ZuAbstractDataObject::compare(const ZuAbstractDataObject &other) const
{
    const int count = fieldCount();
    for (int i = 0; i < count; ++i) {
        if (!ZuCompat::variantEqual(data(i), other.data(i)))
            return false;
    }
    return true;
}

void ZuAbstractDataObject::copy(const ZuAbstractDataObject &other)
{
    const int count = fieldCount();
    for (int i = 0; i < count; ++i)
        fieldValues[i] = other.data(i);
}
