#include "TreeWindow.h"

#include "CustomerModel.h"
#include "TaskTreeModel.h"

#include <zucore/ZuManualSubmitProxyModel.h>
#include <zucore/ZuReadOnlyProxyModel.h>
#include <zucore/ZuSortFilterTreeProxyModel.h>
#include <zucore/ZuUniqueValuesProxyModel.h>

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QTableView>
#include <QTextStream>
#include <QToolBar>
#include <QTreeView>
#include <QVBoxLayout>

namespace {

// submit() and revert() of a tree model reach the first top-level row and its
// subtree; submitRows() and revertRows() of the invalid index reach them all.
void submitAll(TaskTreeModel *tasks)
{
    tasks->submitRows(QModelIndex());
    tasks->submit(); // emits dataSubmitted() and clears the dirty flag
}

void revertAll(TaskTreeModel *tasks)
{
    tasks->revertRows(QModelIndex());
    tasks->revert(); // clears the dirty flag
}

void printTree(QTextStream &out, const QAbstractItemModel &model, const QModelIndex &parent = {},
               int depth = 1)
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(parent); ++column) {
            const QModelIndex cell = model.index(row, column, parent);
            const QVariant value = cell.data(Qt::EditRole);
            cells << (value.isValid() ? value.toString() : QStringLiteral("(new)"))
                    + (value != cell.data(ZuAbstractTableModel::PreviousValueRole)
                           ? QStringLiteral("*")
                           : QString());
        }
        out << QString(depth * 2, ' ') << cells.join(QStringLiteral(" | ")) << Qt::endl;
        printTree(out, model, model.index(row, 0, parent), depth + 1);
    }
}

} // namespace

TreeWindow::TreeWindow(TaskTreeModel *tasks, CustomerModel *customers, QWidget *parent)
    : QWidget(parent)
{
    setWindowTitle(QStringLiteral("zucore demo: staged tree edits, distinct values, read-only"));

    auto *search = new ZuSortFilterTreeProxyModel(this);
    search->setSourceModel(tasks);
    search->sort(TaskTreeModel::Task); // natural order under each parent
    // Item views submit their model when the current row changes or an editor
    // closes with Enter, and revert it when one closes with Escape: under the
    // view, this proxy keeps those calls from the tree, so the batch stays
    // staged until Submit or Revert.
    auto *keep = new ZuManualSubmitProxyModel(this);
    keep->setSourceModel(search);
    auto *tree = new QTreeView(this);
    tree->setModel(keep);
    tree->expandAll();
    tree->setColumnWidth(TaskTreeModel::Task, 180);

    // A parent stays visible while anything below it matches.
    auto *searchText = new QLineEdit(this);
    searchText->setPlaceholderText(QStringLiteral("Search the plan"));
    searchText->setClearButtonEnabled(true);
    connect(searchText, &QLineEdit::textChanged, search, [search, tree](const QString &text) {
        search->setSearchString(text);
        tree->expandAll();
    });

    auto *toolBar = new QToolBar(this);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    QAction *submit
        = toolBar->addAction(QIcon(QStringLiteral(":/images/submit")), QStringLiteral("&Submit"));
    QAction *revert
        = toolBar->addAction(QIcon(QStringLiteral(":/images/revert")), QStringLiteral("&Revert"));
    QAction *add = toolBar->addAction(QStringLiteral("&Add sub-task"));
    connect(submit, &QAction::triggered, tasks, [tasks] { submitAll(tasks); });
    connect(revert, &QAction::triggered, tasks, [tasks] { revertAll(tasks); });
    connect(add, &QAction::triggered, tasks, [tasks, search, keep, tree] {
        const QModelIndex current = tree->currentIndex().siblingAtColumn(0);
        const QModelIndex parent = search->mapToSource(keep->mapToSource(current));
        // A new row: its previous values are null, so Revert removes it.
        tasks->insertRows(0, 1, parent);
        tree->expandAll();
    });

    // The distinct cities of the customers, and a picture of them that can't be edited.
    auto *cities = new ZuUniqueValuesProxyModel(this);
    cities->setModelColumn(CustomerModel::City);
    cities->setSourceModel(customers);
    auto *cityList = new QListView(this);
    cityList->setModel(cities);
    cityList->setModelColumn(CustomerModel::City);
    auto *readOnly = new ZuReadOnlyProxyModel(this);
    readOnly->setSourceModel(customers);
    auto *readOnlyView = new QTableView(this);
    readOnlyView->setModel(readOnly);

    auto *left = new QVBoxLayout;
    left->addWidget(toolBar);
    left->addWidget(searchText);
    left->addWidget(tree);
    auto *right = new QVBoxLayout;
    right->addWidget(new QLabel(QStringLiteral("Cities (each once)"), this));
    right->addWidget(cityList);
    right->addWidget(new QLabel(QStringLiteral("Customers, read-only"), this));
    right->addWidget(readOnlyView);
    auto *layout = new QHBoxLayout(this);
    layout->addLayout(left, 3);
    layout->addLayout(right, 2);
    resize(820, 360);
}

int runTreeHeadless(QTextStream &out, CustomerModel &customers)
{
    TaskTreeModel tasks;
    tasks.refresh();
    out << "a project plan as a tree:" << Qt::endl;
    printTree(out, tasks);

    const QModelIndex layout
        = tasks.index(1, TaskTreeModel::State, tasks.index(0, 0, tasks.index(0, 0)));
    const QModelIndex inventory = tasks.index(0, TaskTreeModel::Owner, tasks.index(1, 0));
    tasks.setData(layout, QStringLiteral("done"));
    tasks.setData(inventory, QStringLiteral("Grace"));
    tasks.insertRows(0, 1, tasks.index(1, 0));
    out << "two edits and a new row, staged (*):" << Qt::endl;
    printTree(out, tasks);

    tasks.revert();
    out << "revert() reaches the first project only:" << Qt::endl;
    printTree(out, tasks);
    revertAll(&tasks);
    out << "revertRows() of the invalid index reaches all (the new row goes):" << Qt::endl;
    printTree(out, tasks);

    tasks.setData(layout, QStringLiteral("done"));
    submitAll(&tasks);
    out << "edited again and submitted:" << Qt::endl;
    printTree(out, tasks);

    ZuSortFilterTreeProxyModel search;
    search.setSourceModel(&tasks);
    search.setSearchString(QStringLiteral("barb"));
    out << "search \"barb\": the parents stay for the row found:" << Qt::endl;
    printTree(out, search);

    ZuUniqueValuesProxyModel cities;
    cities.setModelColumn(CustomerModel::City);
    cities.setSourceModel(&customers);
    QStringList distinct;
    for (int row = 0; row < cities.rowCount(); ++row)
        distinct << cities.index(row, CustomerModel::City).data().toString();
    out << "the customers' cities, each once: " << distinct.join(QStringLiteral(", ")) << Qt::endl;

    ZuReadOnlyProxyModel readOnly;
    readOnly.setSourceModel(&customers);
    const bool refused = !readOnly.setData(readOnly.index(0, 0), QStringLiteral("x"));
    out << "a read-only view refuses an edit: " << (refused ? "true" : "false") << Qt::endl;

    const bool ok = refused && !tasks.isDirty(layout) && layout.data() == QLatin1String("done")
        && search.rowCount() == 1;
    return ok ? 0 : 1;
}
