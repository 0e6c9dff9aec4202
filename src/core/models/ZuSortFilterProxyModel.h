#pragma once

#include <zucore/zucore_export.h>

#include <QList>
#include <QSortFilterProxyModel>

#include <memory>

class ZuSortFilterProxyModelPrivate;

/**
 * @class ZuSortFilterProxyModel
 * @brief A proxy for flat table models: natural order over a list of sort
 * columns, per-column filter texts, one search text over a list of columns, a
 * substitute role for one column and an optional "not assigned" first row.
 *
 * @code #include <zucore/ZuSortFilterProxyModel.h> @endcode
 *
 * Ordering. lessThan() compares the display text of the source cells in
 * natural order ("a2" before "a10", digits before letters, letters without
 * regard to case, so "Readme" and "readme" tie) over sortColumns(), most
 * significant first; with no sort columns it compares the two cells it is
 * given. Rows that tie on every sort column are not less than each other.
 * sortRole() and sortCaseSensitivity() play no part. A change of the sort
 * columns takes effect at the next sort(), also one by the column and order
 * already in use; with the dynamic sort filter (on by default) an edit of any
 * sort column puts its row in place again.
 *
 * Filtering. Filter texts (addFilterKeyColumn(), addFilterFixedString()) and
 * search texts (setSearchString()) are case-insensitive regular expressions
 * matched anywhere in a cell's display text; a text that is not a valid
 * expression matches no cell. Within each group the columns combine by
 * filterMode() (a value other than andFilterMode counts as orFilterMode); the
 * two groups are always ANDed. An inverted search keeps only
 * the rows in which no searched column matches. Each distinct pattern is
 * compiled once and kept until the patterns change.
 *
 * The not-assigned row. With setNotAssignedRowEnabled(true) proxy row 0 stands
 * for "no assignment": it reads 0 under Qt::EditRole, notAssignedText() in
 * italics in selectionRoleColumn(), and is selectable and enabled only. Proxy
 * row n > 0 is then source row n - 1, in source order, while rowCount() is the
 * number of accepted rows plus one. A persistent index of the extra row
 * becomes invalid when the base class re-sorts or re-filters: it keeps
 * persistent indexes by their source index, and the extra row has none.
 *
 * The proxy is flat: parent() is always invalid and rowCount() ignores its
 * argument. Out-of-range rows and columns give invalid indexes.
 *
 * Not supported: hierarchical sources (use ZuSortFilterTreeProxyModel).
 * Faults (a row out of range or an invalid cell during filtering) are logged
 * at error level with the row number as the only text.
 */
