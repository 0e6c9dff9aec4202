#include "ZuProxyShared_p.h"

#include <zucore/ZuSortFilterTreeProxyModel.h>

namespace {

// Answered in place of the display role in the selection column when asked to.
constexpr int SelectionRole = Qt::UserRole + 1;

} // namespace

class ZuSortFilterTreeProxyModelPrivate
{
public:
    explicit ZuSortFilterTreeProxyModelPrivate(ZuSortFilterTreeProxyModel *proxy)
        : q(proxy)
    { }

    ZuSortFilterTreeProxyModel *q;
    int selectionRoleColumn = 1;
    bool useSelectionRole = false;
    bool searchInverted = false;
    QList<int> searchColumns;
    QString searchText = QStringLiteral("");
    QList<int> sortColumns;

    ZuProxyShared::PatternCache patterns;
    // The sort columns changed since the last sort(): the same sort() must still re-sort.
    bool sortColumnsChanged = false;
    QMetaObject::Connection sourceDataChanged;
};

ZuSortFilterTreeProxyModel::ZuSortFilterTreeProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent)
    , d(new ZuSortFilterTreeProxyModelPrivate(this))
{
    setDynamicSortFilter(true);
    setSortCaseSensitivity(Qt::CaseInsensitive);
}

ZuSortFilterTreeProxyModel::~ZuSortFilterTreeProxyModel() = default;

void ZuSortFilterTreeProxyModel::setSourceModel(QAbstractItemModel *source)
{
    QObject::disconnect(d->sourceDataChanged);
    QSortFilterProxyModel::setSourceModel(source);
    d->sourceDataChanged = ZuProxyShared::placeRowsOnEdit(this, source, &d->sortColumns);
}

void ZuSortFilterTreeProxyModel::sort(int column, Qt::SortOrder order)
{
    // The base class ignores a sort by the column and order it already has, but the sort
    // columns may have changed since.
    const bool same = column == sortColumn() && order == sortOrder();
    QSortFilterProxyModel::sort(column, order);
    if (same && column >= 0 && d->sortColumnsChanged && dynamicSortFilter())
        invalidate();
    d->sortColumnsChanged = false;
}

void ZuSortFilterTreeProxyModel::setSortColumns(const QList<int> &columns)
{
    d->sortColumns = columns;
    d->sortColumnsChanged = true;
}

QList<int> ZuSortFilterTreeProxyModel::sortColumns() const
{
    return d->sortColumns;
}

void ZuSortFilterTreeProxyModel::addSortColumn(int column)
{
    d->sortColumns.append(column);
    d->sortColumnsChanged = true;
}

void ZuSortFilterTreeProxyModel::addSortColumns(const QList<int> &columns)
{
    d->sortColumns.append(columns);
    d->sortColumnsChanged = true;
}

void ZuSortFilterTreeProxyModel::clearSortColumns()
{
    d->sortColumns.clear();
    d->sortColumnsChanged = true;
}

void ZuSortFilterTreeProxyModel::setSearchColumns(const QList<int> &columns)
{
    d->searchColumns = columns;
}

QList<int> ZuSortFilterTreeProxyModel::searchColumns() const
{
    return d->searchColumns;
}

void ZuSortFilterTreeProxyModel::addSearchColumn(int column)
{
    d->searchColumns.append(column);
}

void ZuSortFilterTreeProxyModel::addSearchColumns(const QList<int> &columns)
{
    d->searchColumns.append(columns);
}

void ZuSortFilterTreeProxyModel::clearSearchColumns()
{
    d->searchColumns.clear();
}

bool ZuSortFilterTreeProxyModel::useSelectionRole() const
{
    return d->useSelectionRole;
}

void ZuSortFilterTreeProxyModel::setUseSelectionRole(bool use)
{
    d->useSelectionRole = use;
}

int ZuSortFilterTreeProxyModel::selectionRoleColumn() const
{
    return d->selectionRoleColumn;
}

void ZuSortFilterTreeProxyModel::setSelectionRoleColumn(int column)
{
    d->selectionRoleColumn = column;
}

void ZuSortFilterTreeProxyModel::setSearchString(const QString &text, bool inverted)
{
    if (text == d->searchText && inverted == d->searchInverted)
        return;
    d->searchText = text;
    d->searchInverted = inverted;
    // One text at a time: the old pattern is of no further use.
    d->patterns.clear();
    invalidateFilter();
    emit dataChanged(QModelIndex(), QModelIndex());
}

QString ZuSortFilterTreeProxyModel::searchString() const
{
    return d->searchText;
}

QModelIndex ZuSortFilterTreeProxyModel::matchValue(const QVariant &value, int column,
                                                   int role) const
{
    const QModelIndex start = index(0, column, QModelIndex());
    if (!start.isValid())
        return QModelIndex();
    const QModelIndexList hits
        = match(start, role, value, 1, Qt::MatchExactly | Qt::MatchRecursive);
    return hits.value(0);
}

QVariant ZuSortFilterTreeProxyModel::data(const QModelIndex &index, int role) const
{
    if (d->useSelectionRole && index.column() == d->selectionRoleColumn && role == Qt::DisplayRole)
        return QSortFilterProxyModel::data(index, SelectionRole);
    return QSortFilterProxyModel::data(index, role);
}

bool ZuSortFilterTreeProxyModel::filterAcceptsRow(int sourceRow,
                                                  const QModelIndex &sourceParent) const
{
    if (d->searchText.isEmpty())
        return true;
    const QAbstractItemModel *source = sourceModel();
    if (!source)
        return true;
    const QModelIndex row = source->index(sourceRow, 0, sourceParent);
    if (!row.isValid())
        return true;
    const int children = source->rowCount(row);
    for (int child = 0; child < children; ++child) {
        if (filterAcceptsRow(child, row))
            return true;
    }
    // The proxy's column count is the source's, columns mapping one to one;
    // asking the proxy here would make it build the mapping that is being
    // filtered, which calls this function again without end.
    const int columns = source->columnCount(sourceParent);
    for (int column = 0; column < columns; ++column) {
        if (!d->searchColumns.isEmpty() && !d->searchColumns.contains(column))
            continue;
        const QString text
            = ZuProxyShared::displayText(source->index(sourceRow, column, sourceParent));
        if (d->patterns.matches(d->searchText, text))
            return !d->searchInverted;
    }
    return d->searchInverted;
}

bool ZuSortFilterTreeProxyModel::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const QAbstractItemModel *source = sourceModel();
    if (!source)
        return false;
    return ZuProxyShared::naturalLessThan(source, left, right, d->sortColumns, left.parent(),
                                          right.parent());
}
