#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/ZuAbstractDataObject.h>

#include <QDate>
#include <QJsonDocument>

namespace {

// Up to three fields, named id, name and amount unless told otherwise (no
// names: the default ones).
class Record : public ZuAbstractDataObject
{
public:
    explicit Record(int fields = 3, const QStringList &names = { "id", "name", "amount" })
        : names(names)
    {
        setObjectName("rec");
        for (int i = 0; i < fields; ++i)
            fieldValues << QVariant();
    }
    // The base constructor moves nothing: values arrive once the fields exist.
    Record(const Record *other, int fields)
        : ZuAbstractDataObject(other, nullptr)
        , names(other->names)
    {
        for (int i = 0; i < fields; ++i)
            fieldValues << QVariant();
        copy(*other);
    }
    QString fieldName(int column) const override
    {
        return names.isEmpty() ? ZuAbstractDataObject::fieldName(column) : names.value(column);
    }
    ZuAbstractDataObject *clone(QObject *parent) const override
    {
        auto *record = new Record(this, fieldCount());
        record->setParent(parent);
        return record;
    }
    QStringList names;
};

// Each value as "type:text", so that a QString "1" and an int 1 differ.
QStringList describe(const ZuAbstractDataObject &record)
{
    QStringList values;
    for (int i = 0; i < record.fieldCount(); ++i) {
        const QVariant v = record.data(i);
        values << (v.isValid() ? QString(v.typeName()) + ':' + v.toString() : "invalid");
    }
    return values;
}

void fill(Record &record)
{
    const QVariantList start { 1, QDate(2020, 1, 2), 2.5 };
    for (int i = 0; i < record.fieldCount(); ++i)
        record.setData(i, start.at(i));
}

} // namespace

class tst_ZuAbstractDataObject : public QObject
{
    Q_OBJECT

private slots:
    void conversions_data();
    void conversions();
    void compareAndCopy();
    void exportsAndDefaults();
};

void tst_ZuAbstractDataObject::conversions_data()
{
    QTest::addColumn<int>("fields");
    QTest::addColumn<QString>("op");
    QTest::addColumn<QVariant>("input");
    QTest::addColumn<QStringList>("after");
    QTest::addColumn<QStringList>("log"); // "level message"
    const QStringList untouched { "int:1", "QDate:2020-01-02", "double:2.5" };
    auto warn = [](const QString &what, int fields, int count) {
        return QString("3 <rec>: Field Count (%1) != %2 Count (%3)")
            .arg(fields)
            .arg(what)
            .arg(count);
    };
    QTest::newRow("strings: fewer than fields")
        << 3 << "strings" << QVariant(QStringList { "7", "x" })
        << QStringList { "QString:7", "QString:x", "double:2.5" }
        << QStringList { warn("Strings", 3, 2), "1 (\"7\", \"x\")" };
    QTest::newRow("strings: more than fields")
        << 2 << "strings" << QVariant(QStringList { "7", "x", "y" })
        << QStringList { "QString:7", "QString:x" }
        << QStringList { warn("Strings", 2, 3), "1 (\"7\", \"x\", \"y\")" };
    QTest::newRow("strings: exact")
        << 3 << "strings" << QVariant(QStringList { "a", "b", "c" })
        << QStringList { "QString:a", "QString:b", "QString:c" } << QStringList();
    QTest::newRow("map: empty") << 3 << "map" << QVariant(QVariantMap()) << untouched
                                << QStringList { warn("Map", 3, 0) };
    QTest::newRow("map: right size, no names")
        << 3 << "map" << QVariant(QVariantMap { { "a", 0 }, { "b", 0 }, { "c", 0 } }) << untouched
        << QStringList();
    QTest::newRow("map: other size, some names")
        << 3 << "map" << QVariant(QVariantMap { { "amount", "9" }, { "zz", 0 } })
        << QStringList { "int:1", "QDate:2020-01-02", "QString:9" }
        << QStringList { warn("Map", 3, 2) };
    QTest::newRow("json: empty") << 3 << "json" << QVariant(QVariantMap()) << untouched
                                 << QStringList();
    QTest::newRow("json: some keys")
        << 3 << "json" << QVariant(QVariantMap { { "name", "n" }, { "zz", 1 } })
        << QStringList { "int:1", "QString:n", "double:2.5" } << QStringList();
}

