#include "ModelFixtures.h"
#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/ZuAbstractTableModel.h>
#include <zucore/ZuSortFilterProxyModel.h>

#include <QFont>
#include <QStandardItemModel>
#include <QTableView>

namespace {

// By design, rowCount() ignores its parent and setSearchString() repaints with invalid indexes.
const QString flatRules = "childIndex|topLeft|bottomRight";

QString visible(const QAbstractItemModel &proxy)
{
    QStringList keys;
    for (int row = 0; row < proxy.rowCount(); ++row)
        keys << proxy.index(row, 0).data().toString();
    return keys.join(',');
}

struct People : ZuSortFilterProxyModel
{
    QStandardItemModel source;
    People()
    {
        for (const char *row :
             { "alpha,Berlin,a1", "Beta,Paris,b2", "gamma,berlin,c3", "delta,,d.4" }) {
            QList<QStandardItem *> items;
            for (const QString &text : QString(row).split(','))
                items << new QStandardItem(text);
            source.appendRow(items);
        }
        setSourceModel(&source);
    }
};

} // namespace

class TestZuSortFilterProxyModel : public QObject
{
    Q_OBJECT

private slots:
    void filtering_data();
    void filtering();
    void orderFollowsSortColumns_data();
    void orderFollowsSortColumns();
    void notAssignedRow();
    void cellEditRoad();
};

void TestZuSortFilterProxyModel::filtering_data()
{
    QTest::addColumn<QStringList>("filters"); // "column=pattern"
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("search"); // a leading "!" inverts it
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("log");
    auto row = [](const char *name, const QStringList &filters, int mode, const QString &search,
                  const QString &expected, const QStringList &log = {}) {
        QTest::newRow(name) << filters << mode << search << expected << log;
    };
    row("search, any case", {}, 0, "BERLIN", "alpha,gamma");
    row("search and: dot needs every cell", {}, 1, ".", "alpha,Beta,gamma");
    row("inverted beats and", {}, 1, "!berlin", "Beta,delta");
    row("unbalanced parenthesis, inverted", {}, 0, "!(", "alpha,Beta,gamma,delta");
    // Rows failing column 1 reach the missing column 7, which logs and rejects them.
    row("filter column beyond the last", { "1=paris", "7=x" }, 0, "", "Beta", { "0", "2", "3" });
    row("filter AND search", { "1=berlin" }, 0, "gam", "gamma");
    row("filters or", { "0=^b", "2=3" }, 0, "", "Beta,gamma");
    row("filters and", { "0=a$", "1=in" }, 1, "", "alpha,gamma");
}

void TestZuSortFilterProxyModel::filtering()
{
    QFETCH(QStringList, filters);
    QFETCH(int, mode);
    QFETCH(QString, search);
    People proxy;
    ReportingTester tester(&proxy, flatRules);
    for (const QString &filter : filters) {
        proxy.addFilterKeyColumn(filter.section('=', 0, 0).toInt());
        proxy.addFilterFixedString(filter.section('=', 0, 0).toInt(), filter.section('=', 1));
    }
    proxy.setFilterMode(ZuSortFilterProxyModel::FilterModes(mode));
    zutest::LogCapture capture;
    QSignalSpy changed(&proxy, &QAbstractItemModel::dataChanged);
    QList<QPersistentModelIndex> held; // as a view's selection holds them
    for (int row = 0; row < proxy.rowCount(); ++row)
        held << proxy.index(row, 0);
    const QStringList names = visible(proxy).split(',');
    proxy.setSearchString(search.mid(search.startsWith('!')), search.startsWith('!'));
    QTEST(visible(proxy), "expected");
    for (int i = 0; i < held.size(); ++i) // rows that stay keep their indexes, the rest lose them
        QCOMPARE(held.at(i).isValid() ? held.at(i).data().toString() : QString(),
                 visible(proxy).split(',').contains(names.at(i)) ? names.at(i) : QString());
    QTEST(capture.messages(), "log"); // not even a warning for "("
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).value<QModelIndex>(), QModelIndex());
    proxy.source.item(1, 1)->setText("Berlin"); // re-filtered while the tester watches
    proxy.source.appendRow(new QStandardItem("epsilon"));
    proxy.setSearchString(QString());
    QCOMPARE(tester.unexpected(), QStringList());
}

void TestZuSortFilterProxyModel::orderFollowsSortColumns_data()
{
    // "columns a b": set the sort columns, "add a": add one, "edit r c text"; each, then sort(1).
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("expected");
    auto row = [](const char *name, const char *steps, const char *expected) {
        QTest::newRow(name) << QString(steps) << QString(expected);
    };
    row("city, then name", "columns 1 0", "delta,alpha,gamma,Beta");
    row("new columns, the same sort()", "columns 1 0|columns 2", "alpha,Beta,gamma,delta");
    row("added column, the same sort()", "columns 1|edit 0 0 zeta|add 0", "delta,gamma,zeta,Beta");
    row("edit of the second sort column", "columns 1 0|edit 0 0 zeta", "delta,gamma,zeta,Beta");
    row("edit of the first sort column", "columns 1 0|edit 0 1 Zurich", "delta,gamma,Beta,alpha");
}

