#include "support/ZuTest.h"

#include <zucore/ZuAbstractTableModel.h>
#include <zucore/ZuManualSubmitProxyModel.h>
#include <zucore/ZuSortFilterProxyModel.h>

#include <QAbstractItemModelTester>
#include <QLineEdit>
#include <QTableView>

namespace {

// A staged table in a real view, behind a plain proxy or the guarding one (under the model tester).
struct Setup
{
    ZuAbstractTableModel table;
    ZuSortFilterProxyModel sorted;
    ZuManualSubmitProxyModel manual;
    QAbstractItemModelTester tester { &manual,
                                      QAbstractItemModelTester::FailureReportingMode::QtTest };
    QTableView view;

    explicit Setup(bool guarded)
    {
        table.setHeaderData(0, Qt::Horizontal, "Name");
        table.setHeaderData(1, Qt::Horizontal, "City");
        table.insertFromStringsList(
            { { "Ada", "London" }, { "Linus", "Turku" }, { "Grace", "Arlington" } });
        table.submit();
        sorted.setSourceModel(&table);
        manual.setSourceModel(&table);
        view.setModel(guarded ? static_cast<QAbstractItemModel *>(&manual) : &sorted);
        view.show();
    }

    QModelIndex at(int row, int column) const { return view.model()->index(row, column); }
};

} // namespace

class tst_ZuManualSubmitProxyModel : public QObject
{
    Q_OBJECT

private slots:
    void viewKeepsTheBatch_data();
    void viewKeepsTheBatch();
    void applicationSubmitsAndReverts();
};

void tst_ZuManualSubmitProxyModel::viewKeepsTheBatch_data()
{
    QTest::addColumn<int>("action"); // a key, or 0 for a row change and 1 for a click on row 1
    QTest::addColumn<bool>("guarded");
    const QList<int> actions = { Qt::Key_Return, Qt::Key_Escape, Qt::Key_Tab, 0, 1 };
    const QStringList names
        = { "Enter", "Escape", "Tab", "row change, editor open", "click on another row" };
    for (int i = 0; i < actions.size(); ++i) {
        QTest::addRow("%s, guarded", qPrintable(names.at(i))) << actions.at(i) << true;
        // Without the proxy the view reaches the table: the action really submits or reverts.
        QTest::addRow("%s, plain view", qPrintable(names.at(i))) << actions.at(i) << false;
    }
}

void tst_ZuManualSubmitProxyModel::viewKeepsTheBatch()
{
    QFETCH(int, action);
    QFETCH(bool, guarded);
    Setup s(guarded);
    QVERIFY(QTest::qWaitForWindowExposed(&s.view));
    QSignalSpy submitted(&s.table, &ZuAbstractTableModel::dataSubmitted);
    const QModelIndex staged = s.table.index(2, 0);
    QVERIFY(s.table.setData(staged, "staged"));
    s.view.setCurrentIndex(s.at(0, 1)); // the last column: Tab moves on to the next row
    s.view.edit(s.at(0, 1));
    auto *editor = s.view.findChild<QLineEdit *>();
    QVERIFY(editor);
    QTest::keyClicks(editor, "Paris");
    if (action == 0)
        s.view.setCurrentIndex(s.at(1, 1));
    else if (action == 1)
        QTest::mouseClick(s.view.viewport(), Qt::LeftButton, {},
                          s.view.visualRect(s.at(1, 0)).center());
    else
        QTest::keyClick(editor, Qt::Key(action));
    QCoreApplication::processEvents(); // Enter closes its editor through a queued call

    const bool survived
        = submitted.isEmpty() && s.table.isDirty(staged) && staged.data() == "staged";
    QCOMPARE(survived, guarded);
    if (guarded && action != Qt::Key_Escape) // the editor's text was still written, and staged
        QVERIFY(s.table.isDirty(s.table.index(0, 1)));
}

void tst_ZuManualSubmitProxyModel::applicationSubmitsAndReverts()
{
    Setup s(true);
    QSignalSpy submitted(&s.table, &ZuAbstractTableModel::dataSubmitted);
    QVERIFY(s.view.model()->setData(s.at(0, 1), "Paris"));
    QVERIFY(s.view.model()->submit()); // a view's calls: nothing happens
    s.view.model()->revert();
    QCOMPARE(s.table.index(0, 1).data(), QVariant("Paris"));
    s.manual.revertAll();
    QCOMPARE(s.table.index(0, 1).data(), QVariant("London"));
    QVERIFY(s.view.model()->setData(s.at(1, 1), "Oslo"));
    QVERIFY(s.manual.submitAll());
    QCOMPARE(submitted.count(), 1);
    ZuManualSubmitProxyModel empty;
    QVERIFY(!empty.submitAll());
}

ZU_TEST_MAIN(tst_ZuManualSubmitProxyModel)
#include "tst_zumanualsubmitproxymodel.moc"
