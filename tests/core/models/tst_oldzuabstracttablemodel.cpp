#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/OldZuAbstractTableModel.h>
#include <zucore/ZuAbstractDataObject.h>

#include <QAbstractItemModelTester>
#include <QDate>
#include <QJsonDocument>
#include <QLineEdit>
#include <QTableView>

#include <functional>

using Roles = ZuAbstractTableModel;

namespace {

// Fields named id, name and amount unless told otherwise (no names: the
// default ones). Counts the records alive.
class Record : public ZuAbstractDataObject
{
public:
    explicit Record(int fields = 3, const QStringList &names = { "id", "name", "amount" })
        : names(names)
    {
        for (int i = 0; i < fields; ++i)
            fieldValues << QVariant();
        ++alive;
    }
    ~Record() override { --alive; }
    QString fieldName(int column) const override
    {
        return names.isEmpty() ? ZuAbstractDataObject::fieldName(column) : names.value(column);
    }
    ZuAbstractDataObject *clone(QObject *parent) const override
    {
        auto *record = new Record(fieldCount(), names);
        record->copy(*this);
        record->setParent(parent);
        return record;
    }
    QStringList names;
    static int alive;
};
int Record::alive = 0;

// Four columns, the last one beyond the record's fields. A cell holding "note"
// has a note, one holding "bad" is invalid; inserts can be refused.
class Records : public OldZuAbstractTableModel
{
public:
    ~Records() override // rows left at the end are ours to free
    {
        for (const auto &pair : qAsConst(legacyRows)) {
            delete pair.first;
            delete pair.second;
        }
    }
    int columnCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : 4;
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        const QVariant value = OldZuAbstractTableModel::data(index, Qt::EditRole);
        if (role == Roles::ItemNoteRole && value == "note")
            return "a note";
        return OldZuAbstractTableModel::data(index, role);
    }
    bool itemIsValid(const QModelIndex &index) const override
    {
        return data(index, Qt::EditRole) != "bad";
    }
    bool insertRows(int row, int count, const QModelIndex &parent = {}) override
    {
        return !refuseInserts && OldZuAbstractTableModel::insertRows(row, count, parent);
    }
    QString rows() const // "values,of,row|..." as each current record gives them
    {
        QStringList rows;
        for (int r = 0; r < rowCount(); ++r)
            rows << dataObjectAtRow(r)->toStringList().join(',');
        return rows.join('|');
    }
    bool refuseInserts = false;

protected:
    ZuAbstractDataObject *createDataObject() override { return new Record; }
    ZuAbstractDataObject *cloneDataObject(ZuAbstractDataObject *source) override
    {
        return source->clone(nullptr);
    }
};

const QString fixture = "1,a,x|2,b,y";

QStringList strings(const QJsonValue &array)
{
    QStringList list;
    for (const QJsonValue &value : array.toArray())
        list << value.toString();
    return list;
}

// Runs "step|step|..." and gives the last step's answer; void steps answer
// true. Import arguments are JSON.
bool run(Records &model, const QString &script)
{
    bool ok = true;
    for (const QString &step : script.split('|')) {
        const QString arg = step.section(' ', 1);
        auto n = [&](int i) { return arg.section(' ', i, i).toInt(); };
        const QJsonDocument json = QJsonDocument::fromJson(arg.toUtf8());
        QList<QStringList> lists;
        QList<QVariantMap> maps;
        for (const QJsonValue &value : json.array()) {
            lists << strings(value);
            maps << value.toObject().toVariantMap();
        }
        const QHash<QString, std::function<bool()>> ops {
            { "edit", [&] { return model.setData(model.index(n(0), n(1)), arg.section(' ', 2)); } },
            { "insert", [&] { return model.insertRows(n(0), n(1)); } },
            { "remove", [&] { return model.removeRows(n(0), n(1)); } },
            { "copy", [&] { return model.copy(model.index(n(0), 0), model.index(n(1), 2)); } },
            { "submit", [&] { return model.submit(); } },
            { "object", [&] { return model.insertFromJsonObject(json.object()); } },
            { "array", [&] { return model.insertFromJsonArray(json.array()); } },
            { "map", [&] { return model.insertFromFieldsMap(json.object().toVariantMap()); } },
            { "maps", [&] { return model.insertFromFieldsMapList(maps); } },
            { "strings", [&] { return model.insertFromStrings(strings(json.array())); } },
            { "list", [&] { return model.insertFromStringsList(lists); } },
            { "revert", [&] { return model.revert(), true; } },
            { "revertRow", [&] { return model.revertRow(n(0)), true; } },
            { "refuse", [&] { return model.refuseInserts = true; } },
        };
        ok = ops.value(step.section(' ', 0, 0))();
    }
    return ok;
}

