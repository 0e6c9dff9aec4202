#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/OldZuAbstractTableModel.h>
#include <zucore/ZuAbstractDataObject.h>

#include <QAbstractItemModelTester>
#include <QJsonDocument>
#include <QLineEdit>
#include <QTableView>

using Roles = ZuAbstractTableModel;
using Object = ZuAbstractDataObject;

namespace {

// Starts as 1, "n", true, one field per name (an empty name: the default one).
class Record : public Object
{
public:
    explicit Record(QObject *p = nullptr, const QStringList &names = { "id", "name", "amount" },
                    const Object *from = nullptr)
        : names(names)
    {
        fieldValues = QVariantList { 1, "n", true }.mid(0, names.size());
        setParent(p);
        setObjectName("rec");
        ++alive;
        if (from)
            copy(*from);
    }
    ~Record() override { --alive; }
    QString fieldName(int i) const override
    {
        return names.value(i).isEmpty() ? Object::fieldName(i) : names.value(i);
    }
    Object *clone(QObject *p) const override { return new Record(p, names, this); }
    const QStringList names;
    static inline int alive = 0; // records in existence
};

// Flat, four columns (one beyond the fields); a "note" cell has a note, a "bad" one is invalid.
class Records : public OldZuAbstractTableModel
{
public:
    int rowCount(const QModelIndex &p) const override
    {
        return p.isValid() ? 0 : legacyRows.size();
    }
    int columnCount(const QModelIndex &p = {}) const override { return p.isValid() ? 0 : 4; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == Roles::ItemNoteRole && index.data() == "note")
            return "a note";
        return OldZuAbstractTableModel::data(index, role);
    }
    bool itemIsValid(const QModelIndex &index) const override { return index.data() != "bad"; }
    bool insertRows(int row, int count, const QModelIndex &parent = {}) override
    {
        return !refuse && OldZuAbstractTableModel::insertRows(row, count, parent);
    }
    QString rows() const // "values,of,row|..."
    {
        QStringList rows;
        for (const auto &pair : legacyRows)
            rows << pair.first->toStringList().join(',');
        return rows.join('|');
    }
    bool refuse = false;

protected:
    Object *createDataObject() override { return new Record(this); }
    Object *cloneDataObject(Object *s) override { return s->clone(this); }
};

} // namespace

class tst_OldZuAbstractTableModel : public QObject
{
    Q_OBJECT

private slots:
    void dataObject();
    void operations_data();
    void operations();
    void readSide();
    void inTableView();
};

void tst_OldZuAbstractTableModel::dataObject() // its conversions: through the imports below
{
    Record shorter(nullptr, { "id", "name" }), longer, unnamed(nullptr, { "", "", "" });
    // Only this object's own fields are looked at; a missing one reads as invalid.
    QVERIFY(shorter == longer && longer != shorter && Record(nullptr, {}) == longer);
    longer.setData(2, QVariant());
    longer.setData(0, "1"); // equal to the int 1 under QVariant equality
    QVERIFY(longer == shorter);
    longer.setData(2, 7);
    shorter.setObjectName("s");
    static_cast<Object &>(longer) = shorter; // the field it lacks becomes invalid
    QVERIFY(longer.data(0).userType() == QMetaType::Int && !longer.data(2).isValid());
    QCOMPARE(longer.objectName(), "rec");
    QCOMPARE(QJsonDocument(unnamed.toJsonObject()).toJson(QJsonDocument::Compact),
             R"({"Field0":1,"Field1":"n","Field2":true})");
    Record twins(nullptr, { "k", "k" }); // the later field of a name wins
    twins.fromStringList({ "a", "b" });
    QCOMPARE(twins.data(0).userType(), int(QMetaType::QString));
    QVERIFY(twins.toJsonObject() == QJsonObject({ { "k", "b" } })
            && twins.toFieldsMap() == QVariantMap({ { "k", "b" } }));
}

