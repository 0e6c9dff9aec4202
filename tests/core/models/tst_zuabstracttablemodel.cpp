#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/ZuAbstractTableModel.h>

#include <QAbstractItemModelTester>
#include <QJsonDocument>
#include <QStandardItemModel>

#include <functional>

using Model = ZuAbstractTableModel;

namespace {

// Columns a, b, c unless told otherwise. Column 2 is not editable, a cell
// holding "bad" is invalid, one holding "note" has a note, inserts can be refused.
class Table : public Model
{
public:
    explicit Table(QFlags<ZuCore::ModelOption> options = {},
                   const QStringList &headers = { "a", "b", "c" })
        : Model(options)
    {
        for (const QString &header : headers)
            setHeaderData(headerValues.size(), Qt::Horizontal, header);
    }
    bool refuseInserts = false;
    bool insertRows(int row, int count, const QModelIndex &parent = {}) override
    {
        return !refuseInserts && Model::insertRows(row, count, parent);
    }
    int itemIsEditable(const QModelIndex &index) const override { return index.column() != 2; }
    bool itemIsValid(const QModelIndex &index) const override
    {
        return data(index, Qt::EditRole) != "bad";
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == ItemNoteRole && Model::data(index, Qt::EditRole) == "note")
            return "a note";
        return Model::data(index, role);
    }
};

const QString fixture = R"([{"a":"A","b":1,"c":"x"},{"a":"B","b":2,"c":"y"}])";
const QString name = "\"ZuAbstractTableModel\" ";

// Every notification as one line ("+insert" for about-to-insert, "-remove" for
// about-to-remove, "[roles]"), with "/" and isDirty() as it stood then.
QStringList recordSignals(Model &model, const std::function<void()> &action)
{
    QStringList log;
    QObject context;
    auto note = [&](const QString &what) { log << what + QString(" /%1").arg(model.isDirty()); };
    auto rows = [&](const char *what) {
        return [=](const QModelIndex &, int first, int last) {
            note(QString("%1 %2-%3").arg(what).arg(first).arg(last));
        };
    };
    QObject::connect(&model, &Model::rowsAboutToBeInserted, &context, rows("+insert"));
    QObject::connect(&model, &Model::rowsInserted, &context, rows("inserted"));
    QObject::connect(&model, &Model::rowsAboutToBeRemoved, &context, rows("-remove"));
    QObject::connect(&model, &Model::rowsRemoved, &context, rows("removed"));
    QObject::connect(
        &model, &Model::dataChanged, &context,
        [=](const QModelIndex &tl, const QModelIndex &br, const QVector<int> &roles) {
            note(QString("changed %1,%2-%3,%4 [%5]")
                     .arg(tl.row())
                     .arg(tl.column())
                     .arg(br.row())
                     .arg(br.column())
                     .arg(roles.isEmpty() ? QString() : QString::number(roles.first())));
        });
    QObject::connect(&model, &Model::dataSubmitted, &context,
                     [=](bool was) { note(QString("submitted %1").arg(was)); });
    action();
    note("end");
    return log;
}

