#pragma once

#include <zucore/ZuCore.h>
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
 * @class ZuAbstractTableModel
 * @brief Table model whose cells keep a current and a previous value, so that
 *        edits can be submitted or reverted, with JSON and string import/export.
 *
 * Every cell is a `QPair<QVariant, QVariant>`: `first` is the current value,
 * `second` the value before the last edit. Columns exist only through
 * setHeaderData() with Qt::EditRole, called once per section (0 to n-1)
 * before the first row is inserted; a row gets as many cells as columnCount()
 * says when it is inserted.
 *
 * Edits take effect at once; submit() makes the current values the previous
 * ones and emits dataSubmitted(); revert() puts previous values back and
 * removes rows that count as new (a cell whose previous value is null).
 * Row insertions and removals are not staged.
 *
 * Every internal loop asks the virtual rowCount(), columnCount(), data() and
 * headerData(), so an override of any of them holds everywhere.
 *
 * Not supported: inserting or removing columns, moving rows, sorting. The
 * model takes no locks and belongs to the thread of its views.
 *
 * Note that Qt's item views call submit() on their model when the current row
 * changes or an editor closes with Enter, and revert() when one closes with
 * Escape, also through proxies; to keep a batch of edits staged until the
 * application submits or reverts it, show the model through a
 * ZuManualSubmitProxyModel.
 *
 * Choices where the contract leaves room:
 * - the roles are the one public enum ItemDataRole below;
 * - fromJsonObject() with a row outside the table writes no cell (the missing
 *   columns are still logged) instead of being undefined;
 * - every imported JSON number is held as a double, as JSON has one number
 *   type, whatever Qt's parser kept it as;
 * - negative counts and rows are refused by insertRows() and removeRows();
 * - on a table without columns the imports, copy() and revertRow() emit no
 *   dataChanged, since there is no cell to name;
 * - data(), isDirty() and the editing operations never read past the stored
 *   rows, even for an index of another model;
 * - toJsonArray() asks headerData() for the column keys once per export, not
 *   once per row: the keys can't change while the rows are read.
 */
class ZUCORE_EXPORT ZuAbstractTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /**
     * The library's item-data roles. The numbers are fixed and shared with the
     * tree model; 270 is not used.
     */
    enum ItemDataRole {
        ItemHintRole = Qt::UserRole + 6, ///< 262: the int 13 or nothing, see data()
        ItemNoteRole = Qt::UserRole + 7, ///< 263: a note text; not answered by this class
        ItemOptionsRole = Qt::UserRole + 8, ///< 264: 2 for ModelOption8 plus 1 for ModelOption16
        ModelNameRole = Qt::UserRole + 9, ///< 265: objectName(), for any index
        ItemEditableRole = Qt::UserRole + 10, ///< 266: itemIsEditable() as an int
        ItemValidRole = Qt::UserRole + 11, ///< 267: itemIsValid() as a bool
        RowValidRole = Qt::UserRole + 12, ///< 268: true when every cell of the row is valid
        ItemEmptyTextRole = Qt::UserRole + 13, ///< 269: the empty string
        ModelOptionsRole = Qt::UserRole + 15, ///< 271: the constructor's flags as an int, any index
        PreviousValueRole = Qt::UserRole + 16, ///< 272: the cell's previous value
        PreviousValueRole2 = Qt::UserRole + 17 ///< 273: the cell's previous value
    };
    Q_ENUM(ItemDataRole)

    /**
     * Makes an empty model without columns, stores @p options unchanged and
     * names itself "ZuAbstractTableModel".
     */
    explicit ZuAbstractTableModel(QFlags<ZuCore::ModelOption> options = {},
                                  QObject *parent = nullptr);
    ~ZuAbstractTableModel() override;

    /** Whether anything was set, inserted or removed since the last submit, revert or load. */
    bool isDirty() const;
    /**
     * Whether the cell's current value differs from its previous one.
     * False for an invalid index and for a row or column outside the table.
     */
    bool isDirty(const QModelIndex &index) const;

    /** Number of rows; 0 for a valid @p parent. */
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    /** Number of declared header sections, whatever @p parent is. */
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    /**
     * The cell's value or one of the ItemDataRole answers. ModelNameRole and
     * ModelOptionsRole answer for any index; every other role gives an invalid
     * QVariant for an invalid index, and so does a role that isn't answered.
     */
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /**
     * Writes @p value into the cell and keeps the old value as the previous one.
     * False for a role other than Qt::EditRole, an invalid index, a row or
     * column outside the table (logged) and a value equal to the current one.
     */
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    /**
     * The stored header value for every role. An invalid QVariant for a
     * vertical header, and (logged) for a section that was never set.
     */
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    /**
     * Declares or replaces column @p section, whatever @p orientation is.
     * False, and nothing changes, for any role but Qt::EditRole. Emits nothing.
     */
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant &value,
                       int role = Qt::EditRole) override;
    /**
     * Inserts @p count fresh rows (invalid cells) before @p row; @p parent is
     * ignored. False, with no signal, for a count of 0 and a row that is
     * negative or above rowCount().
     */
    bool insertRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    /**
     * Removes @p count rows from @p row for good; @p parent is ignored. False,
     * with no signal, for a count of 0 and a range past the end.
     */
    bool removeRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    /** Qt's flags plus Qt::ItemIsEditable; no flags for an invalid index. */
    Qt::ItemFlags flags(const QModelIndex &index) const override;

