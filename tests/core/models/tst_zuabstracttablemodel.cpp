#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/ZuAbstractTableModel.h>

#include <QAbstractItemModelTester>
#include <QStandardItemModel>

#include <functional>

using Action = std::function<bool(ZuAbstractTableModel &)>;
Q_DECLARE_METATYPE(Action)

namespace {

using Model = ZuAbstractTableModel;

// Three columns; column 2 is not editable, column 1 is invalid when it holds
// "bad", and a cell holding "note" carries a note text.
class RuleModel : public ZuAbstractTableModel
{
public:
    explicit RuleModel(QFlags<ZuCore::ModelOption> options = {})
        : ZuAbstractTableModel(options)
    {
        for (const char *name : { "a", "b", "c" })
            setHeaderData(headerValues.size(), Qt::Horizontal, QString::fromLatin1(name));
    }
    int itemIsEditable(const QModelIndex &index) const override { return index.column() != 2; }
    bool itemIsValid(const QModelIndex &index) const override
    {
        return index.column() != 1 || data(index, Qt::EditRole) != QStringLiteral("bad");
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == ItemNoteRole && ZuAbstractTableModel::data(index, Qt::EditRole) == "note")
            return QStringLiteral("a note");
        return ZuAbstractTableModel::data(index, role);
    }
};

const char *const fixture = R"([{"a":"A","b":1,"c":"x"},{"a":"B","b":2,"c":"y"}])";

// Every notification as one line, with isDirty() as it stood when it went out.
QStringList recordSignals(Model &model, const std::function<void()> &action)
{
    QStringList log;
    QObject context;
    auto dirty = [&] { return QStringLiteral(" dirty=%1").arg(model.isDirty()); };
    auto range = [&](const char *what) {
        return [&, what](const QModelIndex &, int first, int last) {
            log << QStringLiteral("%1 %2-%3").arg(what).arg(first).arg(last) + dirty();
        };
    };
    QObject::connect(&model, &Model::rowsAboutToBeInserted, &context, range("aboutToInsert"));
    QObject::connect(&model, &Model::rowsInserted, &context, range("inserted"));
    QObject::connect(&model, &Model::rowsAboutToBeRemoved, &context, range("aboutToRemove"));
    QObject::connect(&model, &Model::rowsRemoved, &context, range("removed"));
    QObject::connect(&model, &Model::dataChanged, &context,
                     [&](const QModelIndex &tl, const QModelIndex &br, const QVector<int> &roles) {
                         log << QStringLiteral("changed %1,%2-%3,%4 roles=%5")
                                     .arg(tl.row())
                                     .arg(tl.column())
                                     .arg(br.row())
                                     .arg(br.column())
                                     .arg(roles.size() == 1 ? roles.first() : -roles.size())
                                 + dirty();
                     });
    QObject::connect(&model, &Model::dataSubmitted, &context, [&](bool wasDirty) {
        log << QStringLiteral("submitted %1").arg(wasDirty) + dirty();
    });
    action();
    log << QStringLiteral("end") + dirty();
    return log;
}

QStringList trimmed(const QStringList &messages)
{
    QStringList out;
    for (const QString &m : messages)
        out << m.trimmed();
    return out;
}

} // namespace

class tst_ZuAbstractTableModel : public QObject
{
    Q_OBJECT

private slots:
    void readSide();
    void itemRoles_data();
    void itemRoles();
    void cellStates_data();
    void cellStates();
    void signalOrder_data();
    void signalOrder();
    void refusals_data();
    void refusals();
    void revertMixedRows();
    void underModelTester();
};

void tst_ZuAbstractTableModel::readSide()
{
    zutest::LogCapture capture;
    Model model(ZuCore::ModelOption8);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 0);
    QCOMPARE(model.data(QModelIndex(), Model::ModelNameRole), QVariant("ZuAbstractTableModel"));
    QCOMPARE(model.data(QModelIndex(), Model::ModelOptionsRole), QVariant(8));
    QVERIFY(!model.data(QModelIndex(), Model::ItemOptionsRole).isValid());

    QVERIFY(!model.setHeaderData(0, Qt::Horizontal, "a", Qt::DisplayRole));
    QCOMPARE(model.columnCount(), 0);
    QVERIFY(model.setHeaderData(0, Qt::Vertical, "a", Qt::EditRole));
    QVERIFY(model.setHeaderData(0, Qt::Horizontal, "first", Qt::EditRole));
    QCOMPARE(model.columnCount(), 1);
    QCOMPARE(model.headerData(0, Qt::Horizontal, Qt::ToolTipRole), QVariant("first"));
    QVERIFY(!model.headerData(0, Qt::Vertical, Qt::DisplayRole).isValid());
    QVERIFY(capture.messages().isEmpty());
    QVERIFY(!model.headerData(5, Qt::Horizontal, Qt::DisplayRole).isValid());
    QCOMPARE(trimmed(capture.messages()), QStringList("Header data not set for section 5"));
    QCOMPARE(int(capture.records().first().level), int(Logger::Error));

    QCOMPARE(
        model.itemInvalidReason(QModelIndex()),
        QStringLiteral("No reason given - reimp ZuAbstractTableModel::modelRowDataInvalidReason"));
    QCOMPARE(model.flags(QModelIndex()), Qt::ItemFlags());
}

