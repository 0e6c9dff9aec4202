#pragma once

#include <zucore/zucore_export.h>

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

/**
 * @class ZuAbstractDataObject ZuAbstractDataObject.h <zucore/ZuAbstractDataObject.h>
 * @brief One record: an ordered, fixed set of QVariant fields addressed by
 *        position and, through fieldName(), by name.
 *
 * A deriving class lays out its fields by appending one QVariant per field to
 * #fieldValues in its constructor, and usually names them by overriding
 * fieldName(). From then on the number of fields does not change: no operation
 * of this class adds or removes an entry.
 *
 * The record converts itself to and from a string list, a name-to-value map and
 * a JSON object. The conversions take fieldCount() as their bound and then read
 * and write #fieldValues directly; only compare() and copy() read values through
 * the virtual data(). None of the writers calls setData(). An override of
 * fieldCount() must therefore report at most the size of #fieldValues.
 *
 * The fields are not Qt properties and nothing is emitted when a value changes.
 * The object takes no locks and is used from one thread at a time.
 *
 * Choices where the contract leaves room:
 * - the pure virtual operation is clone(): a record held through a base pointer
 *   has no other way to be duplicated with its dynamic type, which every
 *   application that stages or undoes record edits needs. Nothing in the
 *   library calls it;
 * - setData() gives true when the position names a field (the value is then
 *   stored) and false when it doesn't;
 * - data() and setData() also treat a negative position as outside the fields;
 * - values of different types are compared after converting one to the
 *   other's type, so that "1" equals 1 whichever Qt the library runs on.
 */
class ZUCORE_EXPORT ZuAbstractDataObject : public QObject
{
    Q_OBJECT

public:
    /** Makes an object with no fields. */
    explicit ZuAbstractDataObject(QObject *parent = nullptr);
    /**
     * Makes an object with no fields and runs this class's own copy() with
     * @p other (when not null). As the new object has no fields yet, no value
     * moves: a deriving class that wants the source's values lays out its fields
     * in its own constructor and calls copy() there.
     */
    ZuAbstractDataObject(const ZuAbstractDataObject *other, QObject *parent);
    ~ZuAbstractDataObject() override;

    /** Whether every field of this object equals the same field of @p other; see compare(). */
    bool operator==(const ZuAbstractDataObject &other) const;
    /** The negation of compare(). */
    bool operator!=(const ZuAbstractDataObject &other) const;
    /** Takes the values of @p other through the virtual copy(). Gives no result. */
    void operator=(const ZuAbstractDataObject &other);

    /**
     * The value of field @p column; an invalid QVariant when @p column doesn't
     * name a field.
     */
    virtual QVariant data(int column) const;
    /** The name of field @p column: "Field0", "Field1"... for any integer, with no bound check. */
    virtual QString fieldName(int column) const;
    /** fieldName() of every field, in order. */
    virtual QStringList fieldNames() const;
    /** The number of fields: the size of #fieldValues. */
    virtual int fieldCount() const;
    /**
     * Replaces the value of field @p column by @p value. False, and nothing
     * changes, when @p column doesn't name a field.
     */
    virtual bool setData(int column, const QVariant &value);
    /**
     * Sets every field whose name is a key of @p object to that member's
     * QJsonValue::toVariant(). Other fields keep their values; keys without a
     * field are ignored. Never fails.
     */
    virtual void fromJsonObject(const QJsonObject &object);
    /** Every field as a member named fieldName(); of two fields of one name the later wins. */
    virtual QJsonObject toJsonObject();
    /**
     * Sets every field whose name is a key of @p map to that key's value. A map
     * whose size differs from fieldCount() is logged as a warning and still
     * applied. Never fails.
     */
    virtual void fromFieldsMap(const QMap<QString, QVariant> &map);
    /** Every field keyed by fieldName(); of two fields of one name the later wins. */
    virtual QMap<QString, QVariant> toFieldsMap() const;
    /**
     * Sets the fields in order to the strings of @p strings, each as a QString
     * variant. A count that differs from fieldCount() is logged (a warning and
     * the list at debug level) and the conversion goes on: fields behind the
     * last string keep their values, strings behind the last field are dropped.
     */
    virtual void fromStringList(const QStringList &strings);
    /** QVariant::toString() of every field, in order. */
    virtual QStringList toStringList() const;
    /**
     * Whether data() of each of this object's fields equals other.data() of the
     * same position. Fields that only @p other has are not looked at, so the
     * comparison is not symmetric when the counts differ.
     */
    virtual bool compare(const ZuAbstractDataObject &other) const;
    /**
     * Replaces each of this object's fields by other.data() of the same
     * position; fields that @p other lacks become invalid QVariants. The number
     * of fields, the name and the parent stay.
     */
    virtual void copy(const ZuAbstractDataObject &other);

    /**
     * A new object of this object's own type, holding its values, with parent
     * @p parent. The caller owns the result. Nothing in the library calls this:
     * it is for applications that hold records through this base class.
     */
    virtual ZuAbstractDataObject *clone(QObject *parent = nullptr) const = 0;

protected:
    /** One value per field, in field order; filled by the deriving class's constructor. */
    QList<QVariant> fieldValues;
};