// Runs "step|step|..." and gives the last step's answer; void steps answer true.
bool run(Model &model, const QString &script)
{
    static QStandardItemModel foreign(10, 10); // valid indexes outside any table here
    bool ok = true;
    for (const QString &step : script.split('|')) {
        const QString op = step.section(' ', 0, 0), arg = step.section(' ', 1);
        ok = true;
        const QStringList a = arg.split(' ');
        auto n = [&](int i) { return a.value(i).toInt(); };
        auto cell = [&](int i) { return model.index(n(i), n(i + 1)); };
        bool isInt = false;
        const int number = a.value(2).toInt(&isInt);
        const QVariant value = isInt ? QVariant(number) : QVariant(a.value(2));
        const QJsonDocument json = QJsonDocument::fromJson(arg.toUtf8());
        QList<QStringList> lists;
        for (const QString &list : arg.split('/', Qt::SkipEmptyParts))
            lists << list.split(',');
        if (op == "edit" || op == "display")
            ok = model.setData(cell(0), value, op == "edit" ? Qt::EditRole : Qt::DisplayRole);
        else if (op == "foreign")
            ok = model.setData(foreign.index(n(0), n(1)), value);
        else if (op == "insert" || op == "remove")
            ok = op == "insert" ? model.insertRows(n(0), n(1)) : model.removeRows(n(0), n(1));
        else if (op == "copy")
            ok = model.copy(cell(0), cell(2));
        else if (op == "submit")
            ok = model.submit();
        else if (op == "rows")
            ok = model.rowCount() == n(0);
        else if (op == "json")
            ok = model.insertFromJsonString(arg);
        else if (op == "array")
            ok = model.insertFromJsonArray(json.array());
        else if (op == "object")
            ok = model.insertFromJsonObject(json.object());
        else if (op == "strings")
            ok = model.insertFromStrings(arg.split(','));
        else if (op == "list")
            ok = model.insertFromStringsList(lists);
        else if (op == "revert")
            model.revert();
        else if (op == "clear")
            model.clear();
        else
            model.revertRow(n(0));
    }
    return ok;
}

// "level message" per record, trailing blanks of the stream dropped.
QStringList logLines(const zutest::LogCapture &capture)
{
    QStringList lines;
    for (const zutest::LogRecord &record : capture.records())
        lines << QString::number(record.level) + ' ' + record.message.trimmed();
    return lines;
}

} // namespace

class tst_ZuAbstractTableModel : public QObject
{
    Q_OBJECT

private slots:
    void headers();
    void roles_data();
    void roles();
    void cellStates_data();
    void cellStates();
    void operations_data();
    void operations();
    void imports_data();
    void imports();
    void exports();
    void underModelTester();
};

void tst_ZuAbstractTableModel::headers()
{
    zutest::LogCapture capture;
    Model model(ZuCore::ModelOption8);
    QCOMPARE(model.rowCount() + model.columnCount(), 0);
    QCOMPARE(model.data(QModelIndex(), Model::ModelNameRole), QVariant("ZuAbstractTableModel"));
    QCOMPARE(model.data(QModelIndex(), Model::ModelOptionsRole), QVariant(8));
    QVERIFY(!model.data(QModelIndex(), Model::ItemOptionsRole).isValid());
    QVERIFY(!model.setHeaderData(0, Qt::Horizontal, "a", Qt::DisplayRole));
    QCOMPARE(model.columnCount(), 0);
    QVERIFY(
        model.setHeaderData(0, Qt::Vertical, "a", Qt::EditRole)); // lands in the horizontal header
    QVERIFY(model.setHeaderData(0, Qt::Horizontal, "first", Qt::EditRole));
    QCOMPARE(model.columnCount(), 1);
    QCOMPARE(model.headerData(0, Qt::Horizontal, Qt::ToolTipRole), QVariant("first"));
    QVERIFY(!model.headerData(0, Qt::Vertical, Qt::DisplayRole).isValid());
    QVERIFY(!model.headerData(5, Qt::Horizontal, Qt::DisplayRole).isValid());
    QCOMPARE(logLines(capture), QStringList("4 Header data not set for section 5"));
    QCOMPARE(model.flags(QModelIndex()), Qt::ItemFlags());
    QCOMPARE(model.itemInvalidReason(QModelIndex()),
             "No reason given - reimp ZuAbstractTableModel::modelRowDataInvalidReason");
}

void tst_ZuAbstractTableModel::roles_data()
{
    QTest::addColumn<int>("options");
    QTest::addColumn<int>("itemOptions");
    QTest::addColumn<QVariant>("hint");
    QTest::newRow("none") << 0 << 0 << QVariant(13);
    QTest::newRow("8") << 8 << 2 << QVariant(13);
    QTest::newRow("16") << 16 << 1 << QVariant();
    QTest::newRow("8 and 16") << 24 << 3 << QVariant();
    QTest::newRow("read-only, untested here") << 1 << 0 << QVariant(13);
}

