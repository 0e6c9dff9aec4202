#pragma once

#include <zucore/ZuTreeModel.h>

// A small project plan as a tree: projects, their tasks and sub-tasks, each
// with an owner and a state. Loaded clean, so that edits show as staged.
class TaskTreeModel : public ZuTreeModel
{
    Q_OBJECT

public:
    enum Column { Task, Owner, State };

    explicit TaskTreeModel(QObject *parent = nullptr);

    void setupModelData() override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
};
