#pragma once

#include <zucore/ZuCore.h>
#include <zucore/ZuTreeItem.h>
#include <zucore/zucore_export.h>

#include <QAbstractItemModel>

/**
 * @class ZuTreeModel
 * @brief Base class of hierarchical item models whose cells keep a current and
 *        a previous value, so that edits stay staged until they are submitted
 *        or reverted.
 *
 * @code #include <zucore/ZuTreeModel.h> @endcode
 *
 * A subclass creates #rootItem, whose cells are the horizontal header and
 * whose cell count is the model's column count, and fills the tree in
 * setupModelData(); refresh() rebuilds the model through it. Load cells clean
 * (two equal values, or ZuTreeItem::setData() with `setPrevious`). The model
 * owns the root and so the whole tree. Indexes carry their ZuTreeItem as
 * internal pointer.
 *
 * Roles are those of ZuAbstractTableModel::ItemDataRole; data() tells how each
 * is answered. Display text is the answer for Qt::EditRole.
 *
 * Editing. setData() with Qt::EditRole changes a cell's current value and
 * leaves its previous value alone: the previous value stays the value of the
 * last submit or load, however many edits follow. A row made by insertRows()
 * has null previous values and counts as new: revert removes it.
 * submit() and revert() reach the first top-level row and its subtree only;
 * submitRows() and revertRows() with an invalid index reach every row.
 * The model stores nothing itself: the application hears dataSubmitted() and
 * carries the values wherever they belong.
 *
 * Views: Qt's item views call submit() when the current row changes or an
 * editor closes with Enter, and revert() when one closes with Escape. Put a
 * ZuManualSubmitProxyModel directly under the view when a batch of edits
 * should stay staged until the application submits or reverts it.
 *
 * Read-only state (readOnly()) is advice: itemIsEditable() and
 * ItemEditableRole obey it; flags(), setData() and row and column changes
 * don't.
 *
 * Refusals. A row or column change that the tree refuses (a position or range
 * out of range) still sends its pair of begin/end notifications before the
 * false result, and insertRows()/removeRows() still mark the model dirty, so
 * check ranges before asking. moveRows() refuses before any notification.
 * refresh() of a model with rows removes them through clear() inside its
 * model reset, so their removal is notified within the reset.
 *
 * The model takes no locks and belongs to the thread of its views.
 *
 * Choices where the contract leaves room:
 * - an index of another model counts as an invalid index when read, and is
 *   refused (false, no notification) as the parent of a row or column change;
 * - a negative count or position in insertRows(), removeRows(),
 *   insertColumns() and removeColumns() is refused (false) before any
 *   notification: Qt's notifications can't express it; a count of 0 sends
 *   no notification either (insertRows() and the column changes then answer
 *   as the tree does, removeRows() true);
 * - moveRows() also refuses, before any notification, a range past the last
 *   child, a destination row out of range, and a destination inside a moved
 *   subtree;
 * - without a root, columnCount() is 0, headerData() invalid, and row and
 *   column changes are refused; data() answers an invalid QVariant for a
 *   column beyond the node's cells;
 * - rowCount() counts the children of the node for a parent in any column,
 *   while index() gives children under column 0 only; hasChildren() follows
 *   index(), so that views and model checkers don't walk into the other
 *   columns.
 */
