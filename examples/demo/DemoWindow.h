#pragma once

#include <QWidget>

class CustomerDocument;
class CustomerModel;
class QLabel;
class QTableView;
class ZuSortFilterProxyModel;

// A table view over the customers, sorted by city and then name, with a
// search field, Submit and Revert in a menu and a tool bar (with the library's
// icons) and a line that tells whether there is something to submit. Its File
// menu saves and opens the table as a document.
class DemoWindow : public QWidget
{
    Q_OBJECT

public:
    DemoWindow(CustomerModel *model, CustomerDocument *document, QWidget *parent = nullptr);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void updateTitle();
    void updateState();

    CustomerModel *m_model;
    CustomerDocument *m_document;
    ZuSortFilterProxyModel *m_proxy;
    QTableView *m_view;
    QLabel *m_state;
};
