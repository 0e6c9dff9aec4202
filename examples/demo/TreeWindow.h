#pragma once

#include <QWidget>

class CustomerModel;
class QTextStream;
class TaskTreeModel;

// A tree view over a project plan, searched through the tree proxy, whose
// edits stay staged until Submit or Revert, beside the distinct cities of the
// customers and a read-only view of them.
class TreeWindow : public QWidget
{
    Q_OBJECT

public:
    TreeWindow(TaskTreeModel *tasks, CustomerModel *customers, QWidget *parent = nullptr);
};

// The same without a window: prints each step; 0 when all went as expected.
int runTreeHeadless(QTextStream &out, CustomerModel &customers);
