#include "compat/ZuVariant.h"

#include <zucore/Logger.h>
#include <zucore/ZuAbstractTableModel.h>
#include <zucore/ZuTreeModel.h>

#include <QElapsedTimer>

namespace {

using Roles = ZuAbstractTableModel;

const int ItemHintAnswer = 13;
// A refresh this slow (in ms) is flagged in the log.
const qint64 SlowRefresh = 100;

} // namespace

ZuTreeModel::ZuTreeModel(QFlags<ZuCore::ModelOption> options, QObject *parent)
    : QAbstractItemModel(parent)
    , options(options)
{ }

ZuTreeModel::~ZuTreeModel()
{
    delete rootItem;
}

bool ZuTreeModel::ownIndex(const QModelIndex &index) const
{
    return index.isValid() && index.model() == this;
}

ZuTreeItem *ZuTreeModel::getItem(const QModelIndex &index) const
{
    if (ownIndex(index)) {
        if (auto *item = static_cast<ZuTreeItem *>(index.internalPointer()))
            return item;
    }
    return rootItem;
}

QModelIndex ZuTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (ownIndex(parent) && parent.column() != 0)
        return QModelIndex();
    ZuTreeItem *parentItem = getItem(parent);
    ZuTreeItem *child = parentItem ? parentItem->child(row) : nullptr;
    if (!child)
        return QModelIndex();
    return createIndex(row, column, child);
}

QModelIndex ZuTreeModel::parent(const QModelIndex &index) const
{
    if (!ownIndex(index))
        return QModelIndex();
    ZuTreeItem *parentItem = getItem(index)->parent();
    if (!parentItem || parentItem == rootItem)
        return QModelIndex();
    return createIndex(parentItem->row(), 0, parentItem);
}

int ZuTreeModel::rowCount(const QModelIndex &parent) const
{
    const ZuTreeItem *item = getItem(parent);
    return item ? item->childCount() : 0;
}

bool ZuTreeModel::hasChildren(const QModelIndex &parent) const
{
    if (ownIndex(parent) && parent.column() != 0)
        return false;
    return rowCount(parent) > 0;
}

int ZuTreeModel::columnCount(const QModelIndex &) const
{
    return rootItem ? rootItem->columnCount() : 0;
}

Qt::ItemFlags ZuTreeModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    // Every cell is editable to a view; the per-cell answer is ItemEditableRole.
    return QAbstractItemModel::flags(index) | Qt::ItemIsEditable;
}

QVariant ZuTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || !rootItem)
        return QVariant();
    return rootItem->data(section);
}

bool ZuTreeModel::setHeaderData(int section, Qt::Orientation orientation, const QVariant &value,
                                int role)
{
    if (role != Qt::EditRole || orientation != Qt::Horizontal || !rootItem)
        return false;
    if (!rootItem->setData(section, value, false))
        return false;
    emit headerDataChanged(Qt::Horizontal, section, section);
    return true;
}

bool ZuTreeModel::readOnly() const
{
    return options.testFlag(ZuCore::ReadOnly);
}

void ZuTreeModel::setReadOnly(bool readOnly)
{
    options.setFlag(ZuCore::ReadOnly, readOnly);
}

bool ZuTreeModel::isDirty() const
{
    return dirty;
}

bool ZuTreeModel::isDirty(const QModelIndex &index) const
{
    if (!ownIndex(index))
        return false;
    const ZuTreeItem *item = getItem(index);
    return item->data(index.column()) != item->previousData(index.column());
}

int ZuTreeModel::itemIsEditable(const QModelIndex &index) const
{
    return (readOnly() || !index.isValid()) ? 0 : 1;
}

bool ZuTreeModel::itemIsValid(const QModelIndex &) const
{
    return true;
}

QString ZuTreeModel::itemInvalidReason(const QModelIndex &) const
{
    return QStringLiteral("No reason given - reimp ZuTreeModel::itemInvalidReason");
}

QVariant ZuTreeModel::data(const QModelIndex &index, int role) const
{
    // The model-wide roles answer for any index, even an invalid one.
    if (role == Roles::ModelNameRole)
        return objectName();
    if (role == Roles::ModelOptionsRole)
        return int(options);
    if (!ownIndex(index))
        return QVariant();

    switch (role) {
    case Qt::DisplayRole:
        return data(index, Qt::EditRole);
    case Qt::EditRole:
        return getItem(index)->data(index.column());
    case Roles::PreviousValueRole:
        return getItem(index)->previousData(index.column());
    case Roles::ItemHintRole: {
        if (data(index, Roles::ItemNoteRole).toString().isEmpty())
            return QVariant();
        const int itemOptions = data(index, Roles::ItemOptionsRole).toInt();
        if ((itemOptions & 1) && !(itemOptions & 4))
            return QVariant();
        return ItemHintAnswer;
    }
    case Roles::ItemOptionsRole:
        return (options.testFlag(ZuCore::ModelOption8) ? 2 : 0)
            + (options.testFlag(ZuCore::ModelOption16) ? 1 : 0);
    case Roles::ItemEditableRole:
        return itemIsEditable(index);
    case Roles::ItemValidRole:
        return itemIsValid(index);
    case Roles::RowValidRole: {
        const QModelIndex parentIndex = parent(index);
        const int columns = columnCount();
        for (int column = 0; column < columns; ++column) {
            if (!data(this->index(index.row(), column, parentIndex), Roles::ItemValidRole).toBool())
                return false;
        }
        return true;
    }
    case Roles::ItemEmptyTextRole:
        return QStringLiteral("");
    default:
        return QVariant();
    }
}

