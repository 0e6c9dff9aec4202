#pragma once

#include <zucore/ZuAbstractDataObject.h>
#include <zucore/ZuAbstractTableModel.h>
#include <zucore/zucore_export.h>

#include <QAbstractTableModel>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QPair>
#include <QStringList>
#include <QVariant>

/**
 * @class OldZuAbstractTableModel OldZuAbstractTableModel.h <zucore/OldZuAbstractTableModel.h>
 * @brief The older table base: each row is a pair of data objects, the current
 *        record and a snapshot to revert to.
 *
 * A sister of ZuAbstractTableModel, not a kind of it. Each row holds a current
 * ZuAbstractDataObject and a snapshot of it, or no snapshot for a row that was
 * never submitted. Staging is by row: revertRow() takes a row back to its last
 * snapshot however many edits it had, and removes a row without one.
 *
 * A deriving class gives columnCount(), createDataObject() (a new record with
 * its fields laid out) and cloneDataObject() (a new record holding the source's
 * values). The model owns what both give, but only removeRows() deletes data
 * objects: whatever the rows still hold when the model is destroyed is the
 * deriving class's to release, through a parent given in createDataObject() and
 * cloneDataObject() or in its own destructor (see #legacyRows).
 *
 * The item-data roles are those of ZuAbstractTableModel::ItemDataRole, answered
 * in part: Qt::DisplayRole, Qt::EditRole, ItemHintRole, ModelNameRole (for any
 * index), ItemEditableRole, ItemValidRole, RowValidRole and ItemEmptyTextRole.
 * ItemNoteRole is left to a deriving class. Header data is Qt's default.
 *
 * The model has no options, no dirty flag, no signals of its own and logs
 * nothing; a count mismatch inside an import is logged by the data object.
 * It takes no locks and belongs to the thread of its views.
 *
 * Note that QAbstractItemView calls submit() on its model whenever the current
 * row changes; to keep a batch of edits staged, disconnect the view's selection
 * model's currentRowChanged from submit().
 *
 * Choices where the contract leaves room:
 * - createDataObject() and cloneDataObject() are not const, so that a deriving
 *   class can give the model as the new object's parent;
 * - insertRows() refuses (false, no signal) a count below 1 and a row outside
 *   0 to rowCount(), removeRows() a negative row or count, and revertRow() does
 *   nothing for a row outside the table, rather than corrupt the rows;
 * - setData() and copy() give false for an index whose row holds no object
 *   (an index of another, larger model), and copy() emits no dataChanged on a
 *   model without columns, since there is no cell to name;
 * - values of different types are compared after converting one to the
 *   other's type ("1" equals 1), whichever Qt the library runs on.
 */
class ZUCORE_EXPORT OldZuAbstractTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /** Makes a model without rows, named "OldZuAbstractTableModel". */
    explicit OldZuAbstractTableModel(QObject *parent = nullptr);

    /** The current object of @p row; null when @p row is negative or not below rowCount(). */
    ZuAbstractDataObject *dataObjectAtRow(const int &row) const;
    /** The current object of the row of @p index; null when there is none. */
    ZuAbstractDataObject *dataObjectAt(const QModelIndex &index) const;

    /** Number of rows, for any @p parent. */
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    /** Number of columns: a deriving class gives it. */
    int columnCount(const QModelIndex &parent = QModelIndex()) const override = 0;
    /**
     * The field of the row's current object, or one of the answered roles (see
     * the class). ModelNameRole answers for any index; every other role gives an
     * invalid QVariant for an invalid index, and so does a role that isn't
     * answered. Qt::EditRole gives an invalid QVariant for a column that the
     * object doesn't have.
     */
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /**
     * Writes @p value into the row's current object through
     * setDataObjectValue() and emits dataChanged(). True also when @p value
     * equals the current value (then nothing is emitted). False for a role other
     * than Qt::EditRole, an invalid index and a row without an object.
     */
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    /**
     * Inserts @p count rows before @p row, each a new createDataObject() without
     * a snapshot; @p parent is ignored. False, with no signal, for a count
     * below 1 or a row outside 0 to rowCount().
     */
    bool insertRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    /**
     * Removes @p count rows from @p row and deletes their objects, current and
     * snapshot; @p parent is ignored. False, with nothing removed, for a count
     * of 0 and a range outside the table.
     */
    bool removeRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    /** Qt's flags plus Qt::ItemIsEditable; no flags for an invalid index. */
    Qt::ItemFlags flags(const QModelIndex &index) const override;

