#include "ModalAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

namespace zutest {

ModalAnswerer::ModalAnswerer()
{
    m_timer.setInterval(10);
    connect(&m_timer, &QTimer::timeout, this, &ModalAnswerer::poll);
    m_timer.start();
}

void ModalAnswerer::poll()
{
    QWidget *modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible())
        return;

    SeenModal seen;
    seen.title = modal->windowTitle();
    const Answer answer = m_answers.isEmpty() ? Answer { false, QString() } : m_answers.takeFirst();
    if (auto *box = qobject_cast<QMessageBox *>(modal)) {
        seen.kind = SeenModal::MessageBox;
        seen.text = box->text();
        seen.icon = box->icon();
        seen.informativeText = box->informativeText();
        if (box->defaultButton())
            seen.defaultButton = box->defaultButton()->text();
        QAbstractButton *press = nullptr;
        for (QAbstractButton *b : box->buttons()) {
            seen.buttonTexts.append(b->text());
            if (!answer.file && b->text() == answer.text)
                press = b;
        }
        press ? press->click() : box->reject();
    } else if (auto *dialog = qobject_cast<QFileDialog *>(modal)) {
        seen.kind = SeenModal::FileDialog;
        seen.filter = dialog->selectedNameFilter();
        auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        seen.proposed = edit ? edit->text() : QString();
        if (answer.file && !answer.text.isEmpty()) {
            dialog->selectFile(answer.text);
            if (edit) // the line edit holds what accept() reads in a widget-based dialog
                edit->setText(answer.text);
            static_cast<QDialog *>(dialog)->accept(); // protected in QFileDialog
        } else {
            dialog->reject();
        }
    } else {
        modal->close(); // a dialog rejects itself on close
    }
    m_seen.append(seen);
}

} // namespace zutest