bool ZuTreeModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole && role != Roles::PreviousValueRole)
        return false;
    // An invalid index leads to the root with no column, where nothing changes.
    ZuTreeItem *item = getItem(index);
    const int column = ownIndex(index) ? index.column() : -1;
    if (!item)
        return role == Roles::PreviousValueRole;
    if (role == Roles::PreviousValueRole)
        return item->setPreviousData(column, value);
    if (!item->setData(column, value, false))
        return false;
    emit dataChanged(index, index);
    dirty = true;
    return true;
}

bool ZuTreeModel::insertRows(int position, int rows, const QModelIndex &parent)
{
    if (position < 0 || rows < 0 || !rootItem || (parent.isValid() && !ownIndex(parent)))
        return false;
    ZuTreeItem *parentItem = getItem(parent);
    if (rows == 0) // nothing to tell a view about
        return parentItem->insertChildren(position, rows, rootItem->columnCount());
    beginInsertRows(parent, position, position + rows - 1);
    const bool ok = parentItem->insertChildren(position, rows, rootItem->columnCount());
    endInsertRows();
    dirty = true;
    return ok;
}

bool ZuTreeModel::removeRows(int position, int rows, const QModelIndex &parent)
{
    LOG_DEBUG() << position << rows << parent.data(Qt::DisplayRole);
    if (rows == 0)
        return true;
    if (position < 0 || rows < 0 || !rootItem || (parent.isValid() && !ownIndex(parent)))
        return false;
    ZuTreeItem *parentItem = getItem(parent);
    beginRemoveRows(parent, position, position + rows - 1);
    const bool ok = parentItem->removeChildren(position, rows);
    endRemoveRows();
    dirty = true;
    return ok;
}

bool ZuTreeModel::moveRows(const QModelIndex &sourceParent, int sourceRow, int count,
                           const QModelIndex &destinationParent, int destinationChild)
{
    if (count <= 0 || !rootItem)
        return false;
    if ((sourceParent.isValid() && !ownIndex(sourceParent))
        || (destinationParent.isValid() && !ownIndex(destinationParent)))
        return false;
    ZuTreeItem *from = getItem(sourceParent);
    ZuTreeItem *to = getItem(destinationParent);
    if (from == to || sourceRow < 0 || qint64(sourceRow) + count > from->childCount())
        return false;
    if (destinationChild < 0 || destinationChild > to->childCount())
        return false;
    const QList<ZuTreeItem *> moving = from->childItems.mid(sourceRow, count);
    // The destination may not lie in a moved subtree: the tree would lose a branch in a cycle.
    for (const ZuTreeItem *ancestor = to; ancestor; ancestor = ancestor->parentItem) {
        if (moving.contains(const_cast<ZuTreeItem *>(ancestor)))
            return false;
    }
    if (!beginMoveRows(sourceParent, sourceRow, sourceRow + count - 1, destinationParent,
                       destinationChild))
        return false;
    for (int i = 0; i < count; ++i)
        moving.at(i)->setParent(to, destinationChild + i);
    endMoveRows();
    dirty = true;
    return true;
}

bool ZuTreeModel::insertColumns(int position, int columns, const QModelIndex &parent)
{
    if (position < 0 || columns < 0 || !rootItem || (parent.isValid() && !ownIndex(parent)))
        return false;
    if (columns == 0)
        return rootItem->insertColumns(position, columns);
    beginInsertColumns(parent, position, position + columns - 1);
    const bool ok = rootItem->insertColumns(position, columns);
    endInsertColumns();
    return ok;
}

bool ZuTreeModel::removeColumns(int position, int columns, const QModelIndex &parent)
{
    if (position < 0 || columns < 0 || !rootItem || (parent.isValid() && !ownIndex(parent)))
        return false;
    if (columns == 0)
        return rootItem->removeColumns(position, columns);
    beginRemoveColumns(parent, position, position + columns - 1);
    const bool ok = rootItem->removeColumns(position, columns);
    endRemoveColumns();
    if (rootItem->columnCount() == 0)
        removeRows(0, rowCount(QModelIndex()), QModelIndex());
    return ok;
}