public slots:
    /**
     * Makes every row's snapshot equal to its current object: copies the values
     * into an existing snapshot, or makes one with cloneDataObject(). Always true;
     * emits nothing.
     */
    bool submit() override;
    /** revertRow() for each row from the last one. */
    void revert() override;

public:
    /**
     * Appends one row filled by the object's fromJsonObject() and gives it a
     * snapshot, so revert() keeps it. False when insertRows() refuses.
     */
    virtual bool insertFromJsonObject(const QJsonObject &object);
    /**
     * Appends one row per element (a non-object element gives an empty object),
     * each with a snapshot. False for an empty array and when insertRows() refuses.
     */
    virtual bool insertFromJsonArray(const QJsonArray &array);
    /**
     * Appends one row filled by the object's fromFieldsMap() and gives it a
     * snapshot. False when insertRows() refuses.
     */
    virtual bool insertFromFieldsMap(const QMap<QString, QVariant> &map);
    /**
     * Appends one row per map, each with a snapshot. False for an empty list and
     * when insertRows() refuses.
     */
    virtual bool insertFromFieldsMapList(const QList<QMap<QString, QVariant>> &list);
    /**
     * Appends one row per string list, each with a snapshot. False for an empty
     * list and when insertRows() refuses.
     */
    virtual bool insertFromStringsList(const QList<QStringList> &list);
    /**
     * Appends one row filled by the object's fromStringList() and gives it a
     * snapshot. False when insertRows() refuses.
     */
    virtual bool insertFromStrings(const QStringList &strings);

    /** Whether a cell may be edited, as an int; 1 here for every index. */
    virtual int itemIsEditable(const QModelIndex &index) const;
    /** Whether a cell holds a valid value; true here for every index. */
    virtual bool itemIsValid(const QModelIndex &index) const;
    /** Why a cell isn't valid; a fixed placeholder text here. */
    virtual QString itemInvalidReason(const QModelIndex &index) const;
    /**
     * Assigns the current object of the row of @p to from that of the row of
     * @p from (ZuAbstractDataObject::copy()); the snapshot stays. False for an
     * invalid index and for a row without an object.
     */
    virtual bool copy(const QModelIndex &from, const QModelIndex &to);
    /**
     * Takes @p row back to its snapshot, emitting dataChanged() when it differed;
     * removes the row through removeRows() when it has no snapshot. Nothing
     * happens for a row outside the table.
     */
    virtual void revertRow(const int &row);

protected:
    /** A new record of the application's type, with its fields laid out. */
    virtual ZuAbstractDataObject *createDataObject() = 0;
    /** A new record holding the values of @p source. */
    virtual ZuAbstractDataObject *cloneDataObject(ZuAbstractDataObject *source) = 0;
    /**
     * How an edit reaches a record: @p object's setData() here, and its result.
     * setData() of the model does not look at the result.
     */
    virtual bool setDataObjectValue(ZuAbstractDataObject *object, const int &column,
                                    const QVariant &value);

    /**
     * One (current, snapshot) pair per row, in display order. `first` is never
     * null; `second` is null until the row's first submit() unless an import
     * made it. A deriving class deletes what is left here in its destructor
     * unless the objects have a parent.
     */
    QList<QPair<ZuAbstractDataObject *, ZuAbstractDataObject *>> legacyRows;

private:
    template<class Fill> bool importRows(int count, Fill fill);
    void setSnapshot(int row, ZuAbstractDataObject *snapshot);
    void emitRowsChanged(int first, int last);
};
