#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

namespace zutest {

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

    /**
     * Everything answered so far, in order: a box as "title|icon|buttons|informative text|text"
     * (buttons in the box's order, the default one marked with '*'), a file dialog as
     * "title|name|filter" (the name as its name field offered it, its selected filter).
     */
    const QStringList &seen() const { return m_seen; }
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
    QStringList m_seen;
};

} // namespace zutest
