#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/ZuAbstractTableModel.h>

#include <QAbstractItemModelTester>
#include <QJsonDocument>
#include <QStandardItemModel>

#include <functional>

using Model = ZuAbstractTableModel;

namespace {

// Columns a, b, c by default; column 2 is not editable; a "note" cell has a note and is invalid.
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
    bool itemIsValid(const QModelIndex &index) const override { return index.data() != "note"; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == ItemNoteRole && Model::data(index, Qt::EditRole) == "note")
            return "a note";
        return Model::data(index, role);
    }
};

QVariantList answers(const Model &model, const QModelIndex &index, const QList<int> &roles)
{
    QVariantList list;
    for (int role : roles)
        list << model.data(index, role);
    return list;
}

} // namespace

class tst_ZuAbstractTableModel : public QObject
{
    Q_OBJECT

private slots:
    void roles_data();
    void roles();
    void operations_data();
    void operations();
    void exports();
};

void tst_ZuAbstractTableModel::roles_data()
{
    QTest::addColumn<int>("options");
    QTest::addColumn<int>("itemOptions");
    QTest::addColumn<QVariant>("hint");
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
    QVERIFY(model.insertFromStringsList({ { "a", "ok", "note" }, { "n", "ok", "z" } }));
    QCOMPARE(answers(model, {},
                     { Model::ModelNameRole, Model::ModelOptionsRole, Model::ItemOptionsRole }),
             QVariantList({ "ZuAbstractTableModel", options, QVariant() }));
    const QModelIndex noted = model.index(0, 2);
    QVERIFY(model.flags(noted) & Qt::ItemIsEditable); // even where the item check says no
    QCOMPARE(answers(model, noted,
                     { Model::ItemOptionsRole, Model::ItemHintRole, Model::ItemEditableRole,
                       Model::ItemValidRole, Model::ItemEmptyTextRole, Qt::DisplayRole, 270,
                       Qt::ToolTipRole }),
             QVariantList({ itemOptions, hint, 0, false, "", "note", QVariant(), QVariant() }));
    // Row 0 is invalid through column 2 alone; row 1 is valid and has no note.
    QCOMPARE(answers(model, model.index(0, 0), { Model::RowValidRole, Model::ItemValidRole }),
             QVariantList({ false, true }));
    QCOMPARE(answers(model, model.index(1, 2), { Model::RowValidRole, Model::ItemHintRole }),
             QVariantList({ true, QVariant() }));
    QVERIFY(model.setData(model.index(1, 0), "m"));
    QCOMPARE(
        answers(model, model.index(1, 0), { Model::PreviousValueRole, Model::PreviousValueRole2 }),
        QVariantList({ "n", "n" }));
    QCOMPARE(model.itemInvalidReason(QModelIndex()),
             "No reason given - reimp ZuAbstractTableModel::modelRowDataInvalidReason");
}

