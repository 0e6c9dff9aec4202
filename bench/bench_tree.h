#pragma once
// The tree of the tree benchmarks: 100 000 nodes in two levels, 4 columns,
// loaded clean by setupModelData() from values made once.
#include <zucore/ZuTreeModel.h>

#include <QVariantList>
#include <QVector>

namespace benchtree {

const int columns = 4;
const int nodes = 100000;

inline bool smoke()
{
    return qEnvironmentVariableIsSet("ZUCORE_BENCH_SMOKE");
}

// The cells of every node, made once: both sides store the same values.
struct Values
{
    explicit Values(int children)
        : topRows((smoke() ? 2000 : nodes) / children)
        , children(children)
    {
        for (int r = 0; r < topRows * (children + 1); ++r)
            cells.append({ QStringLiteral("Node %1").arg(r), r, r * 0.25,
                           QStringLiteral("note %1").arg(r % 97) });
    }
    const QVariantList &at(int top, int child) const // child -1: the top-level row
    {
        return cells.at(top * (children + 1) + child + 1);
    }
    int topRows;
    int children;
    QVector<QVariantList> cells;
};

class Tree : public ZuTreeModel
{
public:
    explicit Tree(const Values &values)
        : values(values)
    {
        rootItem = new ZuTreeItem(row({ "name", "count", "share", "note" }), nullptr);
    }
    void setupModelData() override
    {
        for (int top = 0; top < values.topRows; ++top) {
            auto *item = new ZuTreeItem(row(values.at(top, -1)), rootItem);
            rootItem->childItems.append(item);
            item->childItems.reserve(values.children);
            for (int child = 0; child < values.children; ++child)
                item->childItems.append(new ZuTreeItem(row(values.at(top, child)), item));
        }
        dirty = false;
    }

private:
    static QList<ZuTreeItem::Cell> row(const QVariantList &cells)
    {
        QList<ZuTreeItem::Cell> list;
        list.reserve(cells.size());
        for (const QVariant &value : cells)
            list.append({ value, value });
        return list;
    }
    const Values &values;
};

} // namespace benchtree