class ZUCORE_EXPORT ZuTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    /** Makes a model without root and rows, with @p options (bit ReadOnly is the read-only state).
     */
    explicit ZuTreeModel(QFlags<ZuCore::ModelOption> options = {}, QObject *parent = nullptr);
    /** Deletes the root with the whole tree. */
    ~ZuTreeModel() override;

    /**
     * @return the node of @p index; #rootItem for an invalid index, a null
     *         internal pointer or an index of another model.
     */
    ZuTreeItem *getItem(const QModelIndex &index) const;

    /**
     * @return the index of child @p row of @p parent's node, in @p column
     *         (not compared with the column count); invalid for a parent
     *         outside column 0 and where the node has no such child.
     */
    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    /** @return the index of the parent node in column 0; invalid for a top-level row. */
    QModelIndex parent(const QModelIndex &index) const override;
    using QObject::parent;
    /** @return the number of children of @p parent's node; 0 without a root. */
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    /** @return the root's cell count, whatever @p parent is; 0 without a root. */
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    /**
     * @return whether @p parent's node has children; false for a parent
     *         outside column 0, under which index() gives none.
     */
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    /**
     * The value of a cell or one of the library's roles:
     * - ModelNameRole (objectName()) and ModelOptionsRole (the options as an
     *   int) answer for any index, even an invalid one;
     * - Qt::DisplayRole is the answer of data() for Qt::EditRole, the current value;
     * - PreviousValueRole is the previous value;
     * - ItemOptionsRole: 2 for ModelOption8 plus 1 for ModelOption16;
     * - ItemEditableRole: itemIsEditable(); ItemValidRole: itemIsValid();
     * - RowValidRole: true unless ItemValidRole is false in some column of the row;
     * - ItemEmptyTextRole: an empty, non-null string;
     * - ItemHintRole: the int 13 when ItemNoteRole has a text and
     *   ItemOptionsRole doesn't have bit 1 without bit 4; else invalid.
     * @return an invalid QVariant for an invalid index and for any other role.
     */
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /**
     * With Qt::EditRole, writes the current value, leaving the previous one,
     * emits dataChanged() and marks the model dirty. With PreviousValueRole,
     * writes the previous value, emitting nothing and leaving the dirty flag.
     * @return false for any other role, and with Qt::EditRole for an invalid
     *         index, a column out of range or an unchanged value; true with
     *         PreviousValueRole, even where nothing could be stored.
     */
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    /** @return the root's cell @p section for a horizontal Qt::DisplayRole; else invalid. */
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    /**
     * Writes the root's cell @p section and emits headerDataChanged().
     * @return false unless @p role is Qt::EditRole and @p orientation horizontal,
     *         and for a section out of range or an unchanged value.
     */
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant &value,
                       int role = Qt::EditRole) override;
    /**
     * Inserts @p rows new rows (null cells, so they count as new) at
     * @p position under @p parent, and marks the model dirty.
     * @return false for a position out of range (notified all the same).
     */
    bool insertRows(int position, int rows, const QModelIndex &parent = QModelIndex()) override;
    /**
     * Inserts @p columns empty columns at @p position in every node; leaves
     * the dirty flag.
     * @return false for a position out of range (notified all the same).
     */
    bool insertColumns(int position, int columns,
                       const QModelIndex &parent = QModelIndex()) override;
    /**
     * Deletes @p rows rows from @p position under @p parent, with their
     * subtrees, and marks the model dirty. A count of 0 is true and changes nothing.
     * @return false for a range out of range (notified all the same).
     */
    bool removeRows(int position, int rows, const QModelIndex &parent = QModelIndex()) override;
    /**
     * Removes @p columns columns from @p position in every node; when none is
     * left, removes every row as well.
     * @return false for a range out of range (notified all the same).
     */
    bool removeColumns(int position, int columns,
                       const QModelIndex &parent = QModelIndex()) override;
    /**
     * Moves @p count rows, with their subtrees, from @p sourceRow under
     * @p sourceParent to @p destinationChild under another parent, and marks
     * the model dirty.
     * @return false, before any notification, for a count of 0, a move within
     *         one parent, a missing row, a move under a moved row or its
     *         subtree, and a destination row out of range.
     */
    bool moveRows(const QModelIndex &sourceParent, int sourceRow, int count,
                  const QModelIndex &destinationParent, int destinationChild) override;
    /** @return Qt's flags plus Qt::ItemIsEditable, also when read-only; none for an invalid index.
     */
    Qt::ItemFlags flags(const QModelIndex &index) const override;

public slots:
    /**
     * Submits the first top-level row and its subtree (submitRows()), emits
     * dataSubmitted() with the dirty flag from before, and clears the flag.
     * Later top-level rows are not reached: submitRows(QModelIndex()) reaches all.
     * @return always true.
     */
    bool submit() override;
    /**
     * Reverts the first top-level row and its subtree (revertRows()) and
     * clears the dirty flag. Later top-level rows are not reached:
     * revertRows(QModelIndex()) reaches all.
     */
    void revert() override;