void tst_ZuAbstractDataObject::conversions()
{
    QFETCH(int, fields);
    QFETCH(QString, op);
    QFETCH(QVariant, input);
    QFETCH(QStringList, after);
    QFETCH(QStringList, log);
    Record record(fields);
    fill(record);
    zutest::LogCapture capture;
    if (op == "strings")
        record.fromStringList(input.toStringList());
    else if (op == "map")
        record.fromFieldsMap(input.toMap());
    else
        record.fromJsonObject(QJsonObject::fromVariantMap(input.toMap()));
    QCOMPARE(describe(record), after);
    QStringList lines;
    for (const zutest::LogRecord &r : capture.records())
        lines << QString::number(r.level) + ' ' + r.message.trimmed();
    QCOMPARE(lines, log);
}

void tst_ZuAbstractDataObject::compareAndCopy()
{
    Record shorter(2), longer(3);
    fill(shorter);
    fill(longer);
    // Only this object's own fields are looked at.
    QVERIFY(shorter == longer);
    QVERIFY(longer != shorter);
    longer.setData(2, QVariant());
    QVERIFY(longer == shorter); // the missing field reads as invalid on both sides
    QVERIFY(!longer.compare(Record(0)));
    QVERIFY(Record(0) == longer);

    longer.setData(2, 7);
    longer.setData(0, "1"); // equal to the int 1 under QVariant equality
    QVERIFY(longer.compare(longer) && shorter == longer);
    ZuAbstractDataObject &base = longer;
    base = shorter; // through the virtual copy(): the field it lacks becomes invalid
    QCOMPARE(describe(longer), QStringList({ "int:1", "QDate:2020-01-02", "invalid" }));
    QCOMPARE(longer.fieldCount(), 3);
    QCOMPARE(longer.objectName(), "rec");

    const Record copied(&shorter, 3);
    QCOMPARE(describe(copied), QStringList({ "int:1", "QDate:2020-01-02", "invalid" }));
    QScopedPointer<ZuAbstractDataObject> clone(shorter.clone(nullptr));
    QVERIFY(*clone == shorter && shorter == *clone);
    clone->setData(1, "other");
    QVERIFY(*clone != shorter);
}

void tst_ZuAbstractDataObject::exportsAndDefaults()
{
    Record named, unnamed(3, {}), empty(0);
    fill(named);
    fill(unnamed);
    QCOMPARE(named.fieldNames(), QStringList({ "id", "name", "amount" }));
    QCOMPARE(unnamed.fieldNames(), QStringList({ "Field0", "Field1", "Field2" }));
    QCOMPARE(unnamed.fieldName(-4), "Field-4");
    QCOMPARE(QJsonDocument(unnamed.toJsonObject()).toJson(QJsonDocument::Compact),
             R"({"Field0":1,"Field1":"2020-01-02","Field2":2.5})");
    QCOMPARE(named.toFieldsMap(),
             QVariantMap({ { "id", 1 }, { "name", QDate(2020, 1, 2) }, { "amount", 2.5 } }));
    QCOMPARE(named.toStringList(), QStringList({ "1", "2020-01-02", "2.5" }));

    // Positions past the fields: nothing stored, nothing answered.
    QVERIFY(!named.setData(3, 1));
    QVERIFY(!named.data(3).isValid());
    QCOMPARE(named.fieldCount(), 3);

    QVERIFY(empty.toStringList().isEmpty() && empty.toJsonObject().isEmpty());
    QVERIFY(empty.toFieldsMap().isEmpty());

    // Two fields of one name: the later wins on export, one key fills both.
    Record twins(2, { "k", "k" });
    twins.fromStringList({ "a", "b" });
    QCOMPARE(twins.toJsonObject(), QJsonObject({ { "k", "b" } }));
    QCOMPARE(twins.toFieldsMap(), QVariantMap({ { "k", "b" } }));
    twins.fromJsonObject({ { "k", "c" } });
    QCOMPARE(twins.toStringList(), QStringList({ "c", "c" }));
}

ZU_TEST_MAIN(tst_ZuAbstractDataObject)
#include "tst_zuabstractdataobject.moc"
