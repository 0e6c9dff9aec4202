#include "support/ZuTest.h"

#include <zucore/ZuUniqueValuesProxyModel.h>

#include <QAbstractItemModelTester>
#include <QListView>
#include <QStandardItemModel>

#include <optional>

// One row per value, appended if the list starts with '+'; "~": empty text, "#n": number n.
static void fill(QStandardItemModel &source, QString values)
{
    if (!values.startsWith('+'))
        source.clear();
    for (const QString &value : values.remove('+').split(',', Qt::SkipEmptyParts)) {
        auto *item = new QStandardItem(value == "~" ? QString() : value);
        if (value.startsWith('#'))
            item->setData(value.mid(1).toInt(), Qt::DisplayRole);
        source.appendRow({ item, new QStandardItem(QString("k%1").arg(source.rowCount())) });
    }
}

static QString shown(const QSortFilterProxyModel &proxy)
{
    QStringList rows;
    for (int row = 0; row < proxy.rowCount(); ++row)
        rows << QString::number(proxy.mapToSource(proxy.index(row, 0)).row());
    return rows.join(',');
}

class tst_ZuUniqueValuesProxyModel : public QObject
{
    Q_OBJECT

private slots:
    void rebuilds_data();
    void rebuilds();
};

void tst_ZuUniqueValuesProxyModel::rebuilds_data()
{
    QTest::addColumn<QString>("setup"); // values|what follows the first build
    QTest::addColumn<QList<int>>("progress"); // of the first build, then of the trigger's
    QTest::addColumn<int>("resets"); // by the trigger; 2: one inside the other
    QTest::addColumn<QString>("expected");
    const QList<int> three { 0, 33, 66, 100 };
    QTest::newRow("first of each value") << "A,B,A|" << three << 0 << "0,1";
    QTest::newRow("case tells values apart") << "a,A,a|" << three << 0 << "0,1";
    QTest::newRow("number and text are one value") << "#1,1,x|" << three << 0 << "0,2";
    QTest::newRow("first empty stays") << "~,x,~|" << three << 0 << "0,1";
    QTest::newRow("no rows: 100 alone") << "|" << QList<int> { 100 } << 0 << "";
    QTest::newRow("empty not allowed") << "~,x,~|empty 0" << three + three << 1 << "1";
    QTest::newRow("no source") << "none|column 0" << QList<int>() << 2 << "";
    QTest::newRow("source data changed") << "A,B,A|data" << three + three << 1 << "0,1,2";
    QTest::newRow("source layout changed") << "A,B,A|sort" << three + three << 1 << "0,1";
    QTest::newRow("other model column") << "A,B,A|column 1" << three + three << 2 << "0,1,2";
    // Rows reaching the proxy other than by a reset are filtered against the map as it stands.
    QTest::newRow("source reset") << "A,B,A|fill x,y" << three + QList<int> { 100 } << 2 << "0,1";
    QTest::newRow("rows inserted") << "A,B|fill +C,A" << QList<int> { 0, 50, 100 } << 0 << "0,1,2";
    QTest::newRow("rows removed") << "A,B,C|remove" << three << 0 << "0,1";
}

void tst_ZuUniqueValuesProxyModel::rebuilds()
{
    QFETCH(QString, setup);
    const QString trigger = setup.section('|', 1);
    QStandardItemModel source;
    fill(source, setup.section('|', 0, 0));
    ZuUniqueValuesProxyModel proxy;
    QListView view;
    view.setModel(&proxy);
    QFETCH(int, resets);
    std::optional<QAbstractItemModelTester> tester; // it reports rebuilds inside another change
    if (resets < 2 && trigger != "sort")
        tester.emplace(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QList<int> progress;
    connect(&proxy, &ZuUniqueValuesProxyModel::progressChanged, [&](int p) { progress << p; });
    if (!setup.startsWith("none"))
        proxy.setSourceModel(&source);
    QSignalSpy resetSpy(&proxy, &QAbstractItemModel::modelReset);
    if (trigger == "data")
        source.item(2, 0)->setText("C");
    if (trigger == "remove")
        source.removeRow(0);
    if (trigger == "sort")
        source.sort(0, Qt::DescendingOrder); // B, A, A
    if (trigger.startsWith("fill"))
        fill(source, trigger.section(' ', 1));
    if (trigger.startsWith("column"))
        proxy.setModelColumn(trigger.section(' ', 1).toInt());
    if (trigger.startsWith("empty"))
        proxy.setEmptyItemsAllowed(trigger.endsWith('1'));
    QTEST(progress, "progress");
    QCOMPARE(int(resetSpy.count()), resets);
    QTEST(shown(proxy), "expected");
}

ZU_TEST_MAIN(tst_ZuUniqueValuesProxyModel)
#include "tst_zuuniquevaluesproxymodel.moc"