// Row notifications as "+insert 1-2" (about to), "inserted 1-2", "-remove",
// "removed"; dataChanged as "changed r,c-r,c", plus " roles" if it names any.
QStringList recordSignals(Records &model, const std::function<void()> &action)
{
    QStringList log;
    QObject context;
    auto rows = [&](const char *what) {
        return [=, &log](const QModelIndex &, int first, int last) {
            log << QString("%1 %2-%3").arg(what).arg(first).arg(last);
        };
    };
    QObject::connect(&model, &Records::rowsAboutToBeInserted, &context, rows("+insert"));
    QObject::connect(&model, &Records::rowsInserted, &context, rows("inserted"));
    QObject::connect(&model, &Records::rowsAboutToBeRemoved, &context, rows("-remove"));
    QObject::connect(&model, &Records::rowsRemoved, &context, rows("removed"));
    QObject::connect(&model, &Records::dataChanged, &context,
                     [&](const QModelIndex &tl, const QModelIndex &br, const QVector<int> &roles) {
                         log << QString::asprintf("changed %d,%d-%d,%d%s", tl.row(), tl.column(),
                                                  br.row(), br.column(),
                                                  roles.isEmpty() ? "" : " roles");
                     });
    action();
    return log;
}

QStringList logLines(const zutest::LogCapture &capture)
{
    QStringList lines;
    for (const zutest::LogRecord &record : capture.records())
        lines << QString::number(record.level) + ' ' + record.message.trimmed();
    return lines;
}

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

class tst_OldZuAbstractTableModel : public QObject
{
    Q_OBJECT

private slots:
    void dataObjectConversions_data();
    void dataObjectConversions();
    void dataObjectCompareAndCopy();
    void dataObjectExports();
    void operations_data();
    void operations();
    void roles();
    void underModelTester();
    void inTableView();
};

void tst_OldZuAbstractTableModel::dataObjectConversions_data()
{
    QTest::addColumn<int>("fields");
    QTest::addColumn<QString>("op");
    QTest::addColumn<QVariant>("input");
    QTest::addColumn<QStringList>("after");
    QTest::addColumn<QStringList>("log"); // "level message"
    const QStringList untouched { "int:1", "QDate:2020-01-02", "double:2.5" };
    const QString warn = "3 <rec>: Field Count (%1) != %2 Count (%3)";
    auto row = [](const char *name, int fields, const char *op, const QVariant &input,
                  const QStringList &after, const QStringList &log = {}) {
        QTest::newRow(name) << fields << QString(op) << input << after << log;
    };
    row("strings: fewer than fields", 3, "strings", QStringList { "7", "x" },
        { "QString:7", "QString:x", "double:2.5" },
        { warn.arg(3).arg("Strings").arg(2), R"(1 ("7", "x"))" });
    row("strings: more than fields", 2, "strings", QStringList { "7", "x", "y" },
        { "QString:7", "QString:x" },
        { warn.arg(2).arg("Strings").arg(3), R"(1 ("7", "x", "y"))" });
    row("strings: exact", 3, "strings", QStringList { "a", "b", "c" },
        { "QString:a", "QString:b", "QString:c" });
    row("map: empty", 3, "map", QVariantMap(), untouched, { warn.arg(3).arg("Map").arg(0) });
    row("map: right size, no names", 3, "map", QVariantMap { { "a", 0 }, { "b", 0 }, { "c", 0 } },
        untouched);
    row("map: other size, some names", 3, "map", QVariantMap { { "amount", "9" }, { "zz", 0 } },
        { "int:1", "QDate:2020-01-02", "QString:9" }, { warn.arg(3).arg("Map").arg(2) });
    row("json: empty", 3, "json", QVariantMap(), untouched);
    row("json: some keys", 3, "json", QVariantMap { { "name", "n" }, { "zz", 1 } },
        { "int:1", "QString:n", "double:2.5" });
}

