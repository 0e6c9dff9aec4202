#include <zucore/ZuTreeItem.h>

ZuTreeItem::ZuTreeItem(const QList<Cell> &data, ZuTreeItem *parent)
    : itemData(data)
    , parentItem(parent)
{ }

ZuTreeItem::~ZuTreeItem()
{
    removeChildren();
}

ZuTreeItem *ZuTreeItem::child(int row)
{
    return childItems.value(row, nullptr);
}

int ZuTreeItem::childCount() const
{
    return childItems.size();
}

int ZuTreeItem::columnCount() const
{
    return itemData.size();
}

ZuTreeItem *ZuTreeItem::parent()
{
    return parentItem;
}

int ZuTreeItem::row() const
{
    if (!parentItem)
        return 0;
    return parentItem->childItems.indexOf(const_cast<ZuTreeItem *>(this));
}

int ZuTreeItem::childNumber() const
{
    return row();
}

QVariant ZuTreeItem::data(int column) const
{
    if (column < 0 || column >= itemData.size())
        return QVariant();
    return itemData.at(column).first;
}

QVariant ZuTreeItem::previousData(int column) const
{
    if (column < 0 || column >= itemData.size())
        return QVariant();
    return itemData.at(column).second;
}

bool ZuTreeItem::setData(int column, const QVariant &value, bool setPrevious)
{
    if (column < 0 || column >= itemData.size())
        return false;
    Cell &cell = itemData[column];
    if (setPrevious) {
        cell.first = value;
        cell.second = value;
        return true;
    }
    if (cell.first == value)
        return false;
    cell.first = value;
    return true;
}

bool ZuTreeItem::setPreviousData(int column, const QVariant &value)
{
    if (column >= 0 && column < itemData.size())
        itemData[column].second = value;
    return true;
}

bool ZuTreeItem::insertChildren(int position, int count, int columns)
{
    if (position < 0 || position > childItems.size())
        return false;
    if (count < 1)
        return true;
    QList<Cell> cells;
    cells.reserve(columns);
    for (int c = 0; c < columns; ++c)
        cells.append(Cell());
    for (int i = 0; i < count; ++i)
        childItems.insert(position, new ZuTreeItem(cells, this));
    return true;
}

bool ZuTreeItem::removeChildren(int position, int count)
{
    // In 64 bits, so that a huge count can't overflow past the check.
    if (position < 0 || qint64(position) + count > childItems.size())
        return false;
    if (count < 1)
        return true;
    for (int i = 0; i < count; ++i)
        delete childItems.takeAt(position);
    return true;
}

void ZuTreeItem::removeChildren()
{
    // Taken out of the list first, so that no deleted pointer stays reachable.
    const QList<ZuTreeItem *> children = std::move(childItems);
    childItems = QList<ZuTreeItem *>();
    qDeleteAll(children);
}

bool ZuTreeItem::insertColumns(int position, int columns)
{
    if (position < 0 || position > itemData.size())
        return false;
    for (int c = 0; c < columns; ++c)
        itemData.insert(position, Cell());
    for (ZuTreeItem *child : qAsConst(childItems))
        child->insertColumns(position, columns);
    return true;
}

bool ZuTreeItem::removeColumns(int position, int columns)
{
    if (position < 0 || qint64(position) + columns > itemData.size())
        return false;
    for (int c = 0; c < columns; ++c)
        itemData.removeAt(position);
    for (ZuTreeItem *child : qAsConst(childItems))
        child->removeColumns(position, columns);
    return true;
}

bool ZuTreeItem::setParent(ZuTreeItem *parent, int position)
{
    if (parent == parentItem)
        return false;
    if (parentItem)
        parentItem->childItems.removeOne(this);
    parentItem = parent;
    if (parent)
        parent->childItems.insert(qBound(0, position, parent->childItems.size()), this);
    return true;
}

bool ZuTreeItem::movePossible(int, int, int)
{
    return false;
}

void ZuTreeItem::moveChildren(int, int, int) { }
