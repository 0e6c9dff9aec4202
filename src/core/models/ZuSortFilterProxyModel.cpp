#include "ZuProxyShared_p.h"

#include <zucore/Logger.h>
#include <zucore/ZuSortFilterProxyModel.h>

#include <QFont>
#include <QMap>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Answered in place of the display role in the selection column when asked to.
constexpr int SelectionRole = Qt::UserRole + 1;

} // namespace

class ZuSortFilterProxyModelPrivate
{
public:
    explicit ZuSortFilterProxyModelPrivate(ZuSortFilterProxyModel *proxy)
        : q(proxy)
    { }

    bool matches(const QString &pattern, const QModelIndex &cell)
    {
        return patterns.matches(pattern, cell.model()->data(cell, Qt::DisplayRole).toString());
    }

    int selectionRoleColumn = 1;
    bool notAssignedRowEnabled = false;
    bool useSelectionRole = false;
    bool searchInverted = false;
    QString notAssignedText = QStringLiteral("Not Assigned");
    int filterMode = ZuSortFilterProxyModel::orFilterMode;
    QMap<int, QString> filterFixedStrings;
    QMap<int, QString> searchStrings;
    QList<int> searchColumns;
    QList<int> sortColumns;
    ZuSortFilterProxyModel *q;

    ZuProxyShared::PatternCache patterns;

    // The sort columns changed since the last sort(): the same sort() must still re-sort.
    bool sortColumnsChanged = false;
    QMetaObject::Connection sourceDataChanged;

    // The place of every source row in the order of the sort columns, worked out once for a
    // whole sort from display texts read once per row, instead of reading two rows' texts for
    // every comparison. Rows that tie share a rank, so that the base class's stable sort keeps
    // them in the order it would keep them anyway. Filled only while sortNow() runs, for the
    // rows under the source's root: the proxy is flat, the base class keeps no other mapping.
    struct SortRanks
    {
        const QAbstractItemModel *source = nullptr;
        int column = -1; // the column lessThan() is given when there are no sort columns
        QVector<int> ranks;
    } sortRanks;

    // Sorts (or, with the mapping gone, builds the sorted mapping) at once, with the ranks
    // worked out ahead. @p sort is what makes the base class sort.
    template<typename Sort> void sortNow(int column, Sort sort);
    void rankRows(int column);
    const int *rankOf(const QModelIndex &index) const
    {
        if (!sortRanks.source || index.model() != sortRanks.source
            || uint(index.row()) >= uint(sortRanks.ranks.size())
            || (sortColumns.isEmpty() && index.column() != sortRanks.column))
            return nullptr;
        return sortRanks.ranks.constData() + index.row();
    }
};

void ZuSortFilterProxyModelPrivate::rankRows(int column)
{
    const QAbstractItemModel *source = q->sourceModel();
    const QList<int> columns = sortColumns.isEmpty() ? QList<int>({ column }) : sortColumns;
    const int rows = source->rowCount(QModelIndex());
    const int width = columns.size();
    // Read as lessThan() would: a cell out of range reads as the empty text. The first column
    // is sorted by its texts' sort keys, held in one buffer: a comparison is then mostly a
    // memcmp, and the texts decide only between keys that tie. Further columns are looked up.
    struct Entry
    {
        quint64 head; // the key's first eight bytes, most significant first, zero-padded
        quint32 offset;
        quint32 length;
        int row;
    };
    std::vector<Entry> entries;
    entries.reserve(size_t(rows));
    std::string keys;
    QVector<QString> texts(rows * width);
    for (int row = 0; row < rows; ++row) {
        for (int i = 0; i < width; ++i) {
            const QModelIndex cell = source->index(row, columns.at(i), QModelIndex());
            if (cell.isValid())
                texts[row * width + i] = source->data(cell, Qt::DisplayRole).toString();
        }
        const size_t offset = keys.size();
        ZuPlatform::appendNaturalSortKey(texts.at(row * width), keys);
        entries.push_back({ 0, quint32(offset), quint32(keys.size() - offset), row });
    }
    const uchar *const keyBytes = reinterpret_cast<const uchar *>(keys.data());
    for (Entry &entry : entries) {
        for (quint32 k = 0; k < 8; ++k)
            entry.head = (entry.head << 8) | (k < entry.length ? keyBytes[entry.offset + k] : 0);
    }
    auto compare = [&](const Entry &a, const Entry &b) {
        if (a.head != b.head)
            return a.head < b.head ? -1 : 1;
        const quint32 common = qMin(a.length, b.length);
        if (common > 8) {
            if (const int order
                = std::memcmp(keyBytes + a.offset + 8, keyBytes + b.offset + 8, common - 8))
                return order < 0 ? -1 : 1;
        }
        if (a.length != b.length)
            return a.length < b.length ? -1 : 1;
        // Equal keys: mostly the very same text, which a plain comparison tells at once.
        int order = 0;
        for (int i = 0; i < width && order == 0; ++i) {
            const QString &left = texts.at(a.row * width + i);
            const QString &right = texts.at(b.row * width + i);
            order = left == right ? 0 : ZuPlatform::naturalCompare(left, right);
        }
        return order;
    };
    std::sort(entries.begin(), entries.end(),
              [&](const Entry &a, const Entry &b) { return compare(a, b) < 0; });
    sortRanks.ranks.resize(rows);
    int rank = 0;
    for (size_t k = 0; k < entries.size(); ++k) {
        if (k > 0 && compare(entries[k - 1], entries[k]) != 0)
            rank = int(k);
        sortRanks.ranks[entries[k].row] = rank;
    }
    sortRanks.column = columns.first();
    sortRanks.source = source;
}

