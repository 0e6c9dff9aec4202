// ZuSortFilterTreeProxyModel's search against a plain QSortFilterProxyModel
// with recursive filtering over the same tree, and ZuUniqueValuesProxyModel's
// map against a plain pass that gathers the same cells in a hash.
#include "bench_tree.h"

#include <zucore/ZuSortFilterTreeProxyModel.h>
#include <zucore/ZuUniqueValuesProxyModel.h>

#include <QHash>
#include <QRegularExpression>
#include <QStandardItemModel>

#include <benchmark/benchmark.h>
#include <memory>

namespace {

using namespace benchtree;

// Two patterns in turn on the name column, so that every pass changes the rows shown.
const QString searchPatterns[] = { QStringLiteral("7$"), QStringLiteral("node 5") };

Tree &tree()
{
    static const Values values(100);
    static Tree model(values);
    static const bool loaded = (model.refresh(), true);
    Q_UNUSED(loaded)
    return model;
}

// Every row that a fully expanded view shows: the search's whole result.
int visibleRows(const QAbstractItemModel &proxy)
{
    const int top = proxy.rowCount();
    int rows = top;
    for (int r = 0; r < top; ++r)
        rows += proxy.rowCount(proxy.index(r, 0));
    return rows;
}

void tree_search_ours(benchmark::State &state)
{
    ZuSortFilterTreeProxyModel proxy;
    proxy.setSourceModel(&tree());
    proxy.setSearchColumns({ 0 });
    int counts[2] = {};
    int pass = 0;
    for (auto _ : state) {
        proxy.setSearchString(searchPatterns[pass % 2]);
        counts[pass % 2] = visibleRows(proxy);
        ++pass;
    }
    QSortFilterProxyModel check;
    check.setSourceModel(&tree());
    check.setRecursiveFilteringEnabled(true);
    for (int i = 0; i < 2 && i < pass; ++i) {
        check.setFilterRegularExpression(
            QRegularExpression(searchPatterns[i], QRegularExpression::CaseInsensitiveOption));
        if (counts[i] != visibleRows(check) || counts[i] == 0)
            state.SkipWithError("the search and the recursive filter disagree");
    }
}

void tree_search_peer(benchmark::State &state)
{
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&tree());
    proxy.setRecursiveFilteringEnabled(true);
    proxy.setFilterKeyColumn(0);
    const QRegularExpression expressions[]
        = { QRegularExpression(searchPatterns[0], QRegularExpression::CaseInsensitiveOption),
            QRegularExpression(searchPatterns[1], QRegularExpression::CaseInsensitiveOption) };
    int pass = 0;
    int rows = 0;
    for (auto _ : state) {
        proxy.setFilterRegularExpression(expressions[pass % 2]);
        rows = visibleRows(proxy);
        ++pass;
    }
    if (rows <= 0)
        state.SkipWithError("nothing matched");
}

// 100 000 rows holding 5 000 distinct values, in no order.
QStandardItemModel &valuesTable()
{
    static std::unique_ptr<QStandardItemModel> model = [] {
        const int rows = smoke() ? 5000 : 100000;
        auto m = std::make_unique<QStandardItemModel>(rows, 1);
        for (int r = 0; r < rows; ++r)
            m->setItem(r, 0, new QStandardItem(QStringLiteral("value %1").arg(r * 7919 % 5000)));
        return m;
    }();
    return *model;
}

void unique_build_ours(benchmark::State &state)
{
    ZuUniqueValuesProxyModel proxy;
    proxy.setSourceModel(&valuesTable());
    for (auto _ : state)
        QMetaObject::invokeMethod(&proxy, "buildMap", Qt::DirectConnection);
    if (proxy.rowCount() != 5000)
        state.SkipWithError("wrong number of distinct values");
}

void unique_build_peer(benchmark::State &state)
{
    const QAbstractItemModel &source = valuesTable();
    QHash<QString, QList<int>> rowsByValue;
    for (auto _ : state) {
        rowsByValue.clear();
        const int rows = source.rowCount();
        for (int row = 0; row < rows; ++row)
            rowsByValue[source.index(row, 0).data(Qt::DisplayRole).toString()].append(row);
        benchmark::DoNotOptimize(rowsByValue);
    }
    if (rowsByValue.size() != 5000)
        state.SkipWithError("wrong number of distinct values");
}

} // namespace

BENCHMARK(tree_search_ours)->Name("tree_proxy_search_100k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(tree_search_peer)->Name("tree_proxy_search_100k/peer")->Unit(benchmark::kMillisecond);
BENCHMARK(unique_build_ours)->Name("unique_build_100k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(unique_build_peer)->Name("unique_build_100k/peer")->Unit(benchmark::kMillisecond);