void tst_ZuAbstractTableModel::roles()
{
    QFETCH(int, options);
    QFETCH(int, itemOptions);
    QFETCH(QVariant, hint);
    Table model { QFlags<ZuCore::ModelOption>(options) };
    QVERIFY(model.insertFromStringsList({ { "note", "bad", "z" }, { "n", "ok", "z" } }));
    const QModelIndex noted = model.index(0, 0), fixed = model.index(0, 2);
    QCOMPARE(model.data(noted, Model::ItemOptionsRole), QVariant(itemOptions));
    QCOMPARE(model.data(noted, Model::ModelOptionsRole), QVariant(options));
    QCOMPARE(model.data(noted, Model::ItemHintRole), hint);
    QVERIFY(!model.data(model.index(1, 0), Model::ItemHintRole).isValid()); // no note
    QVERIFY(!model.data(noted, 270).isValid());
    QVERIFY(model.flags(fixed) & Qt::ItemIsEditable); // even where the item check says no
    QCOMPARE(model.data(fixed, Model::ItemEditableRole), QVariant(0));
    QCOMPARE(model.data(model.index(0, 1), Model::ItemValidRole), QVariant(false));
    QCOMPARE(model.data(fixed, Model::RowValidRole), QVariant(false));
    QCOMPARE(model.data(model.index(1, 2), Model::RowValidRole), QVariant(true));
    QCOMPARE(model.data(fixed, Model::ItemEmptyTextRole), QVariant(QString("")));
    QCOMPARE(model.data(fixed, Qt::DisplayRole), QVariant("z"));
    QVERIFY(!model.data(fixed, Qt::ToolTipRole).isValid());
}

void tst_ZuAbstractTableModel::cellStates_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QVariantList>("cell"); // current, previous, isDirty(index) of cell 0,0
    QTest::addColumn<QVariant>("afterRevert"); // invalid: the row is removed
    const QVariant none;
    auto row
        = [](const char *name, const char *steps, const QVariantList &cell, const QVariant &after) {
              QTest::newRow(name) << QString(steps) << cell << after;
          };
    row("fresh", "insert 0 1", { none, none, false }, none);
    row("loaded", "strings A,b,c", { "A", "A", false }, "A");
    row("edited twice", "strings A,b,c|edit 0 0 B|edit 0 0 C", { "C", "B", true }, "B");
    row("edited back", "strings A,b,c|edit 0 0 B|edit 0 0 A", { "A", "B", true }, "B");
    row("submitted", "strings A,b,c|edit 0 0 B|submit", { "B", "B", false }, "B");
    row("fresh, edited once", "insert 0 1|edit 0 0 X|edit 0 1 X|edit 0 2 X", { "X", none, true },
        none);
    row("fresh, edited twice",
        "insert 0 1|edit 0 0 X|edit 0 1 X|edit 0 2 X|edit 0 0 Y|edit 0 1 Y|edit 0 2 Y",
        { "Y", "X", true }, "X");
    row("fresh, partly edited, submitted", "insert 0 1|edit 0 0 B|submit", { "B", "B", false },
        none);
    row("loaded null", R"(json [{"a":"A","b":null,"c":"c"}])", { "A", "A", false }, none);
}

void tst_ZuAbstractTableModel::cellStates()
{
    QFETCH(QString, steps);
    QFETCH(QVariantList, cell);
    QFETCH(QVariant, afterRevert);
    Table model;
    QVERIFY(run(model, steps));
    const QModelIndex index = model.index(0, 0);
    QCOMPARE(QVariantList({ index.data(Qt::EditRole), index.data(Model::PreviousValueRole),
                            model.isDirty(index) }),
             cell);
    QCOMPARE(index.data(Model::PreviousValueRole2), cell.at(1));
    model.revert();
    QVERIFY(!model.isDirty());
    QCOMPARE(model.rowCount(), afterRevert.isValid() ? 1 : 0);
    QCOMPARE(model.index(0, 0).data(Qt::EditRole), afterRevert);
}