template<typename Sort> void ZuSortFilterProxyModelPrivate::sortNow(int column, Sort sort)
{
    if (q->sourceModel() && !sortRanks.source && column >= 0)
        rankRows(column);
    sort();
    // A mapping that did not exist yet is built (filtered and sorted) here, while the ranks are
    // at hand, rather than at the next read.
    q->QSortFilterProxyModel::rowCount(QModelIndex());
    sortRanks = SortRanks();
}

ZuSortFilterProxyModel::ZuSortFilterProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent)
    , d(new ZuSortFilterProxyModelPrivate(this))
{
    setDynamicSortFilter(true);
    setSortCaseSensitivity(Qt::CaseInsensitive);
}

ZuSortFilterProxyModel::~ZuSortFilterProxyModel() = default;

void ZuSortFilterProxyModel::setSourceModel(QAbstractItemModel *source)
{
    QObject::disconnect(d->sourceDataChanged);
    QSortFilterProxyModel::setSourceModel(source);
    d->sourceDataChanged = ZuProxyShared::placeRowsOnEdit(this, source, &d->sortColumns);
}

void ZuSortFilterProxyModel::sort(int column, Qt::SortOrder order)
{
    // The base class ignores a sort by the column and order it already has, but the sort
    // columns may have changed since.
    const bool same = column == sortColumn() && order == sortOrder();
    const bool resort = same && column >= 0 && d->sortColumnsChanged && dynamicSortFilter();
    d->sortColumnsChanged = false;
    if (same && dynamicSortFilter() && !resort)
        return; // nothing changed: the base class would do nothing either
    if (column < 0) {
        QSortFilterProxyModel::sort(column, order); // back to source order: no comparison
        return;
    }
    d->sortNow(column, [&] {
        QSortFilterProxyModel::sort(column, order);
        if (resort)
            invalidate();
    });
}

void ZuSortFilterProxyModel::setSortColumns(const QList<int> &columns)
{
    d->sortColumns = columns;
    d->sortColumnsChanged = true;
}

QList<int> ZuSortFilterProxyModel::sortColumns() const
{
    return d->sortColumns;
}

void ZuSortFilterProxyModel::addSortColumn(int column)
{
    d->sortColumns.append(column);
    d->sortColumnsChanged = true;
}

void ZuSortFilterProxyModel::addSortColumns(const QList<int> &columns)
{
    d->sortColumns.append(columns);
    d->sortColumnsChanged = true;
}

void ZuSortFilterProxyModel::clearSortColumns()
{
    d->sortColumns.clear();
    d->sortColumnsChanged = true;
}

void ZuSortFilterProxyModel::setSearchColumns(const QList<int> &columns)
{
    d->searchColumns = columns;
}

QList<int> ZuSortFilterProxyModel::searchColumns() const
{
    return d->searchColumns;
}

void ZuSortFilterProxyModel::addSearchColumn(int column)
{
    d->searchColumns.append(column);
}

void ZuSortFilterProxyModel::addSearchColumns(const QList<int> &columns)
{
    d->searchColumns.append(columns);
}

void ZuSortFilterProxyModel::clearSearchColumns()
{
    d->searchColumns.clear();
}

bool ZuSortFilterProxyModel::notAssignedRowEnabled() const
{
    return d->notAssignedRowEnabled;
}

void ZuSortFilterProxyModel::setNotAssignedRowEnabled(bool enabled)
{
    d->notAssignedRowEnabled = enabled;
}

QString ZuSortFilterProxyModel::notAssignedText() const
{
    return d->notAssignedText;
}

void ZuSortFilterProxyModel::setNotAssignedText(const QString &text)
{
    d->notAssignedText = text;
}

bool ZuSortFilterProxyModel::useSelectionRole() const
{
    return d->useSelectionRole;
}

void ZuSortFilterProxyModel::setUseSelectionRole(bool use)
{
    d->useSelectionRole = use;
}