void tst_OldZuAbstractTableModel::dataObjectConversions()
{
    QFETCH(int, fields);
    QFETCH(QString, op);
    QFETCH(QVariant, input);
    QFETCH(QStringList, after);
    QFETCH(QStringList, log);
    Record record(fields);
    record.setObjectName("rec");
    fill(record);
    zutest::LogCapture capture;
    if (op == "strings")
        record.fromStringList(input.toStringList());
    else if (op == "map")
        record.fromFieldsMap(input.toMap());
    else
        record.fromJsonObject(QJsonObject::fromVariantMap(input.toMap()));
    QCOMPARE(describe(record), after);
    QCOMPARE(logLines(capture), log);
}

void tst_OldZuAbstractTableModel::dataObjectCompareAndCopy()
{
    Record shorter(2), longer(3);
    fill(shorter);
    fill(longer);
    // Only this object's own fields are looked at.
    QVERIFY(shorter == longer);
    QVERIFY(longer != shorter);
    longer.setData(2, QVariant());
    QVERIFY(longer == shorter); // the missing field reads as invalid on both sides
    QVERIFY(!longer.compare(Record(0)) && Record(0) == longer);

    longer.setData(2, 7);
    longer.setData(0, "1"); // equal to the int 1 under QVariant equality
    QVERIFY(shorter == longer);
    ZuAbstractDataObject &base = longer;
    base = shorter; // through the virtual copy(): the field it lacks becomes invalid
    QCOMPARE(describe(longer), QStringList({ "int:1", "QDate:2020-01-02", "invalid" }));
    QCOMPARE(longer.fieldCount(), 3);
    QCOMPARE(longer.objectName(), "");
}

void tst_OldZuAbstractTableModel::dataObjectExports()
{
    Record named, unnamed(3, {}), empty(0), twins(2, { "k", "k" });
    fill(named);
    fill(unnamed);
    QCOMPARE(unnamed.fieldNames(), QStringList({ "Field0", "Field1", "Field2" }));
    QCOMPARE(unnamed.fieldName(-4), "Field-4");
    QCOMPARE(QJsonDocument(unnamed.toJsonObject()).toJson(QJsonDocument::Compact),
             R"({"Field0":1,"Field1":"2020-01-02","Field2":2.5})");
    QCOMPARE(named.toFieldsMap(),
             QVariantMap({ { "id", 1 }, { "name", QDate(2020, 1, 2) }, { "amount", 2.5 } }));
    QCOMPARE(named.toStringList(), QStringList({ "1", "2020-01-02", "2.5" }));
    QVERIFY(!named.setData(3, 1) && !named.data(3).isValid() && named.fieldCount() == 3);
    QVERIFY(empty.toStringList().isEmpty() && empty.toJsonObject().isEmpty());
    QVERIFY(empty.toFieldsMap().isEmpty());
    // Two fields of one name: the later wins on export, one key fills both.
    twins.fromStringList({ "a", "b" });
    QCOMPARE(twins.toJsonObject(), QJsonObject({ { "k", "b" } }));
    QCOMPARE(twins.toFieldsMap(), QVariantMap({ { "k", "b" } }));
    twins.fromJsonObject({ { "k", "c" } });
    QCOMPARE(twins.toStringList(), QStringList({ "c", "c" }));
}

