#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

namespace zutest {

/// What the answerer saw of one modal box or file dialog.
struct SeenModal
{
    enum Kind { MessageBox, FileDialog, Other };
    Kind kind = Other;
    QString title;
    QString text; ///< box text; empty for a dialog
    QMessageBox::Icon icon = QMessageBox::NoIcon; ///< box icon
    QString informativeText; ///< box informative text
    QStringList buttonTexts; ///< box buttons' texts, custom ones too, in the box's order
    QString defaultButton; ///< text of the box's default button; empty if none
    QString proposed; ///< dialog: the file name it offered, as its name field showed it
    QString filter; ///< dialog: its selected name filter
};

/**
 * Answers modal boxes and file dialogs from a timer, so that code under test that raises them
 * never waits for a person. Queue answers in the order the boxes will appear, then call the
 * code. A modal that appears with no fitting answer queued is rejected (Escape / Cancel) and
 * recorded, so an unexpected box fails an assertion instead of hanging.
 */
class ModalAnswerer : public QObject
{
    Q_OBJECT
public:
    ModalAnswerer();

    /// The next message box is answered by the button whose text is `text`.
    void answerBoxByText(const QString &text) { m_answers.append({ false, text }); }
    /// The next file dialog is accepted with `fileName`; an empty name cancels it.
    void answerFileDialog(const QString &fileName) { m_answers.append({ true, fileName }); }

    /// Everything answered so far, in order.
    const QList<SeenModal> &seen() const { return m_seen; }
    /// Answers still queued.
    int pending() const { return m_answers.size(); }

private:
    struct Answer
    {
        bool file;
        QString text;
    };
    void poll();

    QTimer m_timer;
    QList<Answer> m_answers;
    QList<SeenModal> m_seen;
};

} // namespace zutest
