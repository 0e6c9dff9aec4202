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
            note(QString::asprintf(
                "changed %d,%d-%d,%d [%s]", tl.row(), tl.column(), br.row(), br.column(),
                qPrintable(roles.isEmpty() ? QString() : QString::number(roles.first()))));
        });
    QObject::connect(
        &model, &Model::error, &context,
        [=](const QString &title, const QString &text) { note("error " + title + ": " + text); });
    QObject::connect(&model, &Model::dataSubmitted, &context,
                     [=](bool was) { note(QString("submitted %1").arg(was)); });
    action();
    note("end");
    return log;
}

// Runs "step|step|..." and gives the last step's answer; void steps answer true.
bool run(Table &model, const QString &script)
{
    static QStandardItemModel foreign(10, 10); // valid indexes outside any table here
    bool ok = true;
    for (const QString &step : script.split('|')) {
        const QString arg = step.section(' ', 1);
        const QStringList a = arg.split(' ');
        auto n = [&](int i) { return a.value(i).toInt(); };
        auto cell = [&](int i) { return model.index(n(i), n(i + 1)); };
        const QJsonObject object = QJsonDocument::fromJson(arg.toUtf8()).object();
        QList<QStringList> lists;
        for (const QString &list : arg.split('/', Qt::SkipEmptyParts))
            lists << list.split(',');
        auto done = [](const std::function<void()> &f) {
            return [=] {
                f();
                return true;
            };
        };
        const QHash<QString, std::function<bool()>> ops {
            { "edit", [&] { return model.setData(cell(0), a.value(2)); } },
            { "display", [&] { return model.setData(cell(0), a.value(2), Qt::DisplayRole); } },
            { "foreign", [&] { return model.setData(foreign.index(n(0), n(1)), a.value(2)); } },
            { "insert", [&] { return model.insertRows(n(0), n(1)); } },
            { "remove", [&] { return model.removeRows(n(0), n(1)); } },
            { "copy", [&] { return model.copy(cell(0), cell(2)); } },
            { "copyForeign", [&] { return model.copy(foreign.index(n(0), n(1)), cell(2)); } },
            { "submit", [&] { return model.submit(); } },
            { "json", [&] { return model.insertFromJsonString(arg); } },
            { "object", [&] { return model.insertFromJsonObject(object); } },
            { "strings", [&] { return model.insertFromStrings(arg.split(',')); } },
            { "list", [&] { return model.insertFromStringsList(lists); } },
            { "header", [&] { return model.headerData(n(0), Qt::Horizontal).isValid(); } },
            { "revert", done([&] { model.revert(); }) },
            { "revertRow", done([&] { model.revertRow(n(0)); }) },
            { "clear", done([&] { model.clear(); }) },
            { "refuse", done([&] { model.refuseInserts = true; }) },
        };
        const auto op = ops.constFind(step.section(' ', 0, 0));
        if (op == ops.cend()) {
            QTest::qFail(qPrintable("unknown step: " + step), __FILE__, __LINE__);
            return false;
        }
        ok = (*op)();
    }
    return ok;
}

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
    void roles_data();
    void roles();
    void cellStates_data();
    void cellStates();
    void operations_data();
    void operations();
    void exports();
    void underModelTester();
};

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
    row("edited twice", "strings A,b,c|edit 0 0 B|edit 0 0 C", { "C", "B", true }, "B");
    row("submitted", "strings A,b,c|edit 0 0 B|submit", { "B", "B", false }, "B");
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
    auto row = [](const QString &name, const QString &steps, bool ok, const QString &expected,
                  const QStringList &log = {}) {
        QTest::newRow(qPrintable(name)) << steps << ok << expected << log;
    };
    const QString missing = "3 " + name + "\"%1\" Col name not found in model.";
    row("setData", "edit 1 2 z", true, "changed 1,2-1,2 [2] /0|end /1");
    row("insertRows", "insert 1 2", true, "+insert 1-2 /0|inserted 1-2 /0|end /1");
    row("removeRows", "remove 0 2", true, "-remove 0-1 /0|removed 0-1 /0|end /1");
    row("copy", "copy 0 2 1 0", true, "changed 1,0-1,2 [] /0|end /0");
    row("submit clean", "submit", true, "submitted 0 /0|end /0");
    row("submit dirty", "edit 0 0 q|submit", true, "changed 0,0-0,0 [2] /0|submitted 1 /1|end /0");
    row("revert edited and new", "edit 0 1 7|insert 2 1|revert", true,
        "changed 0,1-0,1 [2] /0|+insert 2-2 /1|inserted 2-2 /1|-remove 2-2 /1|removed 2-2 /1|"
        "changed 0,0-0,2 [] /1|end /0");
    // Imports: one notification for any number of rows, the rows before the fill.
    row("json text, clears dirty",
        R"(edit 0 0 q|json [{"a":1,"b":2,"c":3},{"a":"x","b":"y","c":null}])", true,
        "changed 0,0-0,0 [2] /0|+insert 2-3 /1|inserted 2-3 /1|changed 2,0-3,2 [] /1|end /0");
    row("strings list, dirty", "list 1,2,3/4,5,6", true,
        "+insert 2-3 /0|inserted 2-3 /0|changed 2,0-3,2 [] /1|end /1");
    row("object, no fill; revertRow of a submitted new row",
        R"(object {"a":"n","zz":0}|submit|revertRow 2)", true,
        "+insert 2-2 /0|inserted 2-2 /0|submitted 1 /1|-remove 2-2 /0|removed 2-2 /0|end /1",
        { missing.arg("b"), missing.arg("c") });
    row("clear", "clear", true, "-remove 0-1 /0|removed 0-1 /0|end /1");
    // Refusals: nothing emitted, nothing changed.
    row("setData display role", "display 0 0 z", false, "end /0");
    row("setData row outside", "foreign 5 0 z", false, "end /0", { "4 Invalid Row " + name + "5" });
    row("setData same value", "edit 0 0 A", false, "end /0");
    row("header outside", "header 3", false, "end /0", { "4 Header data not set for section 3" });
    row("insertRows past the end", "insert 3 1", false, "end /0");
    row("removeRows too many", "remove 0 3", false, "end /0");
    row("copy from another model", "copyForeign 0 0 1 0", false, "end /0");
    row("revertRow -1, 2, unedited 0", "revertRow -1|revertRow 2|revertRow 0", true, "end /0");
    QJsonParseError e; // Qt's parser judges the text; the texts built from its verdict are ours
    QJsonDocument::fromJson("not json", &e);
    row("parse error", "json not json", false,
        QString("error Insert Error [%1]: %2 /0|end /0").arg(e.error).arg(e.errorString()),
        { QString("4 %1%2 \"%3\"").arg(name).arg(e.error).arg(e.errorString()) });
    const QString notArray = "JSON Document is not an array.";
    row("json object text", R"(json {"a":[1]})", false,
        "error Insert Error: " + notArray + " /0|end /0", { "4 " + name + notArray });
    row("empty text", "json", false, "end /0");
    row("insert refused", "refuse|json [{}]", false, "end /0",
        { "4 " + name + "Unable to insert rows." });
    row("strings, wrong count", "strings 1,2", false, "end /0",
        { "4 " + name + "\"Mismatched counts: Items Count = 2  columnCount=3\"" });
    row("list, second wrong", "list 1,2,3/4/5,6,7", false, "end /0",
        { "4 " + name + "\"Mismatched counts at index:1 Items Count = 1  columnCount=3\"" });
}