void tst_OldZuAbstractTableModel::operations_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("expected"); // the signals
    QTest::addColumn<QString>("rows"); // afterwards
    QTest::addColumn<int>("alive"); // records afterwards
    QTest::addColumn<QStringList>("log");
    auto row = [](const char *name, const QString &steps, bool ok, const QString &expected,
                  const QString &rows, int alive, const QStringList &log = {}) {
        QTest::newRow(name) << steps << ok << expected << rows << alive << log;
    };
    const QString all = "changed %1,0-%1,3";
    row("setData", "edit 0 1 z", true, "changed 0,1-0,1", "1,z,x|2,b,y", 4);
    row("setData, same value: true, nothing emitted", "edit 0 1 a", true, "", fixture, 4);
    row("setData, column the record lacks", "edit 0 3 z", true, "changed 0,3-0,3", fixture, 4);
    row("new row: revert removes both objects", "insert 1 1|edit 1 0 n|revert", true,
        "+insert 1-1|inserted 1-1|changed 1,0-1,0|-remove 1-1|removed 1-1", fixture, 4);
    row("new row, submitted: revert goes back to the submit",
        "insert 2 1|edit 2 0 n|submit|edit 2 0 m|edit 2 1 o|revert", true,
        "+insert 2-2|inserted 2-2|changed 2,0-2,0|changed 2,0-2,0|changed 2,1-2,1|" + all.arg(2),
        fixture + "|n,,", 6);
    row("several edits: back to the snapshot", "edit 0 0 p|edit 0 0 q|revert", true,
        "changed 0,0-0,0|changed 0,0-0,0|" + all.arg(0), fixture, 4);
    row("submit copies into existing snapshots", "edit 0 0 p|submit|submit|revert", true,
        "changed 0,0-0,0", "p,a,x|2,b,y", 4);
    row("revertRow of an unedited row", "revertRow 0|revertRow -1|revertRow 2", true, "", fixture,
        4);
    row("copy, then revertRow of the target", "copy 0 1|revertRow 1", true,
        all.arg(1) + "|" + all.arg(1), fixture, 4);
    row("copy", "copy 1 0", true, all.arg(0), "2,b,y|2,b,y", 4);
    row("removeRows", "remove 0 2", true, "-remove 0-1|removed 0-1", "", 0);
    row("removeRows, count 0", "remove 0 0", false, "", fixture, 4);
    row("removeRows, past the end", "remove 0 3", false, "", fixture, 4);
    row("insertRows, past the end", "insert 3 1", false, "", fixture, 4);
    // Imports give every row a snapshot: their values survive edits and revert.
    const QString one = "+insert 2-2|inserted 2-2|" + all.arg(2) + "|changed 2,0-2,0|" + all.arg(2);
    const QString two = "+insert 2-3|inserted 2-3|changed 2,0-3,3|changed 2,0-2,0|changed 3,1-3,1|"
        + all.arg(3) + "|" + all.arg(2); // revert works from the last row
    row("import json object", R"(object {"id":"j","amount":3}|edit 2 0 e|revert)", true, one,
        fixture + "|j,,3", 6);
    row("import json array", R"(array [{"name":"k"},7]|edit 2 0 e|edit 3 1 e|revert)", true, two,
        fixture + "|,k,|,,", 8);
    row("import fields map", R"(map {"id":"m","name":"n","amount":"o"}|edit 2 0 e|revert)", true,
        one, fixture + "|m,n,o", 6);
    row("import fields maps",
        R"(maps [{"id":"m","name":"n","amount":"o"},{"name":"p"}]|edit 2 0 e|edit 3 1 e|revert)",
        true, two, fixture + "|m,n,o|,p,", 8, { "3 <>: Field Count (3) != Map Count (1)" });
    row("import strings", R"(strings ["s","t","u"]|edit 2 0 e|revert)", true, one,
        fixture + "|s,t,u", 6);
    row("import strings list", R"(list [["s","t","u"],["v","w"]]|edit 2 0 e|edit 3 1 e|revert)",
        true, two, fixture + "|s,t,u|v,w,", 8,
        { "3 <>: Field Count (3) != Strings Count (2)", R"(1 ("v", "w"))" });
    row("import, refused", "refuse|object {}", false, "", fixture, 4);
    row("import list, refused", R"(refuse|list [["a","b","c"]])", false, "", fixture, 4);
    row("import, empty array", "array []", false, "", fixture, 4);
    row("import, empty maps", "maps []", false, "", fixture, 4);
    row("import, empty list", "list []", false, "", fixture, 4);
}

void tst_OldZuAbstractTableModel::operations()
{
    QFETCH(QString, steps);
    QFETCH(bool, ok);
    QFETCH(QString, expected);
    QFETCH(QString, rows);
    QFETCH(int, alive);
    QFETCH(QStringList, log);
    {
        Records model;
        QVERIFY(model.insertFromStringsList({ { "1", "a", "x" }, { "2", "b", "y" } }));
        QCOMPARE(Record::alive, 4);
        zutest::LogCapture capture;
        bool result = false;
        QCOMPARE(recordSignals(model, [&] { result = run(model, steps); }).join('|'), expected);
        QCOMPARE(result, ok);
        QCOMPARE(model.rows(), rows);
        QCOMPARE(Record::alive, alive);
        QCOMPARE(logLines(capture), log);
    }
    QCOMPARE(Record::alive, 0);
}

