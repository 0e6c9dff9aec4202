#include "ZuTableModelCommon_p.h"
#include "compat/ZuVariantCompare.h"

#include <zucore/OldZuAbstractTableModel.h>

OldZuAbstractTableModel::OldZuAbstractTableModel(QObject *parent)
    : QAbstractTableModel(parent)
{
    setObjectName(QStringLiteral("OldZuAbstractTableModel"));
}

ZuAbstractDataObject *OldZuAbstractTableModel::dataObjectAtRow(const int &row) const
{
    if (row < 0 || row >= rowCount() || row >= legacyRows.size())
        return nullptr;
    return legacyRows.at(row).first;
}

ZuAbstractDataObject *OldZuAbstractTableModel::dataObjectAt(const QModelIndex &index) const
{
    return dataObjectAtRow(index.row());
}

int OldZuAbstractTableModel::rowCount(const QModelIndex &) const
{
    return legacyRows.size();
}

QVariant OldZuAbstractTableModel::data(const QModelIndex &index, int role) const
{
    if (role == ZuAbstractTableModel::ModelNameRole)
        return objectName();
    if (!index.isValid())
        return QVariant();

    switch (role) {
    case Qt::EditRole: {
        const ZuAbstractDataObject *object = dataObjectAt(index);
        if (!object || index.column() >= object->fieldCount())
            return QVariant();
        return object->data(index.column());
    }
    case ZuAbstractTableModel::ItemHintRole:
        // No ItemOptionsRole here to turn the hint off.
        if (ZuTableModelCommon::hasNote(*this, index))
            return ZuTableModelCommon::ItemHintAnswer;
        return QVariant();
    default:
        return ZuTableModelCommon::commonRoleAnswer(*this, index, role);
    }
}

bool OldZuAbstractTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !index.isValid())
        return false;
    // An equal value is accepted as done, unlike in the cell-pair model.
    if (ZuCompat::variantEqual(value, data(index, Qt::EditRole)))
        return true;
    ZuAbstractDataObject *object = dataObjectAt(index);
    if (!object)
        return false;
    setDataObjectValue(object, index.column(), value);
    emit dataChanged(index, index, {});
    return true;
}

bool OldZuAbstractTableModel::setDataObjectValue(ZuAbstractDataObject *object, const int &column,
                                                 const QVariant &value)
{
    return object->setData(column, value);
}

bool OldZuAbstractTableModel::insertRows(int row, int count, const QModelIndex &)
{
    if (count < 1 || row < 0 || row > rowCount())
        return false;
    beginInsertRows(QModelIndex(), row, row + count - 1);
    const int at = qMin(row, legacyRows.size());
    using Pair = QPair<ZuAbstractDataObject *, ZuAbstractDataObject *>;
    for (int i = 0; i < count; ++i)
        legacyRows.insert(at + i, Pair(createDataObject(), nullptr));
    endInsertRows();
    return true;
}

bool OldZuAbstractTableModel::removeRows(int row, int count, const QModelIndex &)
{
    if (count <= 0 || row < 0 || row + count > rowCount())
        return false;
    beginRemoveRows(QModelIndex(), row, row + count - 1);
    const int last = qMin(row + count, legacyRows.size()) - 1;
    for (int r = last; r >= row; --r) {
        const auto pair = legacyRows.takeAt(r);
        delete pair.first;
        delete pair.second;
    }
    endRemoveRows();
    return true;
}

Qt::ItemFlags OldZuAbstractTableModel::flags(const QModelIndex &index) const
{
    return ZuTableModelCommon::editableFlags(QAbstractTableModel::flags(index));
}

bool OldZuAbstractTableModel::submit()
{
    for (int row = 0; row < legacyRows.size(); ++row) {
        auto &pair = legacyRows[row];
        if (pair.second)
            *pair.second = *pair.first;
        else
            pair.second = cloneDataObject(pair.first);
    }
    return true;
}