void tst_ZuAbstractTableModel::operations()
{
    QFETCH(QString, steps);
    QFETCH(bool, ok);
    QFETCH(QString, expected);
    QFETCH(QStringList, log);
    Table model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(model.insertFromJsonString(fixture));
    QCOMPARE(model.toJsonString(), fixture);
    zutest::LogCapture capture;
    bool result = false;
    QCOMPARE(recordSignals(model, [&] { result = run(model, steps); }).join('|'), expected);
    QCOMPARE(result, ok);
    if (!ok)
        QCOMPARE(model.toJsonString(), fixture);
    QCOMPARE(logLines(capture), log);
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
    const QString steps = "insert 0 3|edit 1 1 x|json " + fixture
        + "|list 1,2,3/4,5,6|copy 4 0 0 0|submit|edit 5 2 y|revertRow 5|revert|remove 1 2|clear";
    for (const QString &step : steps.split('|'))
        QVERIFY2(run(model, step), qPrintable(step));
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.data(QModelIndex(), Model::ModelNameRole), QVariant("ZuAbstractTableModel"));
    QCOMPARE(model.itemInvalidReason(QModelIndex()),
             "No reason given - reimp ZuAbstractTableModel::modelRowDataInvalidReason");
}

ZU_TEST_MAIN(tst_ZuAbstractTableModel)
#include "tst_zuabstracttablemodel.moc"
