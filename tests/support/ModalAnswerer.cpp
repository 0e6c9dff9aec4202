#include "ModalAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

namespace zutest {

ModalAnswerer::ModalAnswerer(QObject *parent)
    : QObject(parent)
{
    m_timer.setInterval(10);
    connect(&m_timer, &QTimer::timeout, this, &ModalAnswerer::poll);
    m_timer.start();
}

ModalAnswerer::~ModalAnswerer() = default;

void ModalAnswerer::answerBox(QMessageBox::StandardButton button)
{
    m_answers.append({ Answer::Button, button, QString() });
}

void ModalAnswerer::answerBoxByText(const QString &text)
{
    m_answers.append({ Answer::ButtonText, QMessageBox::NoButton, text });
}

void ModalAnswerer::answerFileDialog(const QString &fileName)
{
    m_answers.append({ Answer::File, QMessageBox::NoButton, fileName });
}

void ModalAnswerer::clear()
{
    m_answers.clear();
    m_seen.clear();
}

void ModalAnswerer::poll()
{
    QWidget *modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible())
        return;

    SeenModal seen;
    seen.title = modal->windowTitle();
    const bool haveAnswer = !m_answers.isEmpty();
    const Answer answer
        = haveAnswer ? m_answers.takeFirst() : Answer { Answer::Button, QMessageBox::NoButton, {} };

    if (auto *box = qobject_cast<QMessageBox *>(modal)) {
        seen.kind = SeenModal::MessageBox;
        seen.text = box->text();
        seen.icon = box->icon();
        seen.buttons = box->standardButtons();
        seen.informativeText = box->informativeText();
        for (QAbstractButton *b : box->buttons())
            seen.buttonTexts.append(b->text());
        if (box->defaultButton())
            seen.defaultButton = box->defaultButton()->text();
        QAbstractButton *press = nullptr;
        if (haveAnswer && answer.kind == Answer::Button)
            press = box->button(answer.button);
        if (haveAnswer && answer.kind == Answer::ButtonText) {
            for (QAbstractButton *b : box->buttons())
                if (b->text() == answer.text)
                    press = b;
        }
        if (press) {
            seen.answer = press->text();
            press->click();
        } else {
            seen.answer = QStringLiteral("<rejected>");
            box->reject();
        }
    } else if (auto *dialog = qobject_cast<QFileDialog *>(modal)) {
        seen.kind = SeenModal::FileDialog;
        seen.filter = dialog->selectedNameFilter();
        if (auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
            seen.proposed = edit->text();
        if (haveAnswer && answer.kind == Answer::File && !answer.text.isEmpty()) {
            seen.answer = answer.text;
            dialog->selectFile(answer.text);
            // The line edit holds what accept() reads in a widget-based dialog.
            if (auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
                edit->setText(answer.text);
            static_cast<QDialog *>(dialog)->accept(); // protected in QFileDialog
        } else {
            seen.answer = QStringLiteral("<rejected>");
            dialog->reject();
        }
    } else if (auto *dialog = qobject_cast<QDialog *>(modal)) {
        seen.answer = QStringLiteral("<rejected>");
        dialog->reject();
    } else {
        modal->close();
    }
    m_seen.append(seen);
}

} // namespace zutest
