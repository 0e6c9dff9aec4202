#include "support/CapturingAppender.h"

namespace zutest {

void CapturingAppender::append(const QDateTime &timeStamp, Logger::LogLevel logLevel,
                               const char *file, int line, const char *function,
                               const QString &category, const QString &message)
{
    LogRecord record { logLevel, QString::fromLatin1(file),
                       line,     QString::fromLatin1(function),
                       category, message,
                       timeStamp };
    QMutexLocker locker(&m_mutex);
    m_records.append(record);
}

QList<LogRecord> CapturingAppender::records() const
{
    QMutexLocker locker(&m_mutex);
    return m_records;
}

QStringList CapturingAppender::messages() const
{
    QMutexLocker locker(&m_mutex);
    QStringList result;
    for (const LogRecord &record : m_records)
        result.append(record.message);
    return result;
}

void CapturingAppender::clear()
{
    QMutexLocker locker(&m_mutex);
    m_records.clear();
}

LogCapture::LogCapture()
    : m_appender(new CapturingAppender)
{
    m_appender->setDetailsLevel(Logger::Trace);
    cuteLoggerInstance()->registerAppender(m_appender);
}

LogCapture::~LogCapture()
{
    cuteLoggerInstance()->removeAppender(m_appender);
    delete m_appender;
}

bool LogCapture::contains(Logger::LogLevel level, const QString &messagePart) const
{
    const QList<LogRecord> all = records();
    for (const LogRecord &record : all) {
        if (record.level == level && record.message.contains(messagePart))
            return true;
    }
    return false;
}

} // namespace zutest