void tst_ZuAbstractTableModel::operations_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("log");
    auto row = [](const char *name, const char *steps, bool ok, const char *expected,
                  const QStringList &log = {}) {
        QTest::newRow(name) << QString(steps) << ok << QString(expected) << log;
    };
    row("setData", "edit 1 2 z", true, "changed 1,2-1,2 [2] /0|end /1");
    row("insertRows", "insert 1 2", true, "+insert 1-2 /0|inserted 1-2 /0|end /1");
    row("removeRows", "remove 0 2", true, "-remove 0-1 /0|removed 0-1 /0|end /1");
    row("copy", "copy 0 2 1 0", true, "changed 1,0-1,2 [] /0|end /0");
    row("submit clean", "submit", true, "submitted 0 /0|end /0");
    row("submit dirty", "edit 0 0 q|submit", true, "changed 0,0-0,0 [2] /0|submitted 1 /1|end /0");
    row("revert edited and new", "edit 0 1 7|insert 2 1|revert|rows 2", true,
        "changed 0,1-0,1 [2] /0|+insert 2-2 /1|inserted 2-2 /1|-remove 2-2 /1|removed 2-2 /1|"
        "changed 0,0-0,2 [] /1|end /0");
    row("revertRow, submitted new row", R"(object {"a":"n"}|submit|revertRow 2|rows 2)", true,
        "+insert 2-2 /0|inserted 2-2 /0|submitted 1 /1|-remove 2-2 /0|removed 2-2 /0|end /1",
        { "3 " + name + "\"b\" Col name not found in model.",
          "3 " + name + "\"c\" Col name not found in model." });
    row("clear", "clear|rows 0", true, "-remove 0-1 /0|removed 0-1 /0|end /1");
    row("removed rows stay gone", "remove 0 1|revert|rows 1", true,
        "-remove 0-0 /0|removed 0-0 /0|end /0");
    // Refusals: nothing emitted, nothing changed.
    row("setData display role", "display 0 0 z", false, "end /0");
    row("setData invalid index", "edit 0 5 z", false, "end /0");
    row("setData row outside", "foreign 5 0 z", false, "end /0", { "4 Invalid Row " + name + "5" });
    row("setData column outside", "foreign 0 7 z", false, "end /0",
        { "4 Invalid Column " + name + "7" });
    row("setData same value", "edit 0 0 A", false, "end /0");
    row("setData equal, other type", "edit 0 1 1", false, "end /0");
    row("insertRows past the end", "insert 3 1", false, "end /0");
    row("insertRows none", "insert 0 0", false, "end /0");
    row("removeRows too many", "remove 0 3", false, "end /0");
    row("removeRows none", "remove 0 0", false, "end /0");
    row("copy invalid index", "copy 0 0 0 9", false, "end /0");
    row("revertRow -1, 2, unedited 0", "revertRow -1|revertRow 2|revertRow 0", true, "end /0");
}

void tst_ZuAbstractTableModel::operations()
{
    QFETCH(QString, steps);
    QFETCH(bool, ok);
    QFETCH(QString, expected);
    QFETCH(QStringList, log);
    Table model;
    QVERIFY(model.insertFromJsonString(fixture));
    const QString before = model.toJsonString();
    zutest::LogCapture capture;
    bool result = false;
    QCOMPARE(recordSignals(model, [&] { result = run(model, steps); }).join('|'), expected);
    QCOMPARE(result, ok);
    if (expected == "end /0")
        QCOMPARE(model.toJsonString(), before);
    QCOMPARE(logLines(capture), log);
}

