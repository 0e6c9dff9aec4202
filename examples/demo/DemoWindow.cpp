#include "DemoWindow.h"

#include "CustomerModel.h"

#include <zucore/ZuSortFilterProxyModel.h>

#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

DemoWindow::DemoWindow(CustomerModel *model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_proxy(new ZuSortFilterProxyModel(this))
    , m_view(new QTableView(this))
    , m_state(new QLabel(this))
{
    setWindowTitle(QStringLiteral("zucore demo: staged table edits"));
    // Natural order by city, then by name; edits move their row at once.
    m_proxy->setSourceModel(m_model);
    m_proxy->setSortColumns({ CustomerModel::City, CustomerModel::Name });
    m_proxy->sort(CustomerModel::City);
    m_view->setModel(m_proxy);
    // Item views submit their model whenever the current row changes; here a
    // batch of edits stays staged until the Submit button. (A proxy between
    // view and model forwards that submit too: disconnect it from the proxy.)
    disconnect(m_view->selectionModel(), SIGNAL(currentRowChanged(QModelIndex, QModelIndex)),
               m_view->model(), SLOT(submit()));
    m_view->horizontalHeader()->setStretchLastSection(true);

    // The search text is a case-insensitive regular expression over every column.
    auto *search = new QLineEdit(this);
    search->setPlaceholderText(QStringLiteral("Search"));
    search->setClearButtonEnabled(true);
    connect(search, &QLineEdit::textChanged, m_proxy,
            [this](const QString &text) { m_proxy->setSearchString(text); });

    auto *submit = new QPushButton(QStringLiteral("Submit"), this);
    auto *revert = new QPushButton(QStringLiteral("Revert"), this);
    connect(submit, &QPushButton::clicked, m_model, &CustomerModel::submit);
    connect(revert, &QPushButton::clicked, m_model, &CustomerModel::revert);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_state, 1);
    buttons->addWidget(submit);
    buttons->addWidget(revert);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(search);
    layout->addWidget(m_view);
    layout->addLayout(buttons);

    // Revert emits nothing of its own when only cells change back, so ask
    // after every change the view can see.
    connect(m_model, &CustomerModel::dataChanged, this, &DemoWindow::updateState);
    connect(m_model, &CustomerModel::rowsRemoved, this, &DemoWindow::updateState);
    connect(m_model, &CustomerModel::rowsInserted, this, &DemoWindow::updateState);
    connect(m_model, &CustomerModel::dataSubmitted, this, &DemoWindow::updateState);
    connect(revert, &QPushButton::clicked, this, &DemoWindow::updateState);
    updateState();
    resize(520, 300);
}

void DemoWindow::updateState()
{
    m_state->setText(m_model->isDirty() ? QStringLiteral("Edited: submit or revert")
                                        : QStringLiteral("Nothing to submit"));
}
