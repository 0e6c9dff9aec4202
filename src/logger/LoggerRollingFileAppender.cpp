#include "logger/LoggerLocks_p.h"

#include <zucore/LoggerRollingFileAppender.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>

namespace {

const char *const datePatternStrings[] = {
    "'.'yyyy-MM-dd-hh-mm", // MinutelyRollover
    "'.'yyyy-MM-dd-hh", // HourlyRollover
    "'.'yyyy-MM-dd-a", // HalfDailyRollover
    "'.'yyyy-MM-dd", // DailyRollover
    "'.'yyyy-ww", // WeeklyRollover
    "'.'yyyy-MM", // MonthlyRollover
};

bool isKnown(int datePattern)
{
    return datePattern >= LoggerRollingFileAppender::MinutelyRollover
        && datePattern <= LoggerRollingFileAppender::MonthlyRollover;
}

} // namespace

LoggerRollingFileAppender::LoggerRollingFileAppender(const QString &fileName)
    : LoggerFileAppender(fileName)
    , m_frequency(DailyRollover)
    , m_logFilesLimit(0)
{ }

LoggerRollingFileAppender::DatePattern LoggerRollingFileAppender::datePattern() const
{
    ZuLoggerLocks::MutexLocker locker(&m_rollingMutex);
    return m_frequency;
}

QString LoggerRollingFileAppender::datePatternString() const
{
    ZuLoggerLocks::MutexLocker locker(&m_rollingMutex);
    return m_datePatternString;
}

void LoggerRollingFileAppender::setDatePattern(DatePattern datePattern)
{
    setDatePatternString(
        QLatin1String(datePatternStrings[isKnown(datePattern) ? datePattern : DailyRollover]));
    ZuLoggerLocks::MutexLocker locker(&m_rollingMutex);
    m_frequency = datePattern;
    computeRollOverTime();
}

void LoggerRollingFileAppender::setDatePattern(const QString &datePattern)
{
    setDatePatternString(datePattern);
    computeFrequency();
    ZuLoggerLocks::MutexLocker locker(&m_rollingMutex);
    computeRollOverTime();
}

void LoggerRollingFileAppender::setDatePatternString(const QString &datePatternString)
{
    ZuLoggerLocks::MutexLocker locker(&m_rollingMutex);
    m_datePatternString = datePatternString;
}

int LoggerRollingFileAppender::logFilesLimit() const
{
    ZuLoggerLocks::MutexLocker locker(&m_rollingMutex);
    return m_logFilesLimit;
}

void LoggerRollingFileAppender::setLogFilesLimit(int limit)
{
    ZuLoggerLocks::MutexLocker locker(&m_rollingMutex);
    m_logFilesLimit = limit;
}

void LoggerRollingFileAppender::computeFrequency()
{
    ZuLoggerLocks::MutexLocker locker(&m_rollingMutex);
    // The shortest step over which the pattern's text changes is the period.
    const QDateTime reference(QDate(1999, 1, 1), QTime(0, 0));
    const QString referenceText = reference.toString(m_datePatternString);
    const struct
    {
        QDateTime moment;
        DatePattern frequency;
    } steps[] = {
        { reference.addSecs(60), MinutelyRollover },
        { reference.addSecs(60 * 60), HourlyRollover },
        { reference.addSecs(12 * 60 * 60), HalfDailyRollover },
        { reference.addDays(1), DailyRollover },
        { reference.addDays(7), WeeklyRollover },
        { reference.addMonths(1), MonthlyRollover },
    };
    for (const auto &step : steps) {
        if (step.moment.toString(m_datePatternString) != referenceText) {
            m_frequency = step.frequency;
            return;
        }
    }
}

