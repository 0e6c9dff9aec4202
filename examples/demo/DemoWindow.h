#pragma once

#include <QWidget>

class CustomerModel;
class QLabel;
class QTableView;

// A table view over the customers with Submit and Revert buttons and a line
// that tells whether there is something to submit.
class DemoWindow : public QWidget
{
    Q_OBJECT

public:
    explicit DemoWindow(CustomerModel *model, QWidget *parent = nullptr);

private:
    void updateState();

    CustomerModel *m_model;
    QTableView *m_view;
    QLabel *m_state;
};
