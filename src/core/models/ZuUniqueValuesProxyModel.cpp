#include <zucore/ZuUniqueValuesProxyModel.h>

#include <QHash>
#include <QList>
#include <QMap>

class ZuUniqueValuesProxyModelPrivate
{
public:
    explicit ZuUniqueValuesProxyModelPrivate(ZuUniqueValuesProxyModel *proxy)
        : q(proxy)
    { }

    QString value(int row, int role) const
    {
        const QAbstractItemModel *source = q->sourceModel();
        const QModelIndex cell
            = source ? source->index(row, modelColumn, QModelIndex()) : QModelIndex();
        return cell.isValid() ? cell.data(role).toString() : QString();
    }

    bool emptyItemsAllowed = true;
    int modelColumn = 0;
    QMap<QString, QList<int>> valueRows;
    ZuUniqueValuesProxyModel *q;
};

ZuUniqueValuesProxyModel::ZuUniqueValuesProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent)
    , d(new ZuUniqueValuesProxyModelPrivate(this))
{ }

ZuUniqueValuesProxyModel::~ZuUniqueValuesProxyModel() = default;

QVariant ZuUniqueValuesProxyModel::data(const QModelIndex &index, int role) const
{
    return QSortFilterProxyModel::data(index, role);
}

bool ZuUniqueValuesProxyModel::insertRows(int row, int count, const QModelIndex &parent)
{
    return QSortFilterProxyModel::insertRows(row, count, parent);
}

void ZuUniqueValuesProxyModel::setSourceModel(QAbstractItemModel *model)
{
    if (model) {
        connect(model, &QAbstractItemModel::layoutChanged, this,
                &ZuUniqueValuesProxyModel::buildMap);
        connect(model, &QAbstractItemModel::modelReset, this, &ZuUniqueValuesProxyModel::buildMap);
        connect(model, &QAbstractItemModel::dataChanged, this,
                &ZuUniqueValuesProxyModel::sourceModelDataChanged);
    }
    QSortFilterProxyModel::setSourceModel(model);
    buildMap();
    invalidate();
}

void ZuUniqueValuesProxyModel::sourceModelDataChanged(const QModelIndex &, const QModelIndex &)
{
    buildMap();
}

bool ZuUniqueValuesProxyModel::emptyItemsAllowed() const
{
    return d->emptyItemsAllowed;
}

void ZuUniqueValuesProxyModel::setEmptyItemsAllowed(bool allowed)
{
    if (allowed == d->emptyItemsAllowed)
        return;
    d->emptyItemsAllowed = allowed;
    buildMap();
}

int ZuUniqueValuesProxyModel::modelColumn() const
{
    return d->modelColumn;
}

void ZuUniqueValuesProxyModel::setModelColumn(int column)
{
    beginResetModel();
    d->modelColumn = column;
    buildMap();
    endResetModel();
}

bool ZuUniqueValuesProxyModel::isDuplicate(int row) const
{
    const QString text = d->value(row, filterRole());
    if (!d->emptyItemsAllowed && text.isEmpty())
        return true;
    const auto it = d->valueRows.constFind(text);
    if (it == d->valueRows.cend())
        return false;
    return it->first() != row;
}

bool ZuUniqueValuesProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex &) const
{
    return !isDuplicate(sourceRow);
}

void ZuUniqueValuesProxyModel::buildMap()
{
    beginResetModel();
    d->valueRows.clear();
    const QAbstractItemModel *source = sourceModel();
    if (!source) {
        endResetModel();
        return;
    }
    const int rows = source->rowCount(QModelIndex());
    const int role = filterRole();
    // Gathered in a hash, which finds a text far faster than the ordered map;
    // the map is filled from it once, with one entry per distinct value.
    QHash<QString, QList<int>> gathered;
    for (int row = 0; row < rows; ++row) {
        gathered[d->value(row, role)].append(row);
        emit progressChanged(row * 100 / rows);
    }
    for (auto it = gathered.begin(), end = gathered.end(); it != end; ++it)
        d->valueRows.insert(it.key(), std::move(it.value()));
    emit progressChanged(100);
    endResetModel();
    invalidate();
}