void tst_ZuAbstractTableModel::itemRoles_data()
{
    QTest::addColumn<int>("options");
    QTest::addColumn<int>("itemOptions");
    QTest::addColumn<QVariant>("hint");
    QTest::newRow("no options") << 0 << 0 << QVariant(13);
    QTest::newRow("option 8") << 8 << 2 << QVariant(13);
    QTest::newRow("option 16") << 16 << 1 << QVariant();
    QTest::newRow("both") << 24 << 3 << QVariant();
    QTest::newRow("read-only, untested here") << 1 << 0 << QVariant(13);
}

void tst_ZuAbstractTableModel::itemRoles()
{
    QFETCH(int, options);
    QFETCH(int, itemOptions);
    QFETCH(QVariant, hint);
    RuleModel model { QFlags<ZuCore::ModelOption>(options) };
    QVERIFY(model.insertFromStringsList({ { "note", "bad", "z" }, { "n", "ok", "z" } }));
    const QModelIndex noted = model.index(0, 0);
    QCOMPARE(model.data(noted, Model::ItemOptionsRole), QVariant(itemOptions));
    QCOMPARE(model.data(noted, Model::ModelOptionsRole), QVariant(options));
    QCOMPARE(model.data(noted, Model::ItemHintRole), hint);
    QVERIFY(!model.data(model.index(1, 0), Model::ItemHintRole).isValid()); // no note, no hint
    QVERIFY(!model.data(noted, Model::ItemNoteRole + 7).isValid()); // 270 is not a role

    // Editable to views even where the item check says no.
    const QModelIndex fixed = model.index(0, 2);
    QVERIFY(model.flags(fixed).testFlag(Qt::ItemIsEditable));
    QVERIFY(model.flags(fixed).testFlag(Qt::ItemIsEnabled));
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
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QVariant>("current");
    QTest::addColumn<QVariant>("previous");
    QTest::addColumn<bool>("cellDirty");
    QTest::addColumn<QVariant>("afterRevert"); // invalid: the row is removed
    const QVariant none;
    QTest::newRow("fresh") << QStringList { "insert" } << none << none << false << none;
    QTest::newRow("loaded") << QStringList { "load A" } << QVariant("A") << QVariant("A") << false
                            << QVariant("A");
    QTest::newRow("edited") << QStringList { "load A", "edit B" } << QVariant("B") << QVariant("A")
                            << true << QVariant("A");
    QTest::newRow("edited twice") << QStringList { "load A", "edit B", "edit C" } << QVariant("C")
                                  << QVariant("B") << true << QVariant("B");
    QTest::newRow("edited back") << QStringList { "load A", "edit B", "edit A" } << QVariant("A")
                                 << QVariant("B") << true << QVariant("B");
    QTest::newRow("submitted") << QStringList { "load A", "edit B", "submit" } << QVariant("B")
                               << QVariant("B") << false << QVariant("B");
    QTest::newRow("fresh, all edited once")
        << QStringList { "insert", "all X" } << QVariant("X") << none << true << none;
    QTest::newRow("fresh, all edited twice")
        << QStringList { "insert", "all X", "all Y" } << QVariant("Y") << QVariant("X") << true
        << QVariant("X");
    QTest::newRow("fresh, one edited, submitted")
        << QStringList { "insert", "edit B", "submit" } << QVariant("B") << QVariant("B") << false
        << none;
    QTest::newRow("loaded with a null cell")
        << QStringList { "json [{\"a\":\"A\",\"b\":null,\"c\":\"c\"}]" } << QVariant("A")
        << QVariant("A") << false << none;
}

