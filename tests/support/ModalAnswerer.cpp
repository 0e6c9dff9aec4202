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
    const Answer answer = m_answers.isEmpty() ? Answer { false, QString() } : m_answers.takeFirst();
    if (auto *box = qobject_cast<QMessageBox *>(modal)) {
        QStringList buttons;
        QAbstractButton *press = nullptr;
        for (QAbstractButton *button : box->buttons()) {
            buttons << button->text() + (button == box->defaultButton() ? "*" : "");
            if (!answer.file && button->text() == answer.text)
                press = button;
        }
        m_seen << QStringList({ box->windowTitle(), QString::number(box->icon()), buttons.join(','),
                                box->informativeText(), box->text() })
                      .join('|');
        press ? press->click() : box->reject();
    } else if (auto *dialog = qobject_cast<QFileDialog *>(modal)) {
        auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        m_seen << dialog->windowTitle() + '|' + (edit ? edit->text() : QString()) + '|'
                + dialog->selectedNameFilter();
        if (answer.file && !answer.text.isEmpty()) {
            dialog->selectFile(answer.text);
            if (edit) // the line edit holds what accept() reads in a widget-based dialog
                edit->setText(answer.text);
            static_cast<QDialog *>(dialog)->accept(); // protected in QFileDialog
        } else {
            dialog->reject();
        }
    } else {
        m_seen << modal->windowTitle();
        modal->close(); // a dialog rejects itself on close
    }
}

} // namespace zutest
