#include "logger/LoggerLocks_p.h"
#include "logger/LoggerStatementGate_p.h"

#include <zucore/LoggerAbstractAppender.h>

LoggerAbstractAppender::LoggerAbstractAppender()
    : m_detailsLevel(Logger::Debug)
{ }

LoggerAbstractAppender::~LoggerAbstractAppender() = default;

Logger::LogLevel LoggerAbstractAppender::detailsLevel() const
{
    return Logger::LogLevel(m_detailsLevel.load(std::memory_order_acquire));
}

void LoggerAbstractAppender::setDetailsLevel(Logger::LogLevel level)
{
    m_detailsLevel.store(level, std::memory_order_release);
    // Statements that were skipped may be wanted now.
    LoggerStatementGate::invalidate();
}

void LoggerAbstractAppender::setDetailsLevel(const QString &level)
{
    setDetailsLevel(Logger::levelFromString(level));
}

void LoggerAbstractAppender::write(const QDateTime &timeStamp, Logger::LogLevel logLevel,
                                   const char *file, int line, const char *function,
                                   const QString &category, const QString &message)
{
    // The level test comes first, so that a dropped record costs neither the write mutex nor
    // any formatting.
    if (logLevel < detailsLevel())
        return;
    ZuLoggerLocks::MutexLocker locker(&m_writeMutex);
    append(timeStamp, logLevel, file, line, function, category, message);
}
