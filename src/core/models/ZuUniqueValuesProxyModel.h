#pragma once

#include <zucore/zucore_export.h>

#include <QSortFilterProxyModel>

#include <memory>

class ZuUniqueValuesProxyModelPrivate;

/**
 * @class ZuUniqueValuesProxyModel
 * @brief Shows each distinct value of one column of a flat model once: of all
 *        source rows with the same text in modelColumn(), only the first stays.
 *
 * @code #include <zucore/ZuUniqueValuesProxyModel.h> @endcode
 *
 * A row's value is the text of its cell in modelColumn() under the proxy's
 * filterRole(); values are told apart by their text, with case, so the
 * number 1 and the string "1" are one value, and "a" and "A" two. With
 * emptyItemsAllowed() false, rows with an empty text are hidden as well.
 *
 * The proxy keeps a map from value text to the source rows that hold it, and
 * rebuilds it, inside a model reset, whenever the source is set or reset,
 * changes its layout or any of its data, and when modelColumn() is set or
 * emptyItemsAllowed() changes. A rebuild reads every source row once and
 * reports its course through progressChanged(). Rows that the source inserts
 * or removes don't rebuild the map: an inserted row shows if its text is not
 * in the map yet, and counts as a duplicate if it is. A new filterRole()
 * takes effect at the next rebuild.
 *
 * An earlier source model is not disconnected when another is set. The proxy
 * treats its source as flat: only rows under the invalid index take part.
 */
class ZUCORE_EXPORT ZuUniqueValuesProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT
    /// Whether rows with an empty text may show (default true).
    Q_PROPERTY(bool emptyItemsAllowed READ emptyItemsAllowed WRITE setEmptyItemsAllowed)
    /// The source column whose values are made unique (default 0).
    Q_PROPERTY(int modelColumn READ modelColumn WRITE setModelColumn)

public:
    /// Makes a proxy without source, over column 0, with empty items allowed.
    explicit ZuUniqueValuesProxyModel(QObject *parent = nullptr);
    ~ZuUniqueValuesProxyModel() override;

    /// @return the base class's value of the cell.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Passes the insertion to the base class. @return its result.
    bool insertRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    /**
     * Sets the source model, connects its resets, layout and data changes to a
     * rebuild of the map, builds the map and re-filters.
     */
    void setSourceModel(QAbstractItemModel *model) override;

    /// @return whether rows with an empty text may show.
    bool emptyItemsAllowed() const;
    /// Stores @p allowed and rebuilds the map; does nothing for the current value.
    void setEmptyItemsAllowed(bool allowed);
    /// @return the source column whose values are made unique.
    int modelColumn() const;
    /// Stores @p column and rebuilds the map, in a model reset, also for the current column.
    void setModelColumn(int column);

signals:
    /// A rebuild's course in percent: once per source row, then 100 at the end.
    void progressChanged(int progress);

protected:
    /// @return true unless the source row is a duplicate (or hidden as empty); @p sourceParent
    /// is not used.
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private slots:
    bool isDuplicate(int row) const;
    void buildMap();
    void sourceModelDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight);

private:
    friend class ZuUniqueValuesProxyModelPrivate;
    std::unique_ptr<ZuUniqueValuesProxyModelPrivate> d;
};