void tst_ZuAbstractTableModel::imports_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<int>("added"); // -1: refused, the table stays as it was
    QTest::addColumn<int>("changes");
    QTest::addColumn<bool>("dirty");
    QTest::addColumn<QStringList>("log");
    QTest::addColumn<QStringList>("error"); // title, text
    QTest::addColumn<bool>("refuseInserts");
    auto row = [](const QString &name, const QString &steps, int added, int changes, bool dirty,
                  const QStringList &log = {}, const QStringList &error = {}, bool refuse = false) {
        QTest::newRow(qPrintable(name))
            << steps << added << changes << dirty << log << error << refuse;
    };
    auto fail = [&](const QString &name, const QString &steps, const QStringList &log = {},
                    const QStringList &error = {},
                    bool refuse = false) { row(name, steps, -1, 0, true, log, error, refuse); };
    const QString missing = "3 " + name + "\"%1\" Col name not found in model.";
    row("json text", R"(json [{"a":1,"b":2,"c":3},{"a":"x","b":"y","c":null}])", 2, 1, false);
    row("json array", R"(array [{"a":1,"b":2,"c":3}])", 1, 1, false);
    row("non-objects", "json [7]", 1, 1, false,
        { missing.arg("a"), missing.arg("b"), missing.arg("c") });
    row("json object", R"(object {"a":"x","c":1,"zz":0})", 1, 0, true, { missing.arg("b") });
    row("strings list", "list 1,2,3/4,5,6", 2, 1, true);
    row("strings", "strings 1,2,3", 1, 1, true);

    const QString deep = QString(5000, '[') + QString(5000, ']');
    for (const QString &json :
         QStringList { "not json", "[{\"a\":1}", "[1,]", "\"text\"", "[{\"a\":1e400}]", deep }) {
        QJsonParseError e;
        QJsonDocument::fromJson(json.toUtf8(), &e);
        fail("parse error " + json.left(10), "json " + json,
             { QString("4 %1%2 \"%3\"").arg(name).arg(e.error).arg(e.errorString()) },
             { QString("Insert Error [%1]").arg(e.error), e.errorString() });
    }
    const QString notArray = "JSON Document is not an array.";
    fail("json object text", R"(json {"a":[1]})", { "4 " + name + notArray },
         { "Insert Error", notArray });
    fail("empty text", "json");
    fail("empty array", "json  [ ] ");
    fail("empty list", "list");
    const QStringList refused { "4 " + name + "Unable to insert rows." };
    fail("array refused", "json [{}]", refused, {}, true);
    fail("object refused", "object {}", refused, {}, true);
    fail("strings refused", "strings 1,2,3", refused, {}, true);
    fail("list refused", "list 1,2,3", refused, {}, true);
    fail("strings, wrong count", "strings 1,2",
         { "4 " + name + "\"Mismatched counts: Items Count = 2  columnCount=3\"" });
    fail("list, second wrong", "list 1,2,3/4/5,6,7",
         { "4 " + name + "\"Mismatched counts at index:1 Items Count = 1  columnCount=3\"" });
}

void tst_ZuAbstractTableModel::imports()
{
    QFETCH(QString, steps);
    QFETCH(int, added);
    QFETCH(int, changes);
    QFETCH(bool, dirty);
    QFETCH(QStringList, log);
    QFETCH(QStringList, error);
    QFETCH(bool, refuseInserts);
    Table model;
    QVERIFY(model.insertFromStrings({ "p", "q", "r" })); // sets the dirty flag
    model.refuseInserts = refuseInserts;
    QSignalSpy inserted(&model, &Model::rowsInserted), changed(&model, &Model::dataChanged),
        errors(&model, &Model::error);
    bool freshWhenInserted = false;
    connect(&model, &Model::rowsInserted, this, [&](const QModelIndex &, int, int last) {
        freshWhenInserted = !model.index(last, 0).data().isValid();
    });
    zutest::LogCapture capture;
    QCOMPARE(run(model, steps), added > 0);
    QCOMPARE(logLines(capture), log);
    QCOMPARE(errors.count(), error.isEmpty() ? 0 : 1);
    if (!error.isEmpty())
        QCOMPARE(errors.first(), QVariantList({ error.at(0), error.at(1) }));
    QCOMPARE(model.isDirty(), dirty);
    QCOMPARE(changed.count(), changes);
    QCOMPARE(inserted.count(), added > 0 ? 1 : 0); // one notification for any number of rows
    QCOMPARE(model.rowCount(), 1 + qMax(added, 0));
    QCOMPARE(model.toStrings(0), QStringList({ "p", "q", "r" }));
    if (added < 0)
        return;
    QVERIFY(freshWhenInserted); // the rows reach views before the fill
    if (changes)
        QCOMPARE(changed.first(),
                 QVariantList({ model.index(1, 0), model.index(added, 2),
                                QVariant::fromValue(QVector<int>()) }));
    for (int c = 0; c < 3; ++c)
        QVERIFY(!model.isDirty(model.index(added, c)));
}