void tst_ZuAbstractTableModel::operations_data()
{
    QTest::addColumn<QString>("steps");
    // Each notification ("+ins", "-rm": about to; "[roles]"), then "ok"/"no" (the last step's
    // answer) with the table, each "*" while isDirty() was true; then the log lines.
    QTest::addColumn<QString>("expected");
    auto row = [](const char *name, const QString &steps, const QString &expected) {
        QTest::newRow(name) << steps << expected;
    };
    const QString fixed = "A,1,x/B,2,y"; // the table as loaded
    const QString same = "no " + fixed; // a refusal changes nothing
    const QString err = "|4 \"ZuAbstractTableModel\" ";
    const QString missing = "|3 \"ZuAbstractTableModel\" \"%1\" Col name not found in model.";
    row("removeRows", "remove 0 2", "-rm 0-1|rm 0-1|ok *");
    row("copy", "copy 0 2 1 0", "chg 1,0-1,2[]|ok A,1,x/A,1,x");
    row("revert edited and new", "edit 0 1 7|insert 2 1|revert",
        "chg 0,1-0,1[2]|+ins 2-2*|ins 2-2*|-rm 2-2*|rm 2-2*|chg 0,0-0,2[]*|ok A,1,x/B,2,y");
    // Imports: one notification for any number of rows, the rows before the fill.
    row("json text, clears dirty",
        R"(edit 0 0 q|json [{"a":1,"b":2,"c":3},{"a":"x","b":"y","c":null}])",
        "chg 0,0-0,0[2]|+ins 2-3*|ins 2-3*|chg 2,0-3,2[]*|ok q,1,x/B,2,y/1,2,3/x,y,");
    row("strings list, dirty", "list 1,2,3/4,5,6",
        "+ins 2-3|ins 2-3|chg 2,0-3,2[]*|ok A,1,x/B,2,y/1,2,3/4,5,6*");
    row("missing members; revertRow of a submitted new row",
        R"(json [{"a":"n","zz":0}]|submit|revertRow 2)",
        "+ins 2-2|ins 2-2|chg 2,0-2,2[]*|sub 0|-rm 2-2|rm 2-2|ok A,1,x/B,2,y*" + missing.arg("b")
            + missing.arg("c"));
    row("clear", "clear", "-rm 0-1|rm 0-1|ok *");
    // Revert: what counts as a new row, and what an edit leaves behind.
    row("edited twice", "edit 0 0 B|edit 0 0 C|forget|revert", "chg 0,0-0,2[]*|ok B,1,x/B,2,y");
    row("submitted, twice", "edit 0 0 B|submit|revert|submit",
        "chg 0,0-0,0[2]|sub 1*|sub 0|ok B,1,x/B,2,y");
    const QString fill = "|edit 2 0 %1|edit 2 1 %1|edit 2 2 %1";
    row("fresh, each cell edited twice",
        "insert 2 1" + fill.arg("X") + fill.arg("Y") + "|forget|revert",
        "chg 2,0-2,2[]*|ok A,1,x/B,2,y/X,X,X");
    row("fresh, partly edited, submitted", "insert 2 1|edit 2 0 B|submit|forget|revert",
        "-rm 2-2|rm 2-2|ok A,1,x/B,2,y");
    row("loaded null", R"(json [{"a":"A","b":null,"c":"c"}]|forget|revert)",
        "-rm 2-2|rm 2-2|ok A,1,x/B,2,y");
    // Refusals: nothing emitted, nothing changed.
    row("setData display role", "edit 0 0 z 0", same);
    row("setData row outside", "foreign 5 0 z", same + "|4 Invalid Row \"ZuAbstractTableModel\" 5");
    row("setData same value", "edit 0 0 A", same);
    row("header outside", "header 3", same + "|4 Header data not set for section 3");
    row("insertRows past the end", "insert 3 1", same);
    row("removeRows too many", "remove 0 3", same);
    row("copy from another model", "copyForeign 0 0 1 0", same);
    row("revertRow -1, 2, unedited 0", "revertRow -1|revertRow 2|revertRow 0", "ok " + fixed);
    QJsonParseError e; // Qt's parser judges the text; the texts built from its verdict are ours
    QJsonDocument::fromJson("not json", &e);
    row("parse error", "json not json",
        QString("error Insert Error [%1]: %2|" + same + err + "%1 \"%2\"")
            .arg(e.error)
            .arg(e.errorString()));
    const QString notArray = "JSON Document is not an array.";
    row("json object text", R"(json {"a":[1]})",
        "error Insert Error: " + notArray + "|" + same + err + notArray);
    row("empty text", "json", same);
    row("insert refused", "refuse|json [{}]", same + err + "Unable to insert rows.");
    row("strings, wrong count", "strings 1,2",
        same + err + "\"Mismatched counts: Items Count = 2  columnCount=3\"");
    row("list, second wrong", "list 1,2,3/4/5,6,7",
        same + err + "\"Mismatched counts at index:1 Items Count = 1  columnCount=3\"");
}