void tst_OldZuAbstractTableModel::roles()
{
    Records model;
    QVERIFY(model.insertFromStringsList({ { "note", "bad", "z" }, { "n", "ok", "z" } }));
    const QModelIndex noted = model.index(0, 0), plain = model.index(1, 2);
    QCOMPARE(model.data(noted, Roles::ItemHintRole), QVariant(13));
    QVERIFY(!model.data(plain, Roles::ItemHintRole).isValid());
    QCOMPARE(model.data(noted, Qt::DisplayRole), QVariant("note"));
    QCOMPARE(model.data(model.index(0, 1), Roles::ItemValidRole), QVariant(false));
    QCOMPARE(model.data(model.index(0, 3), Roles::RowValidRole), QVariant(false));
    QCOMPARE(model.data(plain, Roles::RowValidRole), QVariant(true));
    QCOMPARE(model.data(plain, Roles::ItemEditableRole), QVariant(1));
    QCOMPARE(model.data(plain, Roles::ItemEmptyTextRole), QVariant(QString("")));
    QVERIFY(model.flags(plain) & Qt::ItemIsEditable);
    QVERIFY(!model.flags(QModelIndex()));
    // Not answered here, though the cell-pair model answers them.
    for (int role :
         { int(Roles::ItemOptionsRole), int(Roles::ModelOptionsRole), int(Roles::PreviousValueRole),
           int(Roles::PreviousValueRole2), int(Qt::ToolTipRole), 270 })
        QVERIFY2(!model.data(plain, role).isValid(), qPrintable(QString::number(role)));
    QCOMPARE(model.data(QModelIndex(), Roles::ModelNameRole), QVariant("OldZuAbstractTableModel"));
    QVERIFY(!model.data(QModelIndex(), Qt::EditRole).isValid());
    QVERIFY(!model.setData(plain, "z", Qt::DisplayRole));
    QCOMPARE(model.headerData(0, Qt::Horizontal), QVariant(1)); // Qt's default
    QVERIFY(!model.dataObjectAtRow(-1) && !model.dataObjectAtRow(2));
    QCOMPARE(model.dataObjectAt(plain), model.dataObjectAtRow(1));
    QCOMPARE(model.rowCount(noted), 2); // for any parent
    QCOMPARE(model.itemInvalidReason(noted),
             "No reason given - reimp ZuAbstractTableModel::modelRowDataInvalidReason");
}

void tst_OldZuAbstractTableModel::underModelTester()
{
    // The model gives its row count for any parent, also for a cell: the tester
    // would then look for child rows under each cell (roles() tests that answer
    // directly). Here a cell has no rows, as in a plain table.
    struct Flat : Records
    {
        int rowCount(const QModelIndex &parent = {}) const override
        {
            return parent.isValid() ? 0 : Records::rowCount(parent);
        }
    } model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QString steps = R"(insert 0 2|edit 1 1 x|edit 0 3 y|list [["1","2","3"],["4","5"]]|)"
                          R"(maps [{"id":"7"}]|object {"id":1}|array [{"name":2},{}]|)"
                          R"(strings ["a","b","c"]|map {"name":"q"}|copy 4 0|submit|)"
                          "edit 5 2 y|revertRow 5|insert 1 1|revert|remove 1 2";
    for (const QString &step : steps.split('|'))
        QVERIFY2(run(model, step), qPrintable(step));
    QCOMPARE(model.rows(), "7,,|4,5,|7,,|1,,|,2,|,,|a,b,c|,q,");
}

void tst_OldZuAbstractTableModel::inTableView()
{
    Records model;
    QTableView view;
    view.setModel(&model);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QVERIFY(model.insertFromStrings({ "1", "a", "x" }));
    QVERIFY(model.insertRows(1, 1));
    view.resizeColumnsToContents(); // reads every cell, the one past the record's fields too

    // An edit committed with Return: the view also calls submit(), so the new
    // row gets its snapshot and survives revert().
    const QModelIndex cell = model.index(1, 1);
    view.setCurrentIndex(cell);
    view.edit(cell);
    auto *editor = view.findChild<QLineEdit *>();
    QVERIFY(editor);
    editor->setText("typed");
    QTest::keyClick(editor, Qt::Key_Return); // the delegate commits from the event loop
    QTRY_COMPARE(model.rows(), "1,a,x|,typed,");
    model.revert();
    QCOMPARE(model.rows(), "1,a,x|,typed,");
    QVERIFY(model.removeRows(0, 2));
    QCOMPARE(Record::alive, 0);
    QCOMPARE(view.model()->rowCount(), 0);
}

ZU_TEST_MAIN(tst_OldZuAbstractTableModel)
#include "tst_oldzuabstracttablemodel.moc"