void tst_ZuAbstractTableModel::exports()
{
    Table model;
    QCOMPARE(model.toJsonString(), "[]");
    const QString text = R"([{"a":1,"b":"two","c":true},{"a":-2.5,"b":"","c":null}])";
    QVERIFY(model.insertFromJsonString(text));
    QCOMPARE(model.toJsonString(), text);
    QCOMPARE(model.index(0, 0).data().userType(), int(QMetaType::Double)); // JSON's one number type
    QCOMPARE(model.toStringsList(),
             QList<QStringList>({ { "1", "two", "true" }, { "-2.5", "", "" } }));
    QCOMPARE(model.toStrings(9), QStringList({ "", "", "" }));
    QCOMPARE(model.toJsonObject(9),
             QJsonObject({ { "a", QJsonValue() }, { "b", QJsonValue() }, { "c", QJsonValue() } }));

    // A load counts the table as clean but leaves earlier edits staged.
    QVERIFY(model.setData(model.index(0, 1), "edited"));
    QVERIFY(model.insertFromJsonArray({ QJsonObject { { "a", 3 }, { "b", 4 }, { "c", 5 } } }));
    QVERIFY(!model.isDirty() && model.isDirty(model.index(0, 1)));
    model.revert(); // row 1 holds a null previous value: it counts as new
    QCOMPARE(model.toStringsList(),
             QList<QStringList>({ { "1", "two", "true" }, { "3", "4", "5" } }));

    Model bare;
    QVERIFY(bare.insertRows(0, 2));
    QVERIFY(bare.toJsonArray().isEmpty());
    Table twins(
        {}, { "k", "k", "m" }); // the later column wins on export; one member fills both on import
    QVERIFY(twins.insertFromJsonObject({ { "k", "both" }, { "m", 3 } }));
    QVERIFY(twins.setData(twins.index(0, 0), "first"));
    QCOMPARE(twins.toJsonObject(0), QJsonObject({ { "k", "both" }, { "m", 3 } }));
    QCOMPARE(twins.toStrings(0), QStringList({ "first", "both", "3" }));
}

void tst_ZuAbstractTableModel::underModelTester()
{
    // The tester reads headers only inside the declared sections, where their
    // answer-for-every-role rule breaks none of its checks.
    Table model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(model.insertRows(0, 3));
    QVERIFY(model.setData(model.index(1, 1), "x"));
    QVERIFY(model.insertFromJsonString(fixture));
    QVERIFY(model.insertFromJsonObject({ { "a", "o" } }));
    QVERIFY(model.insertFromStringsList({ { "1", "2", "3" }, { "4", "5", "6" } }));
    QVERIFY(model.insertRows(2, 2));
    QVERIFY(model.copy(model.index(4, 0), model.index(0, 0)));
    QVERIFY(model.submit());
    QVERIFY(model.setData(model.index(5, 2), "y"));
    model.revertRow(5);
    model.revert();
    QVERIFY(model.removeRows(1, 2));
    model.clear();
    QCOMPARE(model.rowCount(), 0);
}

ZU_TEST_MAIN(tst_ZuAbstractTableModel)
#include "tst_zuabstracttablemodel.moc"