void tst_ZuAbstractTableModel::cellStates()
{
    QFETCH(QStringList, steps);
    QFETCH(QVariant, current);
    QFETCH(QVariant, previous);
    QFETCH(bool, cellDirty);
    QFETCH(QVariant, afterRevert);
    RuleModel model;
    for (const QString &step : steps) {
        const QString arg = step.section(' ', 1);
        if (step == "insert")
            QVERIFY(model.insertRows(0, 1));
        else if (step.startsWith("load"))
            QVERIFY(model.insertFromStrings({ arg, "b", "c" }));
        else if (step.startsWith("json"))
            QVERIFY(model.insertFromJsonString(arg));
        else if (step.startsWith("edit"))
            QVERIFY(model.setData(model.index(0, 0), arg));
        else if (step.startsWith("all"))
            for (int c = 0; c < model.columnCount(); ++c)
                QVERIFY(model.setData(model.index(0, c), arg));
        else if (step == "submit")
            QVERIFY(model.submit());
    }
    QCOMPARE(model.data(model.index(0, 0), Qt::EditRole), current);
    QCOMPARE(model.data(model.index(0, 0), Model::PreviousValueRole), previous);
    QCOMPARE(model.data(model.index(0, 0), Model::PreviousValueRole2), previous);
    QCOMPARE(model.isDirty(model.index(0, 0)), cellDirty);

    model.revert();
    QVERIFY(!model.isDirty());
    QCOMPARE(model.rowCount(), afterRevert.isValid() ? 1 : 0);
    if (afterRevert.isValid()) {
        QCOMPARE(model.data(model.index(0, 0), Qt::EditRole), afterRevert);
        QVERIFY(!model.isDirty(model.index(0, 0)));
    }
}

void tst_ZuAbstractTableModel::signalOrder_data()
{
    QTest::addColumn<Action>("action");
    QTest::addColumn<QStringList>("expected");
    auto idx = [](Model &m, int r, int c) { return m.index(r, c); };
    QTest::newRow("setData") << Action([=](Model &m) { return m.setData(idx(m, 1, 2), "z"); })
                             << QStringList { "changed 1,2-1,2 roles=2 dirty=0", "end dirty=1" };
    QTest::newRow("insertRows") << Action([](Model &m) {
        return m.insertRows(1, 2);
    }) << QStringList { "aboutToInsert 1-2 dirty=0", "inserted 1-2 dirty=0", "end dirty=1" };
    QTest::newRow("removeRows") << Action([](Model &m) {
        return m.removeRows(0, 2);
    }) << QStringList { "aboutToRemove 0-1 dirty=0", "removed 0-1 dirty=0", "end dirty=1" };
    QTest::newRow("copy") << Action([=](Model &m) { return m.copy(idx(m, 0, 2), idx(m, 1, 0)); })
                          << QStringList { "changed 1,0-1,2 roles=0 dirty=0", "end dirty=0" };
    QTest::newRow("submit clean") << Action([](Model &m) { return m.submit(); })
                                  << QStringList { "submitted 0 dirty=0", "end dirty=0" };
    QTest::newRow("submit dirty") << Action([=](Model &m) {
        return m.setData(idx(m, 0, 0), "q") && m.submit();
    }) << QStringList { "changed 0,0-0,0 roles=2 dirty=0", "submitted 1 dirty=1", "end dirty=0" };
    QTest::newRow("revertRow unedited")
        << Action([](Model &m) { return m.revertRow(0), true; }) << QStringList { "end dirty=0" };
    QTest::newRow("revert edited and new") << Action([=](Model &m) {
        m.setData(idx(m, 0, 1), 7);
        m.insertRows(2, 1);
        m.revert();
        return m.rowCount() == 2 && m.data(idx(m, 0, 1)) == 1;
    })
                                           << QStringList { "changed 0,1-0,1 roles=2 dirty=0",
                                                            "aboutToInsert 2-2 dirty=1",
                                                            "inserted 2-2 dirty=1",
                                                            "aboutToRemove 2-2 dirty=1",
                                                            "removed 2-2 dirty=1",
                                                            "changed 0,0-0,2 roles=0 dirty=1",
                                                            "end dirty=0" };
    QTest::newRow("revertRow of a new row sets dirty") << Action([](Model &m) {
        return m.insertFromJsonObject({ { "a", "n" } }) && m.submit()
            && (m.revertRow(2), m.rowCount() == 2);
    }) << QStringList { "aboutToInsert 2-2 dirty=0", "inserted 2-2 dirty=0", "submitted 1 dirty=1",
                        "aboutToRemove 2-2 dirty=0", "removed 2-2 dirty=0",  "end dirty=1" };
    QTest::newRow("clear") << Action([](Model &m) {
        return m.clear(), m.columnCount() == 3;
    }) << QStringList { "aboutToRemove 0-1 dirty=0", "removed 0-1 dirty=0", "end dirty=1" };
}

void tst_ZuAbstractTableModel::signalOrder()
{
    QFETCH(Action, action);
    QFETCH(QStringList, expected);
    RuleModel model;
    QVERIFY(model.insertFromJsonString(QString::fromLatin1(fixture)));
    QVERIFY(!model.isDirty());
    bool result = false;
    const QStringList seen = recordSignals(model, [&] { result = action(model); });
    QVERIFY(result);
    QCOMPARE(seen, expected);
}