void ZuTreeModel::clear()
{
    dirty = false;
    const int rows = rowCount(QModelIndex());
    if (rows != 0)
        removeRows(0, rows, QModelIndex());
}

void ZuTreeModel::setupModelData()
{
    LOG_WARNING() << objectName() << "ZuTreeModel::setupModelData() Not Implemented!";
}

void ZuTreeModel::refresh()
{
    QElapsedTimer timer;
    timer.start();
    LOG_DEBUG(QStringLiteral("<T======== %1::refresh()").arg(objectName()));
    beginResetModel();
    clear();
    setupModelData();
    endResetModel();
    const int rows = rowCount(QModelIndex());
    const QString message = QStringLiteral("========T> %1 Finished. Time=%2ms Rows=%3")
                                .arg(objectName())
                                .arg(timer.elapsed())
                                .arg(rows);
    if (timer.elapsed() >= SlowRefresh)
        LOG_WARNING().noquote() << message << "*** Potentially slow Tree Refresh!";
    else
        LOG_TRACE(message);
}

// --- editing -----------------------------------------------------------------

bool ZuTreeModel::copy(const QModelIndex &source, const QModelIndex &target)
{
    if (!ownIndex(source) || !ownIndex(target))
        return false;
    ZuTreeItem *from = getItem(source);
    ZuTreeItem *to = getItem(target);
    const int columns = columnCount();
    for (int column = 0; column < columns; ++column)
        to->setData(column, from->data(column), false);
    // Without columns there is no cell to name in the notification.
    if (columns > 0) {
        const QModelIndex parentIndex = target.parent();
        emit dataChanged(index(target.row(), 0, parentIndex),
                         index(target.row(), columns - 1, parentIndex));
    }
    return true;
}

void ZuTreeModel::submitRow(int row, const QModelIndex &parent)
{
    LOG_INFO() << "Submit Row" << row << parent.row() << parent.data(Qt::DisplayRole);
    ZuTreeItem *item = getItem(index(row, 0, parent));
    if (!item)
        return;
    const int columns = columnCount();
    for (int column = 0; column < columns; ++column)
        item->setPreviousData(column, item->data(column));
}

void ZuTreeModel::submitRows(const QModelIndex &index)
{
    LOG_INFO() << "Submit Rows" << index.row() << index.data(Qt::DisplayRole);
    if (ownIndex(index))
        submitRow(index.row(), index.parent());
    const int rows = rowCount(index);
    for (int r = 0; r < rows; ++r)
        submitRows(this->index(r, 0, index));
}

bool ZuTreeModel::submit()
{
    submitRows(index(0, 0, QModelIndex()));
    const bool wasDirty = dirty;
    emit dataSubmitted(wasDirty);
    dirty = false;
    return true;
}

void ZuTreeModel::revertRow(int row, const QModelIndex &parent)
{
    LOG_DEBUG() << row << parent;
    ZuTreeItem *item = getItem(index(row, 0, parent));
    if (!item)
        return;
    const int columns = columnCount();
    bool changed = false;
    for (int column = 0; column < columns; ++column) {
        const QVariant previous = item->previousData(column);
        // A null previous value marks a row that was never submitted.
        if (ZuCompat::isNull(previous)) {
            removeRows(row, 1, parent);
            return;
        }
        if (item->data(column) != previous) {
            item->setData(column, previous, false);
            changed = true;
        }
    }
    if (changed)
        emit dataChanged(index(row, 0, parent), index(row, columns - 1, parent));
}

void ZuTreeModel::revertRows(const QModelIndex &index)
{
    LOG_DEBUG() << index;
    if (ownIndex(index)) {
        // The row may go (a new row), and its subtree with it.
        const QPersistentModelIndex row(index);
        revertRow(index.row(), index.parent());
        if (!row.isValid())
            return;
    }
    for (int r = rowCount(index) - 1; r >= 0; --r)
        revertRows(this->index(r, 0, index));
}

void ZuTreeModel::revert()
{
    LOG_INFO() << "Revert.";
    revertRows(index(0, 0, QModelIndex()));
    dirty = false;
}

// --- ZuTreeRowEditModel --------------------------------------------------------

ZuTreeRowEditModel::ZuTreeRowEditModel(QObject *parent)
    : ZuTreeModel({}, parent)
{ }

bool ZuTreeRowEditModel::submit()
{
    return true;
}

void ZuTreeRowEditModel::submitRow(int row, const QModelIndex &parent)
{
    ZuTreeModel::submitRow(row, parent);
    const bool wasDirty = dirty;
    emit dataSubmitted(wasDirty);
    dirty = false;
}
