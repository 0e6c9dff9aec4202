#include "DemoWindow.h"

#include "CustomerModel.h"

#include <zucore/ZuManualSubmitProxyModel.h>
#include <zucore/ZuSortFilterProxyModel.h>

#include <QAction>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QTableView>
#include <QToolBar>
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
    // Item views submit their model when the current row changes or an editor
    // closes with Enter, and revert it on Escape. Under the manual-submit proxy
    // a batch of edits stays staged until the Submit or Revert action.
    auto *manual = new ZuManualSubmitProxyModel(this);
    manual->setSourceModel(m_proxy);
    m_view->setModel(manual);
    m_view->horizontalHeader()->setStretchLastSection(true);

    // The search text is a case-insensitive regular expression over every column.
    auto *search = new QLineEdit(this);
    search->setPlaceholderText(QStringLiteral("Search"));
    search->setClearButtonEnabled(true);
    // The library's icons are there as soon as it is loaded: no Q_INIT_RESOURCE.
    search->addAction(QIcon(QStringLiteral(":/images/esf-search")), QLineEdit::LeadingPosition);
    connect(search, &QLineEdit::textChanged, m_proxy,
            [this](const QString &text) { m_proxy->setSearchString(text); });

    auto *submit
        = new QAction(QIcon(QStringLiteral(":/images/submit")), QStringLiteral("&Submit"), this);
    auto *revert
        = new QAction(QIcon(QStringLiteral(":/images/revert")), QStringLiteral("&Revert"), this);
    auto *clear = new QAction(QIcon(QStringLiteral(":/images/clear")),
                              QStringLiteral("&Clear search"), this);
    connect(submit, &QAction::triggered, manual, &ZuManualSubmitProxyModel::submitAll);
    connect(revert, &QAction::triggered, manual, &ZuManualSubmitProxyModel::revertAll);
    connect(clear, &QAction::triggered, search, &QLineEdit::clear);

    auto *menuBar = new QMenuBar(this);
    menuBar->addMenu(QStringLiteral("&Table"))->addActions({ submit, revert, clear });
    auto *toolBar = new QToolBar(this);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar->addActions({ submit, revert });
    toolBar->addSeparator();
    toolBar->addAction(clear);

    auto *layout = new QVBoxLayout(this);
    layout->setMenuBar(menuBar);
    layout->addWidget(toolBar);
    layout->addWidget(search);
    layout->addWidget(m_view);
    layout->addWidget(m_state);

    // Revert emits nothing of its own when only cells change back, so ask
    // after every change the view can see.
    connect(m_model, &CustomerModel::dataChanged, this, &DemoWindow::updateState);
    connect(m_model, &CustomerModel::rowsRemoved, this, &DemoWindow::updateState);
    connect(m_model, &CustomerModel::rowsInserted, this, &DemoWindow::updateState);
    connect(m_model, &CustomerModel::dataSubmitted, this, &DemoWindow::updateState);
    connect(revert, &QAction::triggered, this, &DemoWindow::updateState);
    updateState();
    resize(520, 300);
}

void DemoWindow::updateState()
{
    m_state->setText(m_model->isDirty() ? QStringLiteral("Edited: submit or revert")
                                        : QStringLiteral("Nothing to submit"));
}
