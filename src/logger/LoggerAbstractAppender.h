#pragma once

#include <zucore/Logger.h>
#include <zucore/zucore_export.h>

#include <QMutex>

#include <atomic>

/**
 * @brief The place where a record leaves the logger: filters by level, writes one at a time.
 *
 * Logger calls write(), which drops records below detailsLevel() before any text is formed and
 * lets one append() run at a time, so that append() needs no lock against itself. The details
 * level starts at Logger::Debug: an appender takes no Logger::Trace record until told to.
 * Nothing that runs inside append() may log through Logger.
 */
class ZUCORE_EXPORT LoggerAbstractAppender
{
    Q_DISABLE_COPY(LoggerAbstractAppender)
public:
    /// An appender at details level Logger::Debug.
    LoggerAbstractAppender();
    /// Destroys the appender; a Logger that owns it does this when it ends.
    virtual ~LoggerAbstractAppender();

    /// The lowest level that this appender takes.
    Logger::LogLevel detailsLevel() const;
    /// Sets the lowest level that this appender takes, from the next record on.
    void setDetailsLevel(Logger::LogLevel level);
    /// Sets the level by name (Logger::levelFromString); an unrecognised text sets Logger::Debug.
    void setDetailsLevel(const QString &level);

    /**
     * Hands the record to append() unless @p logLevel is below detailsLevel(); a record at
     * exactly the details level passes. Called by Logger.
     */
    void write(const QDateTime &timeStamp, Logger::LogLevel logLevel, const char *file, int line,
               const char *function, const QString &category, const QString &message);

    /**
     * Writes one record somewhere. Runs under the write mutex; called by write(), which is the
     * entry point for everyone else. Failures are reported on standard error only.
     */
    virtual void append(const QDateTime &timeStamp, Logger::LogLevel logLevel, const char *file,
                        int line, const char *function, const QString &category,
                        const QString &message)
        = 0;

private:
    QMutex m_writeMutex;
    // Read by every record from any thread, written rarely: a lock-free value.
    std::atomic<int> m_detailsLevel;
};
