#pragma once

#include <QWidget>

class CustomerModel;
class QLabel;
class QTableView;
class ZuSortFilterProxyModel;

// A table view over the customers, sorted by city and then name, with a
// search field, Submit and Revert in a menu and a tool bar (with the library's
// icons) and a line that tells whether there is something to submit.
class DemoWindow : public QWidget
{
    Q_OBJECT

public:
    explicit DemoWindow(CustomerModel *model, QWidget *parent = nullptr);

private:
    void updateState();

    CustomerModel *m_model;
    ZuSortFilterProxyModel *m_proxy;
    QTableView *m_view;
    QLabel *m_state;
};