void OldZuAbstractTableModel::revertRow(const int &row)
{
    if (row < 0 || row >= rowCount() || row >= legacyRows.size())
        return;
    const auto pair = legacyRows.at(row);
    if (!pair.second) {
        // Never submitted nor imported: the row is new and goes.
        removeRows(row, 1, QModelIndex());
        return;
    }
    if (*pair.first != *pair.second) {
        *pair.first = *pair.second;
        emitRowsChanged(row, row);
    }
}

void OldZuAbstractTableModel::revert()
{
    // From the end, so that removing a new row doesn't shift one still to come.
    for (int row = rowCount() - 1; row >= 0; --row)
        revertRow(row);
}

bool OldZuAbstractTableModel::copy(const QModelIndex &from, const QModelIndex &to)
{
    if (!from.isValid() || !to.isValid())
        return false;
    ZuAbstractDataObject *source = dataObjectAt(from);
    ZuAbstractDataObject *target = dataObjectAt(to);
    if (!source || !target)
        return false;
    *target = *source;
    emitRowsChanged(to.row(), to.row());
    return true;
}

int OldZuAbstractTableModel::itemIsEditable(const QModelIndex &) const
{
    return 1;
}

bool OldZuAbstractTableModel::itemIsValid(const QModelIndex &) const
{
    return true;
}

QString OldZuAbstractTableModel::itemInvalidReason(const QModelIndex &) const
{
    return ZuTableModelCommon::defaultInvalidReason();
}

void OldZuAbstractTableModel::emitRowsChanged(int first, int last)
{
    const int columns = columnCount();
    // Without columns there is no cell to name in the notification.
    if (columns > 0)
        emit dataChanged(index(first, 0), index(last, columns - 1), {});
}

void OldZuAbstractTableModel::setSnapshot(int row, ZuAbstractDataObject *snapshot)
{
    if (row < 0 || row >= legacyRows.size()) {
        delete snapshot;
        return;
    }
    // A deriving insertRows() may have given the row a snapshot already; the
    // model owns it, so it goes.
    ZuAbstractDataObject *old = legacyRows.at(row).second;
    legacyRows[row].second = snapshot;
    if (old != snapshot)
        delete old;
}

// --- import ----------------------------------------------------------------

template<class Fill> bool OldZuAbstractTableModel::importRows(int count, Fill fill)
{
    const int first = rowCount();
    if (!insertRows(first, count, QModelIndex()))
        return false;
    for (int i = 0; i < count; ++i) {
        ZuAbstractDataObject *object = dataObjectAtRow(first + i);
        if (!object)
            continue;
        fill(object, i);
        // Imported rows are not new: they keep their values through revert().
        setSnapshot(first + i, cloneDataObject(object));
    }
    emitRowsChanged(first, first + count - 1);
    return true;
}

bool OldZuAbstractTableModel::insertFromJsonObject(const QJsonObject &object)
{
    return importRows(1, [&](ZuAbstractDataObject *row, int) { row->fromJsonObject(object); });
}

bool OldZuAbstractTableModel::insertFromJsonArray(const QJsonArray &array)
{
    if (array.isEmpty())
        return false;
    return importRows(array.size(), [&](ZuAbstractDataObject *row, int i) {
        row->fromJsonObject(array.at(i).toObject());
    });
}

bool OldZuAbstractTableModel::insertFromFieldsMap(const QMap<QString, QVariant> &map)
{
    return importRows(1, [&](ZuAbstractDataObject *row, int) { row->fromFieldsMap(map); });
}

bool OldZuAbstractTableModel::insertFromFieldsMapList(const QList<QMap<QString, QVariant>> &list)
{
    if (list.isEmpty())
        return false;
    return importRows(list.size(),
                      [&](ZuAbstractDataObject *row, int i) { row->fromFieldsMap(list.at(i)); });
}

bool OldZuAbstractTableModel::insertFromStringsList(const QList<QStringList> &list)
{
    if (list.isEmpty())
        return false;
    return importRows(list.size(),
                      [&](ZuAbstractDataObject *row, int i) { row->fromStringList(list.at(i)); });
}

bool OldZuAbstractTableModel::insertFromStrings(const QStringList &strings)
{
    return importRows(1, [&](ZuAbstractDataObject *row, int) { row->fromStringList(strings); });
}