void LoggerRollingFileAppender::computeRollOverTime()
{
    const QDateTime now = currentDateTime();
    const QDate today = now.date();
    const QTime time = now.time();
    QDateTime start;
    switch (m_frequency) {
    case MinutelyRollover:
        start = QDateTime(today, QTime(time.hour(), time.minute()));
        m_rollOverTime = start.addSecs(60);
        break;
    case HourlyRollover:
        start = QDateTime(today, QTime(time.hour(), 0));
        m_rollOverTime = start.addSecs(60 * 60);
        break;
    case HalfDailyRollover:
        start = QDateTime(today, QTime(time.hour() < 12 ? 0 : 12, 0));
        m_rollOverTime = start.addSecs(12 * 60 * 60);
        break;
    case DailyRollover:
        start = QDateTime(today, QTime(0, 0));
        m_rollOverTime = start.addDays(1);
        break;
    case WeeklyRollover:
        // dayOfWeek() runs from Monday (1) to Sunday (7); the week starts on Sunday.
        start = QDateTime(today.addDays(-(today.dayOfWeek() % 7)), QTime(0, 0));
        m_rollOverTime = start.addDays(7);
        break;
    case MonthlyRollover:
        start = QDateTime(QDate(today.year(), today.month(), 1), QTime(0, 0));
        m_rollOverTime = start.addMonths(1);
        break;
    default:
        // No period: every record finds the period over, and the suffix never changes.
        m_rollOverTime = QDateTime::fromSecsSinceEpoch(0);
        break;
    }
    m_rollOverSuffix = start.toString(m_datePatternString);
}

void LoggerRollingFileAppender::rollOver()
{
    const QString endedSuffix = m_rollOverSuffix;
    computeRollOverTime();
    if (m_rollOverSuffix == endedSuffix)
        return;

    const QString logName = fileName();
    if (logName.isEmpty())
        return; // the appender writes nothing; the bare suffix would name some other file
    closeFile();
    const QString target = logName + endedSuffix;
    if (QFile::exists(target) && !QFile::remove(target))
        return;
    if (!QFile::rename(logName, target))
        return;
    // The file is closed, so reopenFile() only opens the fresh one; it is the file appender's
    // way of opening from outside its own append().
    reopenFile();
    removeOldFiles();
}

void LoggerRollingFileAppender::removeOldFiles()
{
    if (m_logFilesLimit <= 1)
        return;
    const QFileInfo logInfo(fileName());
    const QString bareName = logInfo.fileName();
    QDir dir = logInfo.absoluteDir();
    dir.setFilter(QDir::Files);
    dir.setNameFilters(QStringList(bareName + QLatin1Char('*')));
    const QString pattern = datePatternString();

    // Keyed by the date read back from the suffix, so that the oldest go first whatever the
    // order of the names; the current file's empty suffix never parses.
    QMap<QDateTime, QString> dated;
    for (const QFileInfo &entry : dir.entryInfoList()) {
        const QString name = entry.fileName();
        const int at = name.indexOf(bareName);
        if (at < 0)
            continue;
        const QDateTime date = QDateTime::fromString(name.mid(at + bareName.size()), pattern);
        if (date.isValid())
            dated.insert(date, entry.absoluteFilePath());
    }
    if (dated.size() < m_logFilesLimit)
        return;
    int surplus = dated.size() - m_logFilesLimit + 1;
    for (auto it = dated.cbegin(); surplus > 0; ++it, --surplus)
        QFile::remove(it.value());
}

void LoggerRollingFileAppender::append(const QDateTime &timeStamp, Logger::LogLevel logLevel,
                                       const char *file, int line, const char *function,
                                       const QString &category, const QString &message)
{
    // The clock decides, not the record's time stamp: records may be stamped long before
    // they arrive here.
    if (!m_rollOverTime.isNull() && currentDateTime() > m_rollOverTime)
        rollOver();
    LoggerFileAppender::append(timeStamp, logLevel, file, line, function, category, message);
}

QDateTime LoggerRollingFileAppender::currentDateTime() const
{
    return QDateTime::currentDateTime();
}
