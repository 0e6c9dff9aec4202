#pragma once

#include <zucore/Logger.h>
#include <zucore/LoggerAbstractAppender.h>

#include <QDateTime>
#include <QList>
#include <QMutex>
#include <QString>
#include <QStringList>

namespace zutest {

/// One record as an appender received it.
struct LogRecord
{
    Logger::LogLevel level;
    QString file;
    int line;
    QString function;
    QString category;
    QString message;
    QDateTime timeStamp;
};

/// An appender that keeps every record it receives, from any thread.
class CapturingAppender : public LoggerAbstractAppender
{
public:
    void append(const QDateTime &timeStamp, Logger::LogLevel logLevel, const char *file, int line,
                const char *function, const QString &category, const QString &message) override;

    QList<LogRecord> records() const;
    QStringList messages() const;
    void clear();

private:
    mutable QMutex m_mutex;
    QList<LogRecord> m_records;
};

/**
 * Captures what reaches the global logger for the lifetime of the object: a CapturingAppender
 * at Logger::Trace registered on cuteLoggerInstance(), removed and deleted at the end.
 */
class LogCapture
{
    Q_DISABLE_COPY(LogCapture)
public:
    LogCapture();
    ~LogCapture();

    QList<LogRecord> records() const { return m_appender->records(); }
    QStringList messages() const { return m_appender->messages(); }
    void clear() { m_appender->clear(); }
    /// True if a record at @p level has a message containing @p messagePart.
    bool contains(Logger::LogLevel level, const QString &messagePart) const;

private:
    CapturingAppender *m_appender;
};

} // namespace zutest