class ZUCORE_EXPORT ZuSortFilterProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    /// How the columns of one filter or search group combine.
    enum FilterModes {
        orFilterMode = 0, ///< a row passes when one column matches
        andFilterMode = 1 ///< a row passes when every column with a pattern matches
    };
    Q_ENUM(FilterModes)

    /// Turns on the dynamic sort filter and case-insensitive sorting.
    explicit ZuSortFilterProxyModel(QObject *parent = nullptr);
    ~ZuSortFilterProxyModel() override;

    // Sort columns: most significant first; duplicates and insertion order are kept. A change
    // takes effect at the next sort(): nothing is invalidated by these.

    /// Replaces the sort columns; takes effect at the next sort().
    void setSortColumns(const QList<int> &columns);
    /// @return a copy of the sort columns; empty if none are set.
    QList<int> sortColumns() const;
    /// Appends @p column to the sort columns; takes effect at the next sort().
    void addSortColumn(int column);
    /// Appends @p columns to the sort columns; takes effect at the next sort().
    void addSortColumns(const QList<int> &columns);
    /// Empties the sort columns: sort() then orders by its own column alone.
    void clearSortColumns();

    // Search columns: the columns that setSearchString() fills; empty means all columns. A
    // change takes effect at the next search: nothing is invalidated by these.

    /// Replaces the search columns; takes effect at the next setSearchString().
    void setSearchColumns(const QList<int> &columns);
    /// @return a copy of the search columns; empty if none are set.
    QList<int> searchColumns() const;
    /// Appends @p column to the search columns; takes effect at the next setSearchString().
    void addSearchColumn(int column);
    /// Appends @p columns to the search columns; takes effect at the next setSearchString().
    void addSearchColumns(const QList<int> &columns);
    /// Empties the search columns: the next search covers every column.
    void clearSearchColumns();

    // Plain settings: the setters only store their value; none resets, invalidates or emits.

    /// @return whether the extra "not assigned" first row is present (default false).
    bool notAssignedRowEnabled() const;
    /// Shows or hides the extra first row; views learn of it at their next reset or read.
    void setNotAssignedRowEnabled(bool enabled);
    /// @return the text of the extra row (default "Not Assigned").
    QString notAssignedText() const;
    /// Sets the text that the extra row shows in selectionRoleColumn().
    void setNotAssignedText(const QString &text);
    /// @return whether selectionRoleColumn() shows role 257 (Qt::UserRole + 1) as its display
    /// text (default false).
    bool useSelectionRole() const;
    /// Makes selectionRoleColumn() answer its display role from role 257, or not.
    void setUseSelectionRole(bool use);
    /// @return the column of the selection role and the not-assigned text (default 1).
    int selectionRoleColumn() const;
    /// Sets the column of the selection role and the not-assigned text.
    void setSelectionRoleColumn(int column);
    /// @return how the columns of one group combine (default orFilterMode).
    FilterModes filterMode() const;
    /// Sets how the columns of one group combine; takes effect at the next filter pass.
    void setFilterMode(FilterModes mode);

    /**
     * Sets the source as QSortFilterProxyModel does, and follows its edits of every sort
     * column (see the class description).
     */
    void setSourceModel(QAbstractItemModel *source) override;

    /**
     * Sorts by @p column in @p order as QSortFilterProxyModel does; with sort columns set,
     * @p column only switches sorting on (-1: source order). Unlike the base class it also
     * re-sorts when the column and order are unchanged but the sort columns changed.
     */
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    /**
     * Replaces every search pattern by @p text, one pattern per search column
     * (every column when searchColumns() is empty), re-filters and emits
     * dataChanged() with invalid indexes. An empty @p text clears the search.
     * Views hear of the new rows as one layout change (the mapping is rebuilt
     * once, in time linear in the rows); persistent indexes of rows that stay
     * keep their rows.
     * The text is one regular expression, not split into words; with
     * @p inverted, rows matching it in any searched column are dropped.
     */
    void setSearchString(const QString &text, bool inverted = false);

    /**
     * @return the pattern of the first search column; an empty string when
     * searchColumns() is empty, even while a search over all columns is active.
     */
    QString searchString() const;

    /**
     * Makes @p column a filter column with a null (inactive) pattern, or
     * resets its pattern to null. Does not re-filter: call invalidate().
     */
    void addFilterKeyColumn(int column);

    /**
     * Sets the filter pattern of @p column. Does nothing when @p column is not
     * a filter column yet (see addFilterKeyColumn()). Does not re-filter: call
     * invalidate(). An empty @p text makes the column take no part.
     */
    void addFilterFixedString(int column, const QString &text);

    /**
     * Finds the first proxy row, from row 0 down, whose cell in @p column
     * equals @p value under @p role (Qt::MatchExactly). With the extra row
     * enabled the search starts at it.
     * @return the proxy index of the hit, or an invalid index if none.
     */
    virtual QModelIndex matchValue(const QVariant &value, int column, int role) const;

    /// @return invalid for a row not below rowCount() or a column out of range.
    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    /// @return always the invalid index: the proxy is flat.
    QModelIndex parent(const QModelIndex &child) const override;
    using QObject::parent;
    /// @return the number of accepted rows, plus one for the extra row; @p parent is not used.
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    /// @return the index at @p row, @p column beside @p idx, or invalid for an invalid
    /// @p idx or an out-of-range position.
    QModelIndex sibling(int row, int column, const QModelIndex &idx) const override;
    /// @return the cell's value, the extra row's values, or an invalid QVariant.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// @return the header; vertical section 0 is 0 while the extra row is enabled.
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    /// @return Qt::NoItemFlags for an invalid index; selectable and enabled for the extra row.
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// @return the source index, or invalid for an invalid index and for the extra row.
    QModelIndex mapToSource(const QModelIndex &proxyIndex) const override;
    /// @return the proxy index, or invalid for an invalid or filtered-out index.
    QModelIndex mapFromSource(const QModelIndex &sourceIndex) const override;

protected:
    /// @return whether source row @p sourceRow passes the filter and search patterns.
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
    /// @return whether the row of @p left comes before that of @p right by the sort columns.
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    friend class ZuSortFilterProxyModelPrivate;
    std::unique_ptr<ZuSortFilterProxyModelPrivate> d;
};