public:
    /** Rebuilds the model: clear() and setupModelData() in one reset; logs the time taken. */
    virtual void refresh();
    /** @return 0 when read-only or for an invalid index, else 1. */
    virtual int itemIsEditable(const QModelIndex &index) const;
    /** @return always true here; a subclass narrows it. */
    virtual bool itemIsValid(const QModelIndex &index) const;
    /** @return a fixed placeholder text here; a subclass says why a cell isn't valid. */
    virtual QString itemInvalidReason(const QModelIndex &index) const;
    /**
     * Copies the current values of @p source's row over @p target's row,
     * keeping the target's previous values, and emits dataChanged() for the
     * target row. Leaves the dirty flag.
     * @return false for an invalid index (or one of another model).
     */
    virtual bool copy(const QModelIndex &source, const QModelIndex &target);
    /**
     * Reverts the row of @p index and every row under it, from the last to
     * the first; with an invalid @p index, every top-level row.
     */
    virtual void revertRows(const QModelIndex &index);
    /**
     * Writes the previous values of row @p row under @p parent back, with
     * dataChanged(); removes the row instead when a previous value is null
     * (a new row). For an invalid row it works on the root, the header.
     */
    virtual void revertRow(int row, const QModelIndex &parent);
    /**
     * Makes the current values of row @p row under @p parent its previous
     * values. Emits nothing and leaves the dirty flag. For an invalid row it
     * works on the root, the header.
     */
    virtual void submitRow(int row, const QModelIndex &parent);
    /**
     * Submits the row of @p index and every row under it, in ascending order;
     * with an invalid @p index, every top-level row.
     */
    virtual void submitRows(const QModelIndex &index);
    /** Removes every top-level row; the root and header stay. Leaves the model dirty if it had
     * rows. */
    virtual void clear();
    /** Fills the tree under #rootItem; the base only logs a warning. */
    virtual void setupModelData();

    /** @return whether bit ReadOnly of the options is set. */
    bool readOnly() const;
    /** Sets or clears bit ReadOnly of the options, and nothing else. */
    void setReadOnly(bool readOnly);
    /** @return whether a change was made since the last clear(), submit() or revert(). */
    bool isDirty() const;
    /** @return whether the cell's current value differs from its previous value; false for an
     * invalid index. */
    bool isDirty(const QModelIndex &index) const;

signals:
    /** Emitted by submit(), with the dirty flag as it stood before. */
    void dataSubmitted(bool wasDirty);

protected:
    /** The root: its cells are the header, its children the top-level rows. Made by a subclass. */
    ZuTreeItem *rootItem = nullptr;
    /** The answer of isDirty(). */
    bool dirty = false;
    /** The constructor's flags; bit ReadOnly is the read-only state. */
    QFlags<ZuCore::ModelOption> options;

private:
    bool ownIndex(const QModelIndex &index) const;
};

/**
 * @class ZuTreeRowEditModel
 * @brief A ZuTreeModel whose unit of submit is the row, not the model.
 *
 * @code #include <zucore/ZuTreeModel.h> @endcode
 *
 * submit() does nothing, so a view's or mapper's call writes nothing and
 * emits nothing. The application calls submitRow() when the user finishes a
 * row and hears dataSubmitted() for that row. A submitRows() walk reaches
 * submitRow() for every row, so dataSubmitted() follows for each, with
 * `wasDirty` true at most for the first. Revert is as in the base.
 */
class ZUCORE_EXPORT ZuTreeRowEditModel : public ZuTreeModel
{
    Q_OBJECT

public:
    /** Starts the base with no options and no root. */
    explicit ZuTreeRowEditModel(QObject *parent = nullptr);

public slots:
    /** Does nothing. @return always true. */
    bool submit() override;

public:
    /** Submits the row as the base does, then emits dataSubmitted() and clears the dirty flag. */
    void submitRow(int row, const QModelIndex &parent) override;
};
