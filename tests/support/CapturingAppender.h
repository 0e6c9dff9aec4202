#pragma once

#include <zucore/Logger.h>
#include <zucore/LoggerAbstractAppender.h>

#include <QList>
#include <QMutex>
#include <QString>
#include <QStringList>

namespace zutest {

/// The parts of a record that tests look at.
struct LogRecord
{
    Logger::LogLevel level;
    int line;
    QString category;
    QString message;
};

/// An appender that keeps every record it receives, from any thread.
class CapturingAppender : public LoggerAbstractAppender
{
public:
    void append(const QDateTime &, Logger::LogLevel logLevel, const char *, int line, const char *,
                const QString &category, const QString &message) override
    {
        QMutexLocker locker(&m_mutex);
        m_records.append({ logLevel, line, category, message });
    }

    QList<LogRecord> records() const
    {
        QMutexLocker locker(&m_mutex);
        return m_records;
    }

    QStringList messages() const
    {
        QStringList result;
        const QList<LogRecord> all = records();
        for (const LogRecord &record : all)
            result.append(record.message);
        return result;
    }

    void clear()
    {
        QMutexLocker locker(&m_mutex);
        m_records.clear();
    }

    /// True if a record at @p level has a message containing @p messagePart.
    bool contains(Logger::LogLevel level, const QString &messagePart) const
    {
        const QList<LogRecord> all = records();
        for (const LogRecord &record : all)
            if (record.level == level && record.message.contains(messagePart))
                return true;
        return false;
    }

private:
    mutable QMutex m_mutex;
    QList<LogRecord> m_records;
};

/// Captures what reaches the global logger for the lifetime of the object, at Logger::Trace.
class LogCapture : public CapturingAppender
{
public:
    LogCapture()
    {
        setDetailsLevel(Logger::Trace);
        cuteLoggerInstance()->registerAppender(this);
    }
    ~LogCapture() override { cuteLoggerInstance()->removeAppender(this); }
};

} // namespace zutest
