#include "support/ZuTest.h"

#include <zucore/ZuAbstractTableModel.h>
#include <zucore/ZuManualSubmitProxyModel.h>
#include <zucore/ZuSortFilterProxyModel.h>

#include <QAbstractItemModelTester>
#include <QLineEdit>
#include <QStandardItemModel>
#include <QTableView>

namespace {

// A staged table behind the library's sort/filter proxy, shown in a real view either directly
// (what Qt does by itself) or through the manual-submit proxy.
struct Setup
{
    ZuAbstractTableModel table;
    ZuSortFilterProxyModel sorted;
    ZuManualSubmitProxyModel manual;
    QTableView view;

    explicit Setup(bool guarded)
    {
        table.setHeaderData(0, Qt::Horizontal, "Name");
        table.setHeaderData(1, Qt::Horizontal, "City");
        table.insertFromStringsList(
            { { "Ada", "London" }, { "Linus", "Turku" }, { "Grace", "Arlington" } });
        table.submit();
        sorted.setSourceModel(&table);
        manual.setSourceModel(&sorted);
        view.setModel(guarded ? static_cast<QAbstractItemModel *>(&manual) : &sorted);
        view.resize(400, 300);
        view.show();
    }

    QModelIndex at(int row, int column) const { return view.model()->index(row, column); }

    // Opens the view's own editor on a cell and types into it.
    QLineEdit *type(int row, int column, const QString &text)
    {
        view.setCurrentIndex(at(row, column));
        view.edit(at(row, column));
        auto *editor = view.findChild<QLineEdit *>();
        if (editor) {
            editor->selectAll();
            QTest::keyClicks(editor, text);
        }
        return editor;
    }
};

} // namespace

class tst_ZuManualSubmitProxyModel : public QObject
{
    Q_OBJECT

private slots:
    void viewKeepsTheBatch_data();
    void viewKeepsTheBatch();
    void applicationSubmitsAndReverts();
    void overTreeUnderModelTester();
};

void tst_ZuManualSubmitProxyModel::viewKeepsTheBatch_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<bool>("guarded");
    for (const char *action :
         { "Enter", "Escape", "Tab", "row change, editor open", "click on another row" }) {
        QTest::newRow(qPrintable(QString("%1, guarded").arg(action))) << QString(action) << true;
        // Without the proxy the view reaches the table: the control shows that the
        // action really submits or reverts there.
        QTest::newRow(qPrintable(QString("%1, plain view").arg(action)))
            << QString(action) << false;
    }
}

void tst_ZuManualSubmitProxyModel::viewKeepsTheBatch()
{
    QFETCH(QString, action);
    QFETCH(bool, guarded);
    Setup s(guarded);
    QVERIFY(QTest::qWaitForWindowExposed(&s.view));
    QSignalSpy submitted(&s.table, &ZuAbstractTableModel::dataSubmitted);
    const QModelIndex staged = s.table.index(2, 0);
    QVERIFY(s.table.setData(staged, "staged"));

    if (action == "Enter" || action == "Escape") {
        QLineEdit *editor = s.type(0, 0, "Ida");
        QVERIFY(editor);
        QTest::keyClick(editor, action == "Enter" ? Qt::Key_Return : Qt::Key_Escape);
    } else if (action == "Tab") {
        QLineEdit *editor = s.type(0, 1, "Paris"); // the last column: Tab moves to the next row
        QVERIFY(editor);
        QTest::keyClick(editor, Qt::Key_Tab);
    } else if (action == "row change, editor open") {
        QVERIFY(s.type(0, 1, "Paris"));
        s.view.setCurrentIndex(s.at(1, 1));
    } else {
        QVERIFY(s.type(0, 1, "Paris"));
        QTest::mouseClick(s.view.viewport(), Qt::LeftButton, {},
                          s.view.visualRect(s.at(1, 0)).center());
    }
    QCoreApplication::processEvents(); // Enter closes its editor through a queued call

    const bool survived
        = submitted.isEmpty() && s.table.isDirty(staged) && staged.data() == "staged";
    QCOMPARE(survived, guarded);
    if (guarded && action != "Escape") // what the editor held was still written, and is staged too
        QVERIFY(s.table.isDirty(s.table.index(0, action == "Enter" ? 0 : 1)));
}

void tst_ZuManualSubmitProxyModel::applicationSubmitsAndReverts()
{
    Setup s(true);
    QSignalSpy submitted(&s.table, &ZuAbstractTableModel::dataSubmitted);
    QVERIFY(s.view.model()->setData(s.at(0, 1), "Paris"));
    QVERIFY(s.view.model()->submit()); // a view's call: nothing happens
    s.view.model()->revert();
    QCOMPARE(s.table.index(0, 1).data(), QVariant("Paris"));
    s.manual.revertAll();
    QCOMPARE(s.table.index(0, 1).data(), QVariant("London"));
    QVERIFY(s.view.model()->setData(s.at(1, 1), "Oslo"));
    QVERIFY(s.manual.submitAll());
    QCOMPARE(submitted.count(), 1);
    QCOMPARE(submitted.at(0).at(0), QVariant(true));
    QVERIFY(!s.table.isDirty(s.table.index(1, 1)));

    ZuManualSubmitProxyModel empty;
    QVERIFY(!empty.submitAll());
    empty.revertAll(); // no source: nothing to do, no crash
}

void tst_ZuManualSubmitProxyModel::overTreeUnderModelTester()
{
    QStandardItemModel tree;
    ZuManualSubmitProxyModel manual;
    QAbstractItemModelTester tester(&manual,
                                    QAbstractItemModelTester::FailureReportingMode::QtTest);
    manual.setSourceModel(&tree);
    auto *parent = new QStandardItem("parent");
    parent->appendRow({ new QStandardItem("child"), new QStandardItem("2") });
    tree.appendRow(parent);
    tree.appendRow(new QStandardItem("sibling"));
    QVERIFY(manual.setData(manual.index(0, 0, manual.index(0, 0)), "renamed"));
    QCOMPARE(parent->child(0)->text(), QString("renamed"));
    tree.removeRow(1);
    parent->removeRow(0);
    QCOMPARE(manual.rowCount(manual.index(0, 0)), 0);
}

ZU_TEST_MAIN(tst_ZuManualSubmitProxyModel)
#include "tst_zumanualsubmitproxymodel.moc"