void tst_ZuAbstractTableModel::refusals_data()
{
    QTest::addColumn<Action>("action");
    QTest::addColumn<QString>("log");
    static QStandardItemModel foreign(10, 10); // valid indexes outside this table
    auto editTo = [](const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) {
        return Action([=](Model &m) { return m.setData(index, value, role); });
    };
    QTest::newRow("setData display role")
        << Action([](Model &m) { return m.setData(m.index(0, 0), "z", Qt::DisplayRole); })
        << QString();
    QTest::newRow("setData invalid index") << editTo(QModelIndex(), "z") << QString();
    QTest::newRow("setData row outside")
        << editTo(foreign.index(5, 0), "z") << "Invalid Row \"ZuAbstractTableModel\" 5";
    QTest::newRow("setData column outside")
        << editTo(foreign.index(0, 7), "z") << "Invalid Column \"ZuAbstractTableModel\" 7";
    QTest::newRow("setData same value")
        << Action([](Model &m) { return m.setData(m.index(0, 0), "A"); }) << QString();
    QTest::newRow("setData equal in another type")
        << Action([](Model &m) { return m.setData(m.index(0, 1), 1); }) << QString();
    QTest::newRow("insertRows past the end")
        << Action([](Model &m) { return m.insertRows(m.rowCount() + 1, 1); }) << QString();
    QTest::newRow("insertRows none")
        << Action([](Model &m) { return m.insertRows(0, 0); }) << QString();
    QTest::newRow("insertRows negative")
        << Action([](Model &m) { return m.insertRows(-1, 1); }) << QString();
    QTest::newRow("removeRows too many")
        << Action([](Model &m) { return m.removeRows(0, m.rowCount() + 1); }) << QString();
    QTest::newRow("removeRows none")
        << Action([](Model &m) { return m.removeRows(0, 0); }) << QString();
    QTest::newRow("copy invalid index")
        << Action([](Model &m) { return m.copy(QModelIndex(), m.index(0, 0)); }) << QString();
    QTest::newRow("revertRow -1") << Action([](Model &m) { return m.revertRow(-1), false; })
                                  << QString();
    QTest::newRow("revertRow rowCount")
        << Action([](Model &m) { return m.revertRow(m.rowCount()), false; }) << QString();
    QTest::newRow("isDirty outside")
        << Action([](Model &m) { return m.isDirty(foreign.index(5, 0)); }) << QString();
}

void tst_ZuAbstractTableModel::refusals()
{
    QFETCH(Action, action);
    QFETCH(QString, log);
    RuleModel model;
    QVERIFY(model.insertFromJsonString(QString::fromLatin1(fixture)));
    const QString before = model.toJsonString();
    zutest::LogCapture capture;
    const QStringList seen = recordSignals(model, [&] { QVERIFY(!action(model)); });
    QCOMPARE(seen, QStringList("end dirty=0"));
    QCOMPARE(model.toJsonString(), before);
    QCOMPARE(trimmed(capture.messages()), log.isEmpty() ? QStringList() : QStringList(log));
    if (!log.isEmpty())
        QCOMPARE(int(capture.records().first().level), int(Logger::Error));
}

void tst_ZuAbstractTableModel::revertMixedRows()
{
    RuleModel model;
    QVERIFY(model.insertFromStringsList({ { "a0", "b0", "c0" }, { "a1", "b1", "c1" } }));
    QVERIFY(model.removeRows(0, 1)); // gone for good
    QVERIFY(model.insertRows(0, 1)); // new
    QVERIFY(model.setData(model.index(1, 2), "edited"));
    QVERIFY(model.insertRows(2, 1));
    QVERIFY(model.copy(model.index(1, 0), model.index(2, 1)));
    QVERIFY(model.isDirty(model.index(2, 0)));
    model.revert();
    QCOMPARE(model.toStringsList(), QList<QStringList>({ { "a1", "b1", "c1" } }));
    QVERIFY(!model.isDirty());

    model.clear();
    QCOMPARE(model.rowCount(), 0);
    QVERIFY(model.isDirty()); // the removal set it last
    model.clear();
    QVERIFY(!model.isDirty()); // nothing left to remove
}

void tst_ZuAbstractTableModel::underModelTester()
{
    // The tester never asks for a header outside the declared sections, so the
    // header's answer-for-every-role rule doesn't disturb it.
    RuleModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(model.insertRows(0, 3));
    QVERIFY(model.setData(model.index(1, 1), "x"));
    QVERIFY(model.insertFromJsonString(QString::fromLatin1(fixture)));
    QVERIFY(model.insertFromJsonObject({ { "a", "o" } }));
    QVERIFY(model.insertFromStrings({ "s", "t", "u" }));
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
    QCOMPARE(model.columnCount(), 3);
}

ZU_TEST_MAIN(tst_ZuAbstractTableModel)
#include "tst_zuabstracttablemodel.moc"
