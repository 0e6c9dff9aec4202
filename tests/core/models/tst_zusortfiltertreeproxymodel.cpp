#include "ModelFixtures.h"
#include "support/ZuTest.h"

#include <zucore/ZuSortFilterTreeProxyModel.h>

#include <QTreeView>

static const QString shape = "A=apple(a1=berry(a1x=cherry,a1y=date),a2=cherry pie),"
                             "B=fig(b1=grape(b1x=apple tart)),C=kiwi";

struct Proxy : ZuSortFilterTreeProxyModel
{
    TestTree tree;
    explicit Proxy(const QString &treeShape = shape)
        : tree(treeShape)
    {
        tree.refresh();
        setSourceModel(&tree);
    }
};

class tst_ZuSortFilterTreeProxyModel : public QObject
{
    Q_OBJECT

private slots:
    void search_data();
    void search();
    void sortingAndLookup();
    void underModelTester();
};

void tst_ZuSortFilterTreeProxyModel::search_data()
{
    QTest::addColumn<QString>("text"); // "!" first: inverted
    QTest::addColumn<QList<int>>("columns");
    QTest::addColumn<QString>("expected");
    auto row = [](const char *name, const char *text, const QList<int> &columns,
                  const QString &expected) { QTest::newRow(name) << text << columns << expected; };
    row("a leaf keeps its ancestors", "CHERRY$", {}, "A=apple(a1=berry(a1x=cherry))");
    row("a parent matching alone", "^fig", {}, "B=fig");
    row("name column only", "apple", { 0, 0 }, "");
    row("inverted: a matching parent stays for its other rows", "!date|fig", {},
        "A=apple(a1=berry(a1x=cherry),a2=cherry pie),B=fig(b1=grape(b1x=apple tart)),C=kiwi");
    row("empty text ignores inverted", "!", {}, shape);
    row("unbalanced parenthesis matches nothing", "(", {}, "");
    // Set before the first access, as above, or after these, the search must not ask for the
    // column count: that builds the very mapping being filtered, recursing without end.
    row("after invalidate()", "date", {}, "A=apple(a1=berry(a1y=date))");
    row("after a source reset", "date", { 1 }, "A=apple(a1=berry(a1y=date))");
}

void tst_ZuSortFilterTreeProxyModel::search()
{
    QFETCH(QString, text);
    QFETCH(QList<int>, columns);
    const QString situation = QTest::currentDataTag();
    Proxy proxy;
    if (situation.startsWith("after"))
        QCOMPARE(dump(proxy), shape);
    proxy.setSearchColumns(columns);
    proxy.setSearchString(text.mid(text.startsWith('!') ? 1 : 0), text.startsWith('!'));
    if (situation == "after invalidate()")
        proxy.invalidate();
    if (situation == "after a source reset")
        proxy.tree.refresh();
    QTEST(dump(proxy), "expected");
}

void tst_ZuSortFilterTreeProxyModel::sortingAndLookup()
{
    Proxy proxy("r(a10=2,a2=1,A2=2,b=1),s(t=3)");
    QCOMPARE(proxy.matchValue("3", 1, Qt::DisplayRole), at(proxy, "1/0", 1)); // below the top
    QVERIFY(!proxy.matchValue("3", 5, Qt::DisplayRole).isValid());
    proxy.setUseSelectionRole(true); // column 1 shows the selection role, for display only
    QCOMPARE(at(proxy, "1/0", 1).data().toString(), QString("selected 3"));
    QCOMPARE(at(proxy, "1/0", 1).data(Qt::EditRole).toString(), QString("3"));
    QCOMPARE(at(proxy, "1/0", 0).data().toString(), QString("t"));
    proxy.setSelectionRoleColumn(0);
    QCOMPARE(at(proxy, "1/0", 0).data().toString(), QString("selected t"));
    proxy.sort(0); // natural order under each parent, "a2" and "A2" tied
    QCOMPARE(dump(proxy), QString("r=(a2=1,A2=2,a10=2,b=1),s=(t=3)"));
    proxy.setSortColumns({ 1, 0 }); // rank, then name
    proxy.sort(0, Qt::DescendingOrder);
    QCOMPARE(dump(proxy), QString("s=(t=3),r=(a10=2,A2=2,b=1,a2=1)"));
    proxy.setSortColumns({ 9, 1 }); // a column beyond the last ties, the next decides
    proxy.sort(0);
    QCOMPARE(dump(proxy, proxy.index(1, 0)), QString("b=1,a2=1,a10=2,A2=2"));
    proxy.setSortColumns({ 1, 0 }); // the same sort() as before still re-sorts
    proxy.sort(0);
    QCOMPARE(dump(proxy, proxy.index(0, 0)), QString("a2=1,b=1,A2=2,a10=2"));
    QVERIFY(proxy.tree.setData(at(proxy.tree, "0/0", 1), "0")); // not sort()'s column
    QCOMPARE(dump(proxy, proxy.index(0, 0)), QString("a10=0*,a2=1,b=1,A2=2"));
}

void tst_ZuSortFilterTreeProxyModel::underModelTester()
{
    Proxy proxy;
    QTreeView view;
    view.setModel(&proxy);
    int repaints = 0; // setSearchString()'s, only when its text or flag change
    connect(&proxy, &QAbstractItemModel::dataChanged,
            [&](const QModelIndex &tl) { repaints += tl.isValid() ? 0 : 1; });
    ReportingTester tester(&proxy, "topLeft|bottomRight"); // the repaints' invalid indexes
    proxy.setSortColumns({ 1 });
    proxy.sort(0, Qt::DescendingOrder);
    proxy.setSearchString("cherry");
    view.expandAll();
    proxy.tree.setData(at(proxy.tree, "1/0/0", 1), "cherry tart"); // now it passes
    proxy.tree.insertRows(0, 1, at(proxy.tree, "2"));
    proxy.tree.setData(at(proxy.tree, "2/0", 1), "cherry jam");
    proxy.tree.moveRows(at(proxy.tree, "0"), 0, 1, at(proxy.tree, "2"), 1);
    proxy.setSearchString("cherry", true);
    proxy.setSearchString("cherry", true);
    proxy.tree.revertRows(QModelIndex());
    proxy.setSearchString("");
    proxy.setSearchString(QString());
    proxy.tree.removeRows(0, 1, at(proxy.tree, "0"));
    proxy.tree.clear(); // a refresh with rows notifies their removal inside its reset
    proxy.tree.refresh();
    proxy.setSearchString("fig");
    QCOMPARE(dump(proxy), QString("B=fig"));
    QCOMPARE(repaints, 4);
    QCOMPARE(tester.unexpected(), QStringList());
}

ZU_TEST_MAIN(tst_ZuSortFilterTreeProxyModel)
#include "tst_zusortfiltertreeproxymodel.moc"