void TestZuSortFilterProxyModel::orderFollowsSortColumns()
{
    QFETCH(QString, steps);
    People proxy;
    ReportingTester tester(&proxy, flatRules);
    proxy.addFilterKeyColumn(2);
    proxy.addFilterFixedString(2, "\\d"); // sorted and filtered, as a view would show it
    proxy.invalidate();
    for (const QString &step : steps.split('|')) {
        const QStringList a = step.split(' ');
        if (a.at(0) == "columns")
            proxy.clearSortColumns();
        if (a.at(0) == "edit")
            proxy.source.item(a.at(1).toInt(), a.at(2).toInt())->setText(a.at(3));
        else
            for (int i = 1; i < a.size(); ++i)
                proxy.addSortColumn(a.at(i).toInt());
        proxy.sort(1);
    }
    QTEST(visible(proxy), "expected");
    QCOMPARE(tester.unexpected(), QStringList());
}

// Out-of-range rows and columns give invalid indexes whether or not the extra row is shown, and
// with it, source row n sits at proxy row n + 1 whatever the sort; the extra row's own answers.
void TestZuSortFilterProxyModel::notAssignedRow()
{
    People proxy;
    proxy.source.setVerticalHeaderLabels({ "first" });
    proxy.source.setHorizontalHeaderLabels({ "Name" });
    proxy.sort(0, Qt::DescendingOrder);
    for (const bool enabled : { false, true }) {
        proxy.setNotAssignedRowEnabled(enabled);
        const int rows = proxy.rowCount(proxy.index(1, 0)); // the parent plays no part
        QCOMPARE(rows, enabled ? 5 : 4);
        const QList<QPair<int, int>> outside = { { rows, 0 }, { -1, 0 }, { 0, -1 }, { 0, 3 } };
        for (const auto &[row, column] : outside)
            QVERIFY(!proxy.index(row, column).isValid());
        QVERIFY(!proxy.mapToSource(QModelIndex()).isValid());
        QVERIFY(!proxy.mapFromSource(QModelIndex()).isValid());
        QVERIFY(!proxy.matchValue("alpha", 9, Qt::DisplayRole).isValid());
        QCOMPARE(proxy.flags(QModelIndex()), Qt::NoItemFlags);
    }
    QCOMPARE(visible(proxy), QString("0,alpha,Beta,gamma,delta"));
    QCOMPARE(proxy.mapFromSource(proxy.source.index(0, 2)), proxy.index(1, 2));
    QCOMPARE(proxy.mapToSource(proxy.index(2, 1)), proxy.source.index(1, 1));
    QCOMPARE(proxy.headerData(0, Qt::Vertical, Qt::DecorationRole), QVariant(0));
    QCOMPARE(proxy.headerData(1, Qt::Vertical).toString(), QString("first"));
    QCOMPARE(proxy.headerData(0, Qt::Horizontal).toString(), QString("Name"));
    QCOMPARE(proxy.matchValue("delta", 0, Qt::DisplayRole), proxy.index(4, 0));
    proxy.setNotAssignedText("None");
    proxy.setUseSelectionRole(true); // no effect on the extra row
    QFont italic;
    italic.setItalic(true);
    auto extra = [&](int column, int role) { return proxy.index(0, column).data(role); };
    QCOMPARE(
        QVariantList({ extra(1, Qt::DisplayRole), extra(1, Qt::FontRole), extra(0, Qt::DisplayRole),
                       extra(2, Qt::EditRole), extra(2, Qt::DisplayRole) }),
        QVariantList({ "None", italic, 0, 0, QVariant() }));
}

void TestZuSortFilterProxyModel::cellEditRoad()
{
    // An application's table behind the proxy, edited through it as a view would.
    ZuAbstractTableModel files;
    files.setHeaderData(0, Qt::Horizontal, "Name");
    files.setHeaderData(1, Qt::Horizontal, "Size");
    QVERIFY(files.insertFromStringsList({ { "file10", "3" }, { "file2", "1" }, { "File1", "2" } }));
    files.submit();
    ZuSortFilterProxyModel proxy;
    proxy.setSourceModel(&files);
    proxy.sort(0); // natural order
    proxy.setSearchString("^file");
    QCOMPARE(visible(proxy), QString("File1,file2,file10"));
    QVERIFY(proxy.setData(proxy.index(2, 0), "file0")); // re-sorted by its new text
    QCOMPARE(visible(proxy), QString("file0,File1,file2"));
    QVERIFY(proxy.setData(proxy.index(2, 0), "notes")); // re-filtered by it
    QCOMPARE(visible(proxy), QString("file0,File1"));
    files.revert();
    QCOMPARE(visible(proxy), QString("File1,file2,file10"));
    // The extra row has no source mapping; an edit's re-sort and a view's selection cope with it.
    proxy.setNotAssignedRowEnabled(true);
    QCOMPARE(int(proxy.flags(proxy.index(0, 1))), 33);
    QTableView view;
    view.setModel(&proxy);
    view.selectRow(1);
    QVERIFY(proxy.setData(proxy.index(1, 0), "file5"));
    QCOMPARE(visible(proxy), QString("0,file5,file2,File1"));
    proxy.setSearchString("^file[25]$"); // the last source row has no place left
    QVERIFY(!proxy.mapFromSource(files.index(2, 0)).isValid());
}

ZU_TEST_MAIN(TestZuSortFilterProxyModel)
#include "tst_zusortfilterproxymodel.moc"