int ZuSortFilterProxyModel::selectionRoleColumn() const
{
    return d->selectionRoleColumn;
}

void ZuSortFilterProxyModel::setSelectionRoleColumn(int column)
{
    d->selectionRoleColumn = column;
}

ZuSortFilterProxyModel::FilterModes ZuSortFilterProxyModel::filterMode() const
{
    return FilterModes(d->filterMode);
}

void ZuSortFilterProxyModel::setFilterMode(FilterModes mode)
{
    d->filterMode = mode;
}

void ZuSortFilterProxyModel::setSearchString(const QString &text, bool inverted)
{
    d->searchStrings.clear();
    d->searchInverted = inverted;
    if (!text.isEmpty()) {
        if (d->searchColumns.isEmpty()) {
            // The proxy maps columns one to one; asking its own columnCount() would build the
            // unfiltered mapping first.
            const QAbstractItemModel *source = sourceModel();
            const int columns = source ? source->columnCount(QModelIndex()) : 0;
            for (int column = 0; column < columns; ++column)
                d->searchStrings.insert(column, text);
        } else {
            for (const int column : qAsConst(d->searchColumns))
                d->searchStrings.insert(column, text);
        }
    }
    d->patterns.clear();
    // Qt's invalidateFilter() removes and inserts every run of rows that leaves or enters on its
    // own, and rebuilds the whole mapping for each: quadratic when matches and misses alternate.
    // The mapping is rebuilt once instead (a layout change that keeps persistent indexes of the
    // rows that stay), sorted with the texts read ahead.
    if (sortColumn() >= 0)
        d->sortNow(sortColumn(), [this] { invalidate(); });
    else
        invalidate();
    emit dataChanged(QModelIndex(), QModelIndex());
}

QString ZuSortFilterProxyModel::searchString() const
{
    if (d->searchColumns.isEmpty())
        return QString();
    return d->searchStrings[d->searchColumns.first()];
}

void ZuSortFilterProxyModel::addFilterKeyColumn(int column)
{
    d->filterFixedStrings.insert(column, QString());
}

void ZuSortFilterProxyModel::addFilterFixedString(int column, const QString &text)
{
    const auto it = d->filterFixedStrings.find(column);
    if (it == d->filterFixedStrings.end())
        return;
    *it = text;
    // Patterns no longer in use would only pile up.
    d->patterns.clear();
}

QModelIndex ZuSortFilterProxyModel::matchValue(const QVariant &value, int column, int role) const
{
    const QModelIndex start = index(0, column, QModelIndex());
    if (!start.isValid())
        return QModelIndex();
    const QModelIndexList hits = match(start, role, value, 1, Qt::MatchExactly);
    return hits.value(0);
}

QModelIndex ZuSortFilterProxyModel::index(int row, int column, const QModelIndex &parent) const
{
    if (row < 0 || row >= rowCount(QModelIndex()))
        return QModelIndex();
    if (!d->notAssignedRowEnabled)
        return QSortFilterProxyModel::index(row, column, parent);
    if (column < 0 || column >= columnCount(QModelIndex()))
        return QModelIndex();
    return createIndex(row, column, quintptr(0));
}

QModelIndex ZuSortFilterProxyModel::parent(const QModelIndex &child) const
{
    Q_UNUSED(child)
    return QModelIndex();
}

// Indexes made while the extra row is on carry no mapping of the base class,
// which would read one out of them: their siblings are plain indexes of this
// proxy. The base class asks for siblings of its own indexes when it re-sorts
// an edited row, and gets them in its own terms.
QModelIndex ZuSortFilterProxyModel::sibling(int row, int column, const QModelIndex &idx) const
{
    if (!idx.isValid() || idx.model() != this)
        return QModelIndex();
    if (idx.internalPointer())
        return QSortFilterProxyModel::sibling(row, column, idx);
    return index(row, column, QModelIndex());
}

int ZuSortFilterProxyModel::rowCount(const QModelIndex &parent) const
{
    Q_UNUSED(parent)
    const int rows = QSortFilterProxyModel::rowCount(QModelIndex());
    return d->notAssignedRowEnabled ? rows + 1 : rows;
}

QVariant ZuSortFilterProxyModel::data(const QModelIndex &index, int role) const
{
    const int row = index.row();
    const int column = index.column();
    if (d->notAssignedRowEnabled && index.isValid() && row == 0) {
        switch (role) {
        case Qt::DisplayRole:
            if (column == d->selectionRoleColumn)
                return d->notAssignedText;
            if (column == 0)
                return 0;
            return QVariant();
        case Qt::EditRole:
            return 0;
        case Qt::FontRole:
            if (column == d->selectionRoleColumn) {
                QFont font;
                font.setItalic(true);
                return font;
            }
            return QVariant();
        default:
            return QVariant();
        }
    }
    const QModelIndex cell = this->index(row, column, QModelIndex());
    if (d->useSelectionRole && column == d->selectionRoleColumn && role == Qt::DisplayRole)
        return QSortFilterProxyModel::data(cell, SelectionRole);
    return QSortFilterProxyModel::data(cell, role);
}

