#pragma once

#include <zucore/zucore_export.h>

#include <QList>
#include <QPair>
#include <QVariant>

/**
 * @class ZuTreeItem
 * @brief One node of a ZuTreeModel tree: a row of cells, each with a current
 *        and a previous value, and the child rows under it.
 *
 * @code #include <zucore/ZuTreeItem.h> @endcode
 *
 * In every cell `first` is the current value, which edits change, and
 * `second` the previous value, the last one accepted. A null previous value
 * marks a row that was never submitted: insertChildren() makes its rows so.
 * To load a cell clean, give it two equal values, in the constructor or with
 * setData(column, value, true).
 *
 * An item owns its children and deletes them with itself. All nodes of one
 * tree have the same number of cells: insertColumns() and removeColumns() run
 * down the whole subtree. The root of a model has the same shape; its cells
 * are the model's horizontal header.
 *
 * The fields are public so that a model's setupModelData() can hang items it
 * has made straight into childItems, which the constructor doesn't do.
 *
 * A plain class: no QObject, no virtual operations, no locks.
 *
 * Choices where the contract leaves room: data() and previousData() answer an
 * invalid QVariant for a column out of range; setParent() clamps its position
 * to the new parent's list and leaves a parentless item's (nonexistent) list
 * alone.
 */
class ZUCORE_EXPORT ZuTreeItem
{
public:
    /// A cell: `first` the current value, `second` the previous one.
    using Cell = QPair<QVariant, QVariant>;

    /**
     * Copies @p data as the item's cells and stores @p parent, which does not
     * take ownership: append the item to the parent's childItems yourself.
     */
    explicit ZuTreeItem(const QList<Cell> &data, ZuTreeItem *parent = nullptr);
    /// Deletes the children with their subtrees.
    ~ZuTreeItem();

    /// @return the child at @p row, or null for a row that is negative or not below childCount().
    ZuTreeItem *child(int row);
    /// @return the number of children.
    int childCount() const;
    /// @return the number of cells.
    int columnCount() const;
    /// @return the parent, null at the root.
    ZuTreeItem *parent();
    /// @return the position among the parent's children (a linear search); 0 without a parent.
    int row() const;
    /// @return the same as row().
    int childNumber() const;
    /// @return the current value of @p column; an invalid QVariant for a column out of range.
    QVariant data(int column) const;
    /// @return the previous value of @p column; an invalid QVariant for a column out of range.
    QVariant previousData(int column) const;

    /**
     * Writes the current value of @p column. With @p setPrevious the value
     * becomes the previous value as well, and the answer is true even if
     * nothing changed. Without it the previous value stays.
     * @return false for a column out of range, and (without @p setPrevious)
     *         for a value equal to the current one, which is then left alone.
     */
    bool setData(int column, const QVariant &value, bool setPrevious);
    /**
     * Writes the previous value of @p column.
     * @return always true, also for a column out of range, where nothing is stored.
     */
    bool setPreviousData(int column, const QVariant &value);

    /**
     * Inserts @p count new rows of @p columns null cells, all at @p position,
     * so that the row made last stands first. Rows with null previous values
     * count as new to the model.
     * @return false for a position that is negative or above childCount();
     *         true, doing nothing, for a count below 1.
     */
    bool insertChildren(int position, int count, int columns);
    /**
     * Deletes @p count children from @p position, with their subtrees.
     * @return false for a negative position or a range past the last child;
     *         true, doing nothing, for a count below 1.
     */
    bool removeChildren(int position, int count);
    /// Deletes every child with its subtree.
    void removeChildren();

    /**
     * Inserts @p columns null cells at @p position, here and in every descendant.
     * @return false for a position that is negative or above columnCount().
     */
    bool insertColumns(int position, int columns);
    /**
     * Removes @p columns cells from @p position, here and in every descendant.
     * @return false, without descending, for a negative position or a range
     *         past the last cell.
     */
    bool removeColumns(int position, int columns);

    /**
     * Moves the item, with its subtree, from its parent's children to
     * @p parent's, at @p position (clamped to 0 .. its child count).
     * @return false, moving nothing, if @p parent is already the parent.
     */
    bool setParent(ZuTreeItem *parent, int position);

    /// @return always false: items are moved by setParent().
    bool movePossible(int source, int count, int destination);
    /// Does nothing: items are moved by setParent().
    void moveChildren(int source, int count, int destination);

    /// One pair per column: current value, previous value.
    QList<Cell> itemData;
    /// The children in row order, owned by this item.
    QList<ZuTreeItem *> childItems;
    /// The parent, not owned; null at the root.
    ZuTreeItem *parentItem;

private:
    Q_DISABLE_COPY(ZuTreeItem)
};
