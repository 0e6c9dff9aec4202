#include "TaskTreeModel.h"

#include <QBrush>
#include <QVector>

namespace {

// One node per line: depth (by two blanks), then "task|owner|state".
const char *const plan = R"(Website|Ada|open
  Design|Grace|done
    Colours|Grace|done
    Layout|Barbara|open
  Build|Linus|open
Migration|Alan|open
  Inventory|Alan|open
)";

QList<ZuTreeItem::Cell> cells(const QStringList &values)
{
    QList<ZuTreeItem::Cell> row;
    for (const QString &value : values)
        row.append({ value, value }); // equal values: the cell starts clean
    return row;
}

} // namespace

TaskTreeModel::TaskTreeModel(QObject *parent)
    : ZuTreeModel({}, parent)
{
    setObjectName(QStringLiteral("TaskTreeModel"));
    // The root's cells are the header.
    rootItem = new ZuTreeItem(
        cells({ QStringLiteral("task"), QStringLiteral("owner"), QStringLiteral("state") }),
        nullptr);
}

void TaskTreeModel::setupModelData()
{
    QVector<ZuTreeItem *> parents { rootItem };
    for (const QString &line : QString::fromUtf8(plan).split('\n', Qt::SkipEmptyParts)) {
        const int depth = (line.size() - line.trimmed().size()) / 2;
        parents.resize(depth + 1);
        ZuTreeItem *parent = parents.at(depth);
        auto *item = new ZuTreeItem(cells(line.trimmed().split('|')), parent);
        parent->childItems.append(item);
        parents.append(item);
    }
}

QVariant TaskTreeModel::data(const QModelIndex &index, int role) const
{
    // The base class paints nothing: show staged cells here.
    if (role == Qt::BackgroundRole && index.isValid())
        return isDirty(index) ? QVariant(QBrush(QColor(255, 225, 140))) : QVariant();
    return ZuTreeModel::data(index, role);
}
