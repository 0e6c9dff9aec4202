// ZuTreeModel against QStandardItemModel holding the same tree: a refresh that
// builds it, and the walk of a view over every index.
#include "bench_tree.h"

#include <zucore/ZuTreeModel.h>

#include <QStandardItemModel>

#include <benchmark/benchmark.h>
#include <memory>

namespace {

using namespace benchtree;

QList<QStandardItem *> peerRow(const QVariantList &cells)
{
    QList<QStandardItem *> row;
    for (const QVariant &value : cells) {
        auto *item = new QStandardItem;
        item->setData(value, Qt::EditRole);
        row.append(item);
    }
    return row;
}

void fillPeer(QStandardItemModel &model, const Values &values)
{
    model.clear();
    model.setHorizontalHeaderLabels({ "name", "count", "share", "note" });
    for (int top = 0; top < values.topRows; ++top) {
        QList<QStandardItem *> row = peerRow(values.at(top, -1));
        for (int child = 0; child < values.children; ++child)
            row.first()->appendRow(peerRow(values.at(top, child)));
        model.appendRow(row);
    }
}

int expectedRows(const Values &values)
{
    return values.topRows;
}

void tree_refresh_ours(benchmark::State &state)
{
    const Values values(100);
    Tree model(values);
    for (auto _ : state)
        model.refresh();
    if (model.rowCount() != expectedRows(values)
        || model.rowCount(model.index(0, 0)) != values.children)
        state.SkipWithError("wrong tree");
}

void tree_refresh_peer(benchmark::State &state)
{
    const Values values(100);
    QStandardItemModel model;
    for (auto _ : state)
        fillPeer(model, values);
    if (model.rowCount() != expectedRows(values))
        state.SkipWithError("wrong tree");
}

// What a view asks to lay out and paint every row: each cell's index and
// display text under its parent, and the parent of each child.
qint64 walk(const QAbstractItemModel &model)
{
    qint64 sum = 0;
    const int top = model.rowCount();
    for (int r = 0; r < top; ++r) {
        const QModelIndex parent = model.index(r, 0);
        for (int c = 0; c < columns; ++c)
            sum += model.index(r, c).data().toString().size();
        const int children = model.rowCount(parent);
        for (int i = 0; i < children; ++i) {
            for (int c = 0; c < columns; ++c) {
                const QModelIndex cell = model.index(i, c, parent);
                sum += cell.data().toString().size();
                sum += model.parent(cell).row();
            }
        }
    }
    return sum;
}

void tree_walk_ours(benchmark::State &state, int children)
{
    const Values values(children);
    Tree model(values);
    model.refresh();
    qint64 sum = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(sum = walk(model));
    QStandardItemModel peer;
    fillPeer(peer, values);
    if (sum != walk(peer))
        state.SkipWithError("the walks differ");
}

void tree_walk_peer(benchmark::State &state, int children)
{
    const Values values(children);
    QStandardItemModel model;
    fillPeer(model, values);
    qint64 sum = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(sum = walk(model));
    if (sum <= 0)
        state.SkipWithError("nothing walked");
}

} // namespace

BENCHMARK(tree_refresh_ours)->Name("tree_refresh_100k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(tree_refresh_peer)->Name("tree_refresh_100k/peer")->Unit(benchmark::kMillisecond);
// 100 children per parent is the tree of the refresh; 10 and 1 000 show how
// parent()'s linear search through the grandparent's children grows.
BENCHMARK_CAPTURE(tree_walk_ours, x100, 100)
    ->Name("tree_walk_100k/ours")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(tree_walk_peer, x100, 100)
    ->Name("tree_walk_100k/peer")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(tree_walk_ours, x10, 10)
    ->Name("tree_walk_100k_x10/ours")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(tree_walk_peer, x10, 10)
    ->Name("tree_walk_100k_x10/peer")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(tree_walk_ours, x1000, 1000)
    ->Name("tree_walk_100k_x1000/ours")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(tree_walk_peer, x1000, 1000)
    ->Name("tree_walk_100k_x1000/peer")
    ->Unit(benchmark::kMillisecond);
