#include "TestTree.h"
#include "support/ZuTest.h"

#include <zucore/ZuReadOnlyProxyModel.h>

#include <QAbstractItemModelTester>
#include <QStandardItemModel>
#include <QTreeView>

class tst_ZuReadOnlyProxyModel : public QObject
{
    Q_OBJECT

private slots:
    void flagsAndEdits_data();
    void flagsAndEdits();
    void treeThroughView();
};

void tst_ZuReadOnlyProxyModel::flagsAndEdits_data()
{
    QTest::addColumn<int>("sourceFlags");
    QTest::newRow("editable, selectable, enabled")
        << int(Qt::ItemIsEditable | Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    QTest::newRow("editable, checkable only") << int(Qt::ItemIsEditable | Qt::ItemIsUserCheckable);
    QTest::newRow("not editable") << int(Qt::ItemIsEnabled);
}

void tst_ZuReadOnlyProxyModel::flagsAndEdits()
{
    QFETCH(int, sourceFlags);
    QStandardItemModel source(2, 2);
    source.setItem(0, 1, new QStandardItem("cell"));
    source.item(0, 1)->setFlags(Qt::ItemFlags(sourceFlags));
    ZuReadOnlyProxyModel proxy;
    QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    proxy.setSourceModel(&source);
    const QModelIndex cell = proxy.index(0, 1);
    QCOMPARE(int(proxy.flags(cell)), sourceFlags & ~Qt::ItemIsEditable);
    for (const int role : { int(Qt::EditRole), int(Qt::DisplayRole), int(Qt::CheckStateRole) })
        QVERIFY(!proxy.setData(cell, "changed", role));
    QCOMPARE(source.item(0, 1)->text(), QString("cell"));
    QVERIFY(source.setData(source.index(0, 1), "from elsewhere")); // the source stays editable
    QCOMPARE(cell.data().toString(), QString("from elsewhere"));
    QVERIFY(proxy.insertRows(1, 2)); // rows and columns aren't blocked
    QVERIFY(proxy.removeRows(0, 1));
    QCOMPARE(source.rowCount(), 3);
    QCOMPARE(source.item(2, 1), nullptr);
}

void tst_ZuReadOnlyProxyModel::treeThroughView()
{
    TestTree tree("A=1(a1=11(a1x=111)),B=2");
    tree.refresh();
    ZuReadOnlyProxyModel proxy;
    proxy.setSourceModel(&tree);
    ColumnZeroRows checked(&proxy); // see TestTree.h
    QAbstractItemModelTester tester(&checked,
                                    QAbstractItemModelTester::FailureReportingMode::QtTest);
    QTreeView view;
    view.setModel(&proxy);
    view.expandAll();
    const QModelIndex leaf = proxy.index(0, 1, proxy.index(0, 0, proxy.index(0, 0)));
    QCOMPARE(leaf.data().toString(), QString("111"));
    view.edit(leaf); // no editor opens
    QVERIFY(!view.viewport()->findChild<QWidget *>());
    QVERIFY(tree.flags(tree.index(0, 0)) & Qt::ItemIsEditable);
    QVERIFY(!(proxy.flags(leaf) & Qt::ItemIsEditable));
    QVERIFY(tree.setData(tree.index(1, 1), "edited")); // seen through the proxy
    QCOMPARE(dump(proxy), QString("A=1(a1=11(a1x=111)),B=edited*"));
    QVERIFY(tree.moveRows(tree.index(0, 0), 0, 1, tree.index(1, 0), 0));
    QCOMPARE(dump(proxy), QString("A=1,B=edited*(a1=11(a1x=111))"));
}

ZU_TEST_MAIN(tst_ZuReadOnlyProxyModel)
#include "tst_zureadonlyproxymodel.moc"