void tst_ZuAbstractTableModel::operations()
{
    QFETCH(QString, steps);
    QStringList log;
    Table model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(model.insertFromJsonString(R"([{"a":"A","b":1,"c":"x"},{"a":"B","b":2,"c":"y"}])"));
    static QStandardItemModel foreign(10, 10); // valid indexes outside any table here
    bool ok = true;
    zutest::LogCapture capture;
    auto note = [&](const QString &what) { log << what + (model.isDirty() ? "*" : ""); };
    auto rows = [&](const char *what) {
        return [=](const QModelIndex &, int first, int last) {
            note(QString("%1 %2-%3").arg(what).arg(first).arg(last));
        };
    };
    connect(&model, &Model::rowsAboutToBeInserted, rows("+ins"));
    connect(&model, &Model::rowsInserted, rows("ins"));
    connect(&model, &Model::rowsAboutToBeRemoved, rows("-rm"));
    connect(&model, &Model::rowsRemoved, rows("rm"));
    connect(&model, &Model::dataChanged,
            [=](const QModelIndex &tl, const QModelIndex &br, const QVector<int> &roles) {
                note(QString::asprintf(
                    "chg %d,%d-%d,%d[%s]", tl.row(), tl.column(), br.row(), br.column(),
                    qPrintable(roles.isEmpty() ? QString() : QString::number(roles.first()))));
            });
    connect(&model, &Model::error, [=](const QString &title, const QString &text) {
        note("error " + title + ": " + text);
    });
    connect(&model, &Model::dataSubmitted, [=](bool was) { note(QString("sub %1").arg(was)); });
    for (const QString &step : steps.split('|')) {
        const QString arg = step.section(' ', 1);
        const QStringList a = arg.split(' ');
        auto n = [&](int i) { return a.value(i).toInt(); };
        auto cell = [&](int i) { return model.index(n(i), n(i + 1)); };
        QList<QStringList> lists;
        for (const QString &list : arg.split('/', Qt::SkipEmptyParts))
            lists << list.split(',');
        const QHash<QString, std::function<void()>> ops {
            { "edit", [&] { ok = model.setData(cell(0), a.value(2), a.value(3, "2").toInt()); } },
            { "foreign", [&] { ok = model.setData(foreign.index(n(0), n(1)), a.value(2)); } },
            { "insert", [&] { ok = model.insertRows(n(0), n(1)); } },
            { "remove", [&] { ok = model.removeRows(n(0), n(1)); } },
            { "copy", [&] { ok = model.copy(cell(0), cell(2)); } },
            { "copyForeign", [&] { ok = model.copy(foreign.index(n(0), n(1)), cell(2)); } },
            { "submit", [&] { ok = model.submit(); } },
            { "json", [&] { ok = model.insertFromJsonString(arg); } },
            { "strings", [&] { ok = model.insertFromStrings(arg.split(',')); } },
            { "list", [&] { ok = model.insertFromStringsList(lists); } },
            { "header", [&] { ok = model.headerData(n(0), Qt::Horizontal).isValid(); } },
            { "revert", [&] { model.revert(); } },
            { "revertRow", [&] { model.revertRow(n(0)); } },
            { "clear", [&] { model.clear(); } },
            { "refuse", [&] { model.refuseInserts = true; } },
            { "forget", [&] { log.clear(); } },
        };
        QVERIFY2(ops.contains(step.section(' ', 0, 0)), qPrintable(step));
        ok = true; // what a void step answers
        ops.value(step.section(' ', 0, 0))();
    }
    QStringList table; // "cell,cell/row,row"
    for (const QStringList &row : model.toStringsList())
        table << row.join(',');
    note((ok ? "ok " : "no ") + table.join('/'));
    for (const zutest::LogRecord &record : capture.records())
        log << QString::number(record.level) + ' ' + record.message.trimmed();
    QTEST(log.join('|'), "expected");
}

void tst_ZuAbstractTableModel::exports()
{
    Table model;
    QCOMPARE(model.toJsonString(), "[]");
    const QString text = R"([{"a":1,"b":"two","c":true},{"a":-2.5,"b":"","c":null}])";
    QVERIFY(model.insertFromJsonString(text));
    QCOMPARE(model.toJsonString(), text);
    QCOMPARE(model.index(0, 0).data().userType(), int(QMetaType::Double)); // JSON's one number type
    QCOMPARE(model.toStrings(9), QStringList({ "", "", "" }));
    QCOMPARE(model.toJsonObject(9),
             QJsonObject({ { "a", QJsonValue() }, { "b", QJsonValue() }, { "c", QJsonValue() } }));

    // A load leaves earlier edits staged.
    QVERIFY(model.setData(model.index(0, 1), "edited"));
    QVERIFY(model.insertFromJsonArray({ QJsonObject { { "a", 3 }, { "b", 4 }, { "c", 5 } } }));
    QVERIFY(model.isDirty(model.index(0, 1)));
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

ZU_TEST_MAIN(tst_ZuAbstractTableModel)
#include "tst_zuabstracttablemodel.moc"