public slots:
    /** Makes every current value the previous one, emits dataSubmitted(). Always true. */
    bool submit() override;
    /** Reverts every row from the last one (see revertRow()) and clears the dirty flag. */
    void revert() override;

public:
    /**
     * Appends one row filled from @p object. False (logged) when the row can't
     * be inserted. Leaves the dirty flag as insertRows() set it.
     */
    virtual bool insertFromJsonObject(const QJsonObject &object);
    /**
     * Appends one row per element of @p array (a non-object element gives an
     * empty object) and counts the table as loaded. False for an empty array,
     * and (logged) when the rows can't be inserted.
     */
    virtual bool insertFromJsonArray(const QJsonArray &array);
    /**
     * Parses @p json as a JSON array and appends its rows. False for empty text,
     * and with a log entry and the error() signal for text that doesn't parse
     * or isn't an array; the table is then unchanged.
     */
    virtual bool insertFromJsonString(const QString &json);
    /**
     * Appends one row per list, each with exactly columnCount() strings. False
     * for an empty list, and (logged, nothing inserted) when any list has the
     * wrong size or the rows can't be inserted.
     */
    virtual bool insertFromStringsList(const QList<QStringList> &list);
    /**
     * Appends one row of exactly columnCount() strings. False (logged) for a
     * wrong number of strings or when the row can't be inserted.
     */
    virtual bool insertFromStrings(const QStringList &strings);
    /**
     * Writes both values of each cell of @p row from the member named after the
     * column's header; a missing member is logged and leaves the cell alone.
     * Emits nothing and leaves the dirty flag alone. Always true.
     */
    virtual bool fromJsonObject(int row, const QJsonObject &object);
    /**
     * One row as an object keyed by the header texts. For a row outside the
     * table every column's value is null.
     */
    virtual QJsonObject toJsonObject(int row) const;
    /** Every row as an object; empty objects (no columns) are left out. */
    virtual QJsonArray toJsonArray() const;
    /** toJsonArray() as compact JSON text; "[]" for an empty table. */
    virtual QString toJsonString() const;
    /** One row as columnCount() strings; empty strings for a row outside the table. */
    virtual QStringList toStrings(int row) const;
    /** Every row as toStrings() gives it. */
    virtual QList<QStringList> toStringsList() const;

    /** Whether a cell may be edited, as an int; 1 here for every index. */
    virtual int itemIsEditable(const QModelIndex &index) const;
    /** Whether a cell holds a valid value; true here for every index. */
    virtual bool itemIsValid(const QModelIndex &index) const;
    /** Why a cell isn't valid; a fixed placeholder text here. */
    virtual QString itemInvalidReason(const QModelIndex &index) const;
    /**
     * Copies the current values of the row of @p from over the row of @p to;
     * previous values and the dirty flag stay. False, with no signal, for an
     * invalid index, an index of another model and a row outside the table.
     */
    virtual bool copy(const QModelIndex &from, const QModelIndex &to);
    /**
     * Puts the previous values of @p row back, or removes the row when one of
     * its previous values is null. Nothing happens for a row outside the table.
     */
    virtual void revertRow(int row);
    /** Removes every row; the columns stay. */
    virtual void clear();

signals:
    /** Emitted by submit(), with the dirty flag as it was before the submit. */
    void dataSubmitted(bool wasDirty);
    /** Emitted by insertFromJsonString() when the text is refused. */
    void error(const QString &title, const QString &error);

protected:
    /** The rows in display order, one (current, previous) pair per column. */
    QList<QList<QPair<QVariant, QVariant>>> modelRows;
    /** Column section to header value; its size is the column count. */
    QMap<int, QVariant> headerValues;
    /** The answer of isDirty(). */
    bool dirtyFlag = false;
    /** When non-zero, Qt::EditRole answers the previous value. Only a subclass writes it. */
    int previousOnEdit = 0;
    /** The constructor's flags, unchanged. */
    QFlags<ZuCore::ModelOption> modelOptions;

private:
    QString exportKey(int column) const;

    // The column keys of the export in progress, asked once per toJsonArray().
    struct ExportKeys;
    mutable const ExportKeys *exportKeys = nullptr;
};
