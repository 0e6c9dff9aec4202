#include "support/ZuTest.h"

#include <zucore/ZuReadOnlyProxyModel.h>

#include <QAbstractItemModelTester>
#include <QStandardItemModel>
#include <QTreeView>

class tst_ZuReadOnlyProxyModel : public QObject
{
    Q_OBJECT

private slots:
    void treeThroughView();
};

void tst_ZuReadOnlyProxyModel::treeThroughView()
{
    QStandardItemModel source;
    auto *cell = new QStandardItem("cell");
    cell->setFlags(Qt::ItemIsEditable | Qt::ItemIsUserCheckable | Qt::ItemIsEnabled);
    auto *fixed = new QStandardItem("fixed");
    fixed->setFlags(Qt::ItemIsSelectable);
    source.appendRow({ new QStandardItem("A"), fixed });
    source.item(0)->appendRow({ new QStandardItem("a"), cell });
    ZuReadOnlyProxyModel proxy;
    QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    proxy.setSourceModel(&source);
    QTreeView view;
    view.setModel(&proxy);
    view.expandAll();
    const QModelIndex leaf = proxy.index(0, 1, proxy.index(0, 0));
    QCOMPARE(int(proxy.flags(leaf)), int(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled));
    QCOMPARE(int(proxy.flags(proxy.index(0, 1))), int(Qt::ItemIsSelectable));
    view.edit(leaf); // no editor opens
    QVERIFY(!view.viewport()->findChild<QWidget *>());
    for (const int role : { int(Qt::EditRole), int(Qt::DisplayRole), int(Qt::CheckStateRole) })
        QVERIFY(!proxy.setData(leaf, "changed", role));
    QCOMPARE(cell->text(), QString("cell"));
    QVERIFY(proxy.insertRows(0, 2, proxy.index(0, 0))); // rows aren't blocked
    cell->setText("edited"); // the source stays editable, seen through the proxy
    QCOMPARE(proxy.index(2, 1, proxy.index(0, 0)).data().toString(), QString("edited"));
}

ZU_TEST_MAIN(tst_ZuReadOnlyProxyModel)
#include "tst_zureadonlyproxymodel.moc"