void tst_OldZuAbstractTableModel::operations_data()
{
    // Traced: rows inserted as "+first-last", removed as "-first-last", dataChanged as
    // "r,c-r,c" ("!" if it names roles), false answers as "f", then "level message" logged.
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("trace");
    QTest::addColumn<QString>("rows"); // afterwards
    QTest::addColumn<int>("alive"); // records afterwards
    auto row = [](const char *name, const QString &steps, const QString &trace, const QString &rows,
                  int alive) { QTest::newRow(name) << steps << trace << rows << alive; };
    const QString rows = "1,a,x|2,b,y", all = "%1,0-%1,3";
    // The same value again: true, nothing emitted. A field the record lacks: true, emitted.
    row("setData", "edit 0 1 z|edit 0 1 z|edit 0 3 z", "0,1-0,1|0,3-0,3", "1,z,x|2,b,y", 4);
    row("new row: revert removes it", "insert 1 1|edit 1 0 m|revert", "+1-1|1,0-1,0|-1-1", rows, 4);
    row("submit: snapshots made or updated, revert goes back to them",
        "insert 2 1|edit 2 0 m|edit 0 0 p|submit|edit 2 0 q|edit 2 1 o|revert",
        "+2-2|2,0-2,0|0,0-0,0|2,0-2,0|2,1-2,1|" + all.arg(2), "p,a,x|2,b,y|m,n,true", 6);
    row("copy: the target's current object", "revertRow 0|copy 0 1|revertRow 1|copy 1 0|copy -1 0",
        all.arg(1) + '|' + all.arg(1) + '|' + all.arg(0) + "|f", "2,b,y|2,b,y", 4);
    row("removeRows deletes both objects", "remove 0 0|remove 0 3|remove 0 2", "f|f|-0-1", "", 0);
    // Imported rows have snapshots: their values survive edits and revert.
    const QString edit = "|edit 2 0 e|revert", warn = "|3 <rec>: Field Count (3) != %1 Count (%2)";
    const QString one = "+2-2|" + all.arg(2) + "|2,0-2,0|" + all.arg(2),
                  two = "+2-3|2,0-3,3|2,0-2,0|" + all.arg(2);
    row("object: some keys", R"(object {"name":"j","zz":1})" + edit, one, rows + "|1,j,true", 6);
    row("array: a non-object", R"(array [{"id":3},7])" + edit, two, rows + "|3,n,true|1,n,true", 8);
    row("map: some names", R"(map {"amount":"9","zz":0})" + edit, one + warn.arg("Map").arg(2),
        rows + "|1,n,9", 6);
    row("maps: empty, no names", R"(maps [{},{"a":0,"b":0,"c":0}])" + edit,
        two + warn.arg("Map").arg(0), rows + "|1,n,true|1,n,true", 8);
    row("strings: too few", R"(strings ["7","x"])" + edit,
        one + warn.arg("Strings").arg(2) + R"(|1 ("7", "x"))", rows + "|7,x,true", 6);
    row("list: too many", R"(list [["s","t","u","v"],["w","x","y"]])" + edit,
        two + warn.arg("Strings").arg(4) + R"(|1 ("s", "t", "u", "v"))", rows + "|s,t,u|w,x,y", 8);
    row("imports refused", R"(refuse|object {}|array [{}]|map {}|maps [{}]|strings []|list [[]])",
        "f|f|f|f|f|f", rows, 4);
    row("imports of nothing", "array []|maps []|list []", "f|f|f", rows, 4);
}

