#pragma once

#include <zucore/LoggerAbstractStringAppender.h>
#include <zucore/zucore_export.h>

#include <QFile>
#include <QMutex>
#include <QTextStream>

/**
 * @brief Appends records to a text file, flushing after each one.
 *
 * The file is opened at the first record, in append mode (nothing is truncated), and a file
 * that cannot be opened is tried again at every record, each failure printing
 * "<FileAppender::append> Cannot open the log file <name>" on standard error.
 * The default pattern has no newline at its end: set one ending in "\n" with setFormat() to
 * get one record per line.
 *
 * Subclasses (such as a rolling appender) may close, rename and reopen the file with
 * closeFile() and openFile() from their append(), which runs under the write mutex.
 */
class ZUCORE_EXPORT LoggerFileAppender : public LoggerAbstractStringAppender
{
public:
    /// An appender for @p fileName; the file is not opened yet.
    explicit LoggerFileAppender(const QString &fileName);
    /// Closes the file.
    ~LoggerFileAppender() override;

    /// The file name; empty if none was set.
    QString fileName() const;
    /**
     * Closes the current file if open and takes @p fileName; the next record opens it.
     * An empty name prints "<FileAppender::FileAppender> File name is empty. The appender will
     * do nothing" on standard error; later records are then dropped silently.
     */
    void setFileName(const QString &fileName);

    /**
     * Opens the file for appending unless it is open already. Returns false for an empty name
     * (silently) or when the file cannot be opened (reported on standard error). Takes no lock:
     * callers hold the file mutex (append) or run under the write mutex.
     */
    bool openFile();
    /// Closes the file; the next record opens it again.
    void closeFile();
    /// closeFile(), then openFile(); false for an empty name or a file that cannot be opened.
    bool reopenFile();

    /// Opens the file if needed, writes the formatted record and flushes it to the file.
    void append(const QDateTime &timeStamp, Logger::LogLevel logLevel, const char *file, int line,
                const char *function, const QString &category, const QString &message) override;

private:
    QFile m_logFile;
    QTextStream m_logStream;
    mutable QMutex m_logFileMutex;
};