QVariant ZuSortFilterProxyModel::headerData(int section, Qt::Orientation orientation,
                                            int role) const
{
    if (!d->notAssignedRowEnabled)
        return QSortFilterProxyModel::headerData(section, orientation, role);
    const QAbstractItemModel *source = sourceModel();
    if (orientation == Qt::Vertical && section == 0)
        return 0;
    if (!source)
        return QVariant();
    if (orientation == Qt::Horizontal)
        return source->headerData(section, orientation, role);
    return source->headerData(section - 1, Qt::Vertical, role);
}

Qt::ItemFlags ZuSortFilterProxyModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    if (d->notAssignedRowEnabled && index.row() == 0)
        return Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return QSortFilterProxyModel::flags(this->index(index.row(), index.column(), QModelIndex()));
}

QModelIndex ZuSortFilterProxyModel::mapToSource(const QModelIndex &proxyIndex) const
{
    if (!proxyIndex.isValid())
        return QModelIndex();
    if (d->notAssignedRowEnabled) {
        const QAbstractItemModel *source = sourceModel();
        if (!source)
            return QModelIndex();
        return source->index(proxyIndex.row() - 1, proxyIndex.column(), QModelIndex());
    }
    // An index made while the extra row was on carries no mapping of the base
    // class, nor does one of another model: neither can be mapped.
    if (proxyIndex.model() != this || !proxyIndex.internalPointer())
        return QModelIndex();
    return QSortFilterProxyModel::mapToSource(proxyIndex);
}

QModelIndex ZuSortFilterProxyModel::mapFromSource(const QModelIndex &sourceIndex) const
{
    if (!sourceIndex.isValid())
        return QModelIndex();
    if (d->notAssignedRowEnabled)
        return index(sourceIndex.row() + 1, sourceIndex.column(), QModelIndex());
    return QSortFilterProxyModel::mapFromSource(sourceIndex);
}

bool ZuSortFilterProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    // Lookups below use operator[] on purpose: a column visited gets an entry,
    // so that addFilterFixedString() works for it afterwards.
    QMap<int, QString> &filters = d->filterFixedStrings;
    QMap<int, QString> &searches = d->searchStrings;
    if (filters.isEmpty() && searches.isEmpty())
        return true;
    const QAbstractItemModel *source = sourceModel();
    if (!source)
        return true;
    if (sourceRow < 0 || sourceRow >= source->rowCount(QModelIndex()))
        LOG_ERROR("%d", sourceRow);

    const int columns = source->columnCount(QModelIndex());
    bool anyPattern = false;
    for (int column = 0; column < columns && !anyPattern; ++column)
        anyPattern = !filters[column].isEmpty() || !searches[column].isEmpty();
    if (!anyPattern)
        return true;

    const bool andMode = d->filterMode == andFilterMode;
    bool result = true;
    for (auto it = filters.cbegin(), end = filters.cend(); it != end; ++it) {
        const QModelIndex cell = source->index(sourceRow, it.key(), sourceParent);
        if (!cell.isValid()) {
            LOG_ERROR("%d", sourceRow);
            return result;
        }
        if (it.value().isEmpty())
            continue;
        result = andMode;
        const bool hit = d->matches(it.value(), cell);
        if (!andMode && hit) {
            result = true;
            break;
        }
        if (andMode && !hit) {
            result = false;
            break;
        }
    }
    if (!result)
        return false;

    const bool inverted = d->searchInverted;
    result = true;
    for (auto it = searches.cbegin(), end = searches.cend(); it != end; ++it) {
        const QModelIndex cell = source->index(sourceRow, it.key(), sourceParent);
        if (!cell.isValid()) {
            LOG_ERROR("%d", sourceRow);
            return result;
        }
        if (it.value().isEmpty())
            continue;
        result = inverted || andMode;
        const bool hit = d->matches(it.value(), cell);
        if (inverted) {
            if (hit)
                return false;
        } else if (!andMode) {
            if (hit)
                return true;
        } else if (!hit) {
            return false;
        }
    }
    return result;
}

bool ZuSortFilterProxyModel::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const QAbstractItemModel *source = sourceModel();
    if (!source)
        return false;
    if (const int *leftRank = d->rankOf(left)) {
        if (const int *rightRank = d->rankOf(right))
            return *leftRank < *rightRank;
    }
    // The source is flat: every sort column's cells lie under the invalid index.
    return ZuProxyShared::naturalLessThan(source, left, right, d->sortColumns, QModelIndex(),
                                          QModelIndex());
}
