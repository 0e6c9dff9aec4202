#include "DemoWindow.h"

#include "CustomerDocument.h"
#include "CustomerModel.h"

#include <zucore/ZuManualSubmitProxyModel.h>
#include <zucore/ZuSortFilterProxyModel.h>

#include <QAction>
#include <QCloseEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

DemoWindow::DemoWindow(CustomerModel *model, CustomerDocument *document, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_document(document)
    , m_proxy(new ZuSortFilterProxyModel(this))
    , m_view(new QTableView(this))
    , m_state(new QLabel(this))
{
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
    // The document asks about unsaved changes, shows the dialogs and the lock box itself.
    QMenu *file = menuBar->addMenu(QStringLiteral("&File"));
    // Save As to a clean document changes the name alone: the title is set after every action.
    auto add = [this, file](const QString &text, QKeySequence key, auto action) {
        QAction *item = file->addAction(text, m_document, [this, action] {
            action();
            updateTitle();
        });
        item->setShortcut(key);
    };
    add(QStringLiteral("&New"), QKeySequence::New, [this] { m_document->newFile(); });
    add(QStringLiteral("&Open..."), QKeySequence::Open, [this] { m_document->openFile(); });
    add(QStringLiteral("&Save"), QKeySequence::Save, [this] { m_document->saveFile(); });
    add(QStringLiteral("Save &As..."), QKeySequence::SaveAs, [this] { m_document->saveFileAs(); });
    add(QStringLiteral("Re&vert to Saved"), QKeySequence(), [this] { m_document->revert(); });
    connect(m_document, &CustomerDocument::modifiedChanged, this, &DemoWindow::updateTitle);
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
    updateTitle();
    resize(520, 300);
}

void DemoWindow::closeEvent(QCloseEvent *event)
{
    if (m_document->maybeSave())
        event->accept();
    else
        event->ignore();
}

void DemoWindow::updateTitle()
{
    const QString name = m_document->fileName().isEmpty()
        ? m_document->defaultFileName()
        : QFileInfo(m_document->fileName()).fileName();
    setWindowTitle(QStringLiteral("%1%2 - zucore demo")
                       .arg(name, m_document->isModified() ? QStringLiteral("*") : QString()));
}

void DemoWindow::updateState()
{
    m_state->setText(m_model->isDirty() ? QStringLiteral("Edited: submit or revert")
                                        : QStringLiteral("Nothing to submit"));
}
