#pragma once

#include <zucore/zucore_export.h>

#include <QList>
#include <QSortFilterProxyModel>

#include <memory>

class ZuSortFilterTreeProxyModelPrivate;

/**
 * @class ZuSortFilterTreeProxyModel
 * @brief A proxy for hierarchical models such as ZuTreeModel: natural order
 *        over a list of sort columns under each parent, one search text over
 *        the whole tree that keeps a parent for an accepted descendant, and a
 *        substitute role for one column.
 *
 * @code #include <zucore/ZuSortFilterTreeProxyModel.h> @endcode
 *
 * Ordering. lessThan() compares the display text of the source cells in
 * natural order ("a2" before "a10", digits before letters, letters without
 * regard to case) over sortColumns(), most significant first, each cell taken
 * under its own row's parent; with no sort columns it compares the two cells
 * it is given. Rows that tie on every sort column are not less than each
 * other. sortRole() and sortCaseSensitivity() play no part. A change of the
 * sort columns takes effect at the next sort(), also one by the column and
 * order already in use; with the dynamic sort filter (on by default) an edit
 * of any sort column puts its row in place again.
 *
 * Searching. setSearchString() sets one case-insensitive regular expression,
 * matched anywhere in the display text of the searched columns
 * (searchColumns(), or every column when it is empty). A row passes when any
 * of its descendants passes, without its own cells being looked at; else when
 * one of its searched cells matches, or with the inverted search when none
 * does. So an inverted search keeps a matching row that has a non-matching
 * descendant. A text that is not a valid expression matches no cell. The
 * pattern is compiled once per search text. With a search active, an edit
 * that makes a row under a hidden row pass doesn't bring the hidden row back,
 * as the base class re-filters the edited row alone: call invalidate() after
 * such an edit.
 *
 * setSearchString() emits dataChanged() with two invalid indexes, which tells
 * a view to repaint everything; it does so only when the text or the flag
 * changes.
 *
 * This class shares the ordering and the search columns of
 * ZuSortFilterProxyModel but not its filter texts, filter mode or
 * not-assigned row, and neither derives from the other.
 *
 * Faults: none are logged; an out-of-range row simply passes the filter.
 */
class ZUCORE_EXPORT ZuSortFilterTreeProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    /// Turns on the dynamic sort filter and case-insensitive sorting.
    explicit ZuSortFilterTreeProxyModel(QObject *parent = nullptr);
    ~ZuSortFilterTreeProxyModel() override;

    /**
     * Sets the source as QSortFilterProxyModel does, and follows its edits of
     * every sort column (see the class description).
     */
    void setSourceModel(QAbstractItemModel *source) override;
    /**
     * Sorts by @p column in @p order as QSortFilterProxyModel does; with sort
     * columns set, @p column only switches sorting on (-1: source order).
     * Unlike the base class it also re-sorts when the column and order are
     * unchanged but the sort columns changed.
     */
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    /// Replaces the sort columns, most significant first. Takes effect at the next sort.
    void setSortColumns(const QList<int> &columns);
    /// @return a copy of the sort columns, duplicates and order kept; empty if none are set.
    QList<int> sortColumns() const;
    /// Appends one sort column. Takes effect at the next sort.
    void addSortColumn(int column);
    /// Appends sort columns. Takes effect at the next sort.
    void addSortColumns(const QList<int> &columns);
    /// Empties the sort columns: the cells that sort() names decide alone.
    void clearSortColumns();

    /// Replaces the searched columns; empty means all. Takes effect at the next search.
    void setSearchColumns(const QList<int> &columns);
    /// @return a copy of the searched columns; empty if none are set (all are searched).
    QList<int> searchColumns() const;
    /// Appends one searched column. Takes effect at the next search.
    void addSearchColumn(int column);
    /// Appends searched columns. Takes effect at the next search.
    void addSearchColumns(const QList<int> &columns);
    /// Empties the searched columns: every column is searched.
    void clearSearchColumns();

    /// @return whether selectionRoleColumn() shows role 257 (Qt::UserRole + 1) as its display
    /// text (default false).
    bool useSelectionRole() const;
    /// Sets useSelectionRole(); resets, invalidates and emits nothing.
    void setUseSelectionRole(bool use);
    /// @return the column that the selection role applies to (default 1).
    int selectionRoleColumn() const;
    /// Sets selectionRoleColumn(); resets, invalidates and emits nothing.
    void setSelectionRoleColumn(int column);

    /**
     * Searches the tree for @p text, or for rows without it if @p inverted,
     * re-filters and emits dataChanged() with invalid indexes. Does nothing
     * when @p text and @p inverted are those of the last search. An empty
     * @p text shows every row, whatever @p inverted is.
     */
    void setSearchString(const QString &text, bool inverted = false);
    /// @return the search text; empty (not null) before the first search.
    QString searchString() const;

    /**
     * Finds the first row, at any depth, whose cell in @p column equals
     * @p value under @p role (Qt::MatchExactly | Qt::MatchRecursive), starting
     * at the first top-level row.
     * @return the proxy index of the hit, or an invalid index if none.
     */
    virtual QModelIndex matchValue(const QVariant &value, int column, int role) const;

    /// @return the source's value; in selectionRoleColumn() with useSelectionRole(), the
    /// display role answers role 257.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

protected:
    /// @return whether the row or any row under it passes the search (see the class notes).
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
    /// @return whether @p left sorts before @p right in natural order over the sort columns.
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    friend class ZuSortFilterTreeProxyModelPrivate;
    std::unique_ptr<ZuSortFilterTreeProxyModelPrivate> d;
};
