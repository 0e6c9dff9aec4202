#pragma once

#include <zucore/zucore_export.h>

#include <QProcess>
#include <QString>

/**
 * @brief Runs one command line synchronously and turns its outcome into a boolean, an error
 * text and log lines.
 *
 * @code #include <zucore/ZuProcess.h> @endcode
 *
 * | Outcome                               | exec() | errorMessage()                     |
 * |---------------------------------------|--------|------------------------------------|
 * | normal exit, code 0                   | true   | unchanged                          |
 * | not started in 30 s / program missing | false  | "Error command in '<cmd>' not found." |
 * | waiting for the end failed            | false  | "Error executing process."         |
 * | crash or exit code other than 0       | false  | unchanged                          |
 * | output on standard error              | as above | the latest chunk of that output  |
 *
 * Every outcome is logged (Trace for success, Error otherwise). exec() blocks the calling thread
 * for as long as the child runs.
 */
class ZUCORE_EXPORT ZuProcess : public QProcess
{
    Q_OBJECT
public:
    /// An idle process with an empty errorMessage().
    explicit ZuProcess(QObject *parent = nullptr);
    ~ZuProcess() override;

    /**
     * Runs @p command (program and arguments in one string, split like a shell would) to its end.
     * Output on standard error is kept in errorMessage() and logged as it arrives. At the end
     * every connection from this object's signals is removed, the application's own included.
     * @return true only for a normal exit with exit code 0; false when the program can't be
     * started within 30 seconds, the wait fails, it crashes or it exits with another code.
     */
    bool exec(const QString &command);

    /// The last error text: the latest chunk read from standard error, or exec()'s own text.
    /// Not cleared by a new exec(). Not QIODevice::errorString(), which stays QProcess's.
    QString errorMessage() const;

private Q_SLOTS:
    void readFromStderr();

private:
    QString m_errorMessage;
};