void tst_OldZuAbstractTableModel::operations()
{
    QFETCH(QString, steps);
    Records model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(model.insertFromStringsList({ { "1", "a", "x" }, { "2", "b", "y" } }));
    QStringList trace;
    connect(&model, &Records::rowsInserted,
            [&](auto, int f, int l) { trace << QString::asprintf("+%d-%d", f, l); });
    connect(&model, &Records::rowsRemoved,
            [&](auto, int f, int l) { trace << QString::asprintf("-%d-%d", f, l); });
    connect(&model, &Records::dataChanged, [&](auto tl, auto br, auto roles) {
        trace << QString::asprintf("%d,%d-%d,%d%s", tl.row(), tl.column(), br.row(), br.column(),
                                   roles.isEmpty() ? "" : "!");
    });
    zutest::LogCapture capture;
    for (const QString &step : steps.split('|')) {
        const QString arg = step.section(' ', 1);
        const int a = arg.section(' ', 0, 0).toInt(), b = arg.section(' ', 1, 1).toInt();
        const QJsonDocument json = QJsonDocument::fromJson(arg.toUtf8());
        QList<QStringList> lists;
        QList<QVariantMap> maps;
        for (const QJsonValue &value : json.array())
            lists << value.toVariant().toStringList(), maps << value.toObject().toVariantMap();
        const QHash<QString, std::function<bool()>> ops {
            { "edit", [&] { return model.setData(model.index(a, b), arg.section(' ', 2)); } },
            { "insert", [&] { return model.insertRows(a, b); } },
            { "remove", [&] { return model.removeRows(a, b); } },
            { "copy", [&] { return model.copy(model.index(a, 0), model.index(b, 2)); } },
            { "submit", [&] { return model.submit(); } },
            { "object", [&] { return model.insertFromJsonObject(json.object()); } },
            { "array", [&] { return model.insertFromJsonArray(json.array()); } },
            { "map", [&] { return model.insertFromFieldsMap(json.object().toVariantMap()); } },
            { "maps", [&] { return model.insertFromFieldsMapList(maps); } },
            { "strings", [&] { return model.insertFromStrings(json.toVariant().toStringList()); } },
            { "list", [&] { return model.insertFromStringsList(lists); } },
            { "revert", [&] { return model.revert(), true; } },
            { "revertRow", [&] { return model.revertRow(a), true; } },
            { "refuse", [&] { return model.refuse = true; } },
        };
        if (!ops.value(step.section(' ', 0, 0))())
            trace << "f";
    }
    for (const zutest::LogRecord &record : capture.records())
        trace << QString::number(record.level) + ' ' + record.message.trimmed();
    QTEST(trace.join('|'), "trace");
    QTEST(model.rows(), "rows");
    QTEST(Record::alive, "alive");
}

void tst_OldZuAbstractTableModel::readSide()
{
    Records model;
    QVERIFY(model.insertFromStringsList({ { "note", "bad", "z" }, { "n", "ok", "z" } }));
    const QModelIndex noted = model.index(0, 0), plain = model.index(1, 2), none;
    QCOMPARE(model.data(noted, Roles::ItemHintRole), QVariant(13));
    QCOMPARE(model.data(noted, Qt::DisplayRole), QVariant("note"));
    QCOMPARE(model.data(model.index(0, 1), Roles::ItemValidRole), QVariant(false));
    QCOMPARE(model.data(model.index(0, 3), Roles::RowValidRole), QVariant(false));
    QCOMPARE(model.data(plain, Roles::RowValidRole), QVariant(true));
    QCOMPARE(model.data(plain, Roles::ItemEditableRole), QVariant(1));
    QCOMPARE(model.data(plain, Roles::ItemEmptyTextRole), QVariant(""));
    for (int role :
         QVector<int> { Roles::ItemHintRole, Roles::ItemOptionsRole, Roles::ModelOptionsRole,
                        Roles::PreviousValueRole, Roles::PreviousValueRole2, Qt::ToolTipRole })
        QVERIFY2(!model.data(plain, role).isValid(), qPrintable(QString::number(role)));
    QCOMPARE(model.data(none, Roles::ModelNameRole), QVariant("OldZuAbstractTableModel"));
    QVERIFY(!model.data(none, Qt::EditRole).isValid() && !model.flags(none));
    QVERIFY(!model.setData(plain, "new", Qt::DisplayRole)); // editable: see inTableView()
    QCOMPARE(model.headerData(0, Qt::Horizontal), QVariant(1)); // Qt's default
    QVERIFY(!model.dataObjectAtRow(-1) && !model.dataObjectAtRow(2));
    QCOMPARE(model.OldZuAbstractTableModel::rowCount(noted), 2); // for any parent
    QCOMPARE(model.itemInvalidReason(plain),
             "No reason given - reimp ZuAbstractTableModel::modelRowDataInvalidReason");
}

void tst_OldZuAbstractTableModel::inTableView()
{
    Records model;
    QTableView view;
    view.setModel(&model);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QVERIFY(model.insertFromStrings({ "1", "a", "x" }) && model.insertRows(1, 1));
    // Return commits the edit, then the view calls submit(): the row survives revert().
    view.edit(model.index(1, 1));
    auto *editor = view.findChild<QLineEdit *>();
    QVERIFY(editor);
    editor->setText("typed");
    QTest::keyClick(editor, Qt::Key_Return); // the delegate commits from the event loop
    QTRY_COMPARE(model.rows(), "1,a,x|1,typed,true");
    model.revert();
    QCOMPARE(model.rows(), "1,a,x|1,typed,true");
}

ZU_TEST_MAIN(tst_OldZuAbstractTableModel)
#include "tst_oldzuabstracttablemodel.moc"
