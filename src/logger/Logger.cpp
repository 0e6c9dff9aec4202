#include "logger/LoggerLocks_p.h"
#include "logger/LoggerStatementGate_p.h"

#include <zucore/Logger.h>
#include <zucore/LoggerAbstractAppender.h>
#include <zucore/LoggerAbstractStringAppender.h>

#include <QCoreApplication>
#include <QList>
#include <QMap>
#include <QMultiMap>
#include <QMutex>
#include <QReadWriteLock>
#include <QSet>
#include <QStringList>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

struct LoggerPrivate
{
    QList<LoggerAbstractAppender *> appenders;
    QMutex loggerMutex;
    QMap<QString, bool> categories;
    QMultiMap<QString, LoggerAbstractAppender *> categoryAppenders;
    QStringList noAppendersCategories;
    QString defaultCategory;
    bool writeDefaultCategoryToGlobalInstance = false;
};

namespace {

// Constructed when the library is loaded, so that the first concurrent calls of
// globalInstance() already find a working lock.
QReadWriteLock globalInstanceLock;
Logger *globalInstancePtr = nullptr;
// The same pointer for the common case, read without the lock: the instance outlives every
// statement (other threads stop logging before the clean-up), and only its creation and
// clean-up, under the write lock, change it.
std::atomic<Logger *> globalInstanceLive { nullptr };
// Printed once per process, whichever logger finds itself without appenders.
std::atomic_bool noAppendersWarningPrinted { false };

void printToStderr(const QByteArray &line)
{
    std::fputs(line.constData(), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
}

// How deep this thread is inside an appender (or the clean-up of the global instance). A record
// raised there, by a QFile warning or an application's appender that logs, would wait for a
// logger mutex that this very thread holds: it goes straight to standard error instead.
thread_local int appenderDepth = 0;

// Not inlined: a caller keeps the address instead of asking for it again after every call.
Q_NEVER_INLINE int &threadAppenderDepth()
{
    return appenderDepth;
}

struct AppenderScope
{
    explicit AppenderScope(int &depth = threadAppenderDepth())
        : m_depth(depth)
    {
        ++m_depth;
    }
    ~AppenderScope() { --m_depth; }
    int &m_depth;
    Q_DISABLE_COPY(AppenderScope)
};

QString fallbackLine(Logger::LogLevel level, const char *function, const QString &message)
{
    return QStringLiteral("[%1] <%2> %3")
        .arg(Logger::levelToString(level), -7)
        .arg(LoggerAbstractStringAppender::stripFunctionName(function))
        .arg(message);
}

// A record raised from inside an appender on this thread: printed, never handed to appenders.
void writeReentrant(Logger::LogLevel level, const char *function, const QString &message)
{
    printToStderr(fallbackLine(level, function, message).toLocal8Bit());
    if (level == Logger::Fatal)
        std::abort();
}

void qtLoggerMessageHandler(QtMsgType type, const QMessageLogContext &context,
                            const QString &message)
{
    Logger::LogLevel level = Logger::Debug;
    switch (type) {
    case QtWarningMsg:
        level = Logger::Warning;
        break;
    case QtCriticalMsg:
        level = Logger::Error;
        break;
    case QtFatalMsg:
        level = Logger::Fatal;
        break;
    case QtInfoMsg:
        level = Logger::Info;
        break;
    default:
        level = Logger::Debug;
        break;
    }
    if (appenderDepth > 0) {
        writeReentrant(level, context.function, message);
        return;
    }
    const bool isDefaultCategory
        = QString::fromLatin1(context.category) == QLatin1String("default");
    Logger::globalInstance()->write(level, context.file, context.line, context.function,
                                    isDefaultCategory ? nullptr : context.category, message);
}

// QDateTime::currentDateTime() asks the C library for the local time zone, and glibc looks at
// /etc/localtime again on every call when TZ is unset: several microseconds a record. Records
// of the same thread in the same millisecond share one value, which is what the call would give
// them anyway; a new millisecond asks again, so a change of the time zone is still seen.
struct Cache
{
    qint64 msecs = -1;
    QDateTime timeStamp;
};

Q_NEVER_INLINE Cache &threadTimeStampCache()
{
    thread_local Cache cache;
    return cache;
}

const QDateTime &currentTimeStamp()
{
    Cache &cache = threadTimeStampCache();
    const qint64 msecs = QDateTime::currentMSecsSinceEpoch();
    if (msecs != cache.msecs) {
        cache.timeStamp = QDateTime::currentDateTime();
        cache.msecs = msecs;
    }
    return cache.timeStamp;
}

void cleanupLoggerGlobalInstance()
{
    ZuLoggerLocks::WriteLocker locker(&globalInstanceLock);
    // An appender's destructor that raises a Qt message must not ask for this lock again.
    AppenderScope scope;
    globalInstanceLive.store(nullptr, std::memory_order_release);
    delete globalInstancePtr;
    globalInstancePtr = nullptr;
    // The next statement makes a fresh global logger.
    LoggerStatementGate::invalidate();
}

} // namespace

// The low byte is the lowest level that a statement may need (0, Trace, lets everything pass);
// DirtyBit asks the global logger to work it out again; the bits above count the changes, so
// that an answer worked out while another change came in is not stored.
std::atomic<int> Logger::s_statementState { 0 };

namespace {
constexpr int LevelMask = 0xff;
constexpr int DirtyBit = 0x100;
constexpr int Generation = 0x200;
} // namespace

void LoggerStatementGate::invalidate() noexcept
{
    int state = Logger::s_statementState.load(std::memory_order_relaxed);
    while (!Logger::s_statementState.compare_exchange_weak(
        state, ((state + Generation) & ~LevelMask) | DirtyBit, std::memory_order_acq_rel)) { }
}

void LoggerStatementGate::update(const LoggerPrivate *global)
{
    const int state = Logger::s_statementState.load(std::memory_order_acquire);
    if (!(state & DirtyBit))
        return;
    // Without main appenders a record still goes to standard error: every statement counts.
    int lowest = Logger::Trace;
    if (!global->appenders.isEmpty()) {
        lowest = Logger::Fatal; // a fatal statement always ends the process
        for (const LoggerAbstractAppender *appender : qAsConst(global->appenders))
            lowest = qMin(lowest, int(appender->detailsLevel()));
        for (auto it = global->categoryAppenders.cbegin(); it != global->categoryAppenders.cend();
             ++it)
            lowest = qMin(lowest, int(it.value()->detailsLevel()));
        lowest = qMax(lowest, int(Logger::Trace));
    }
    int expected = state;
    Logger::s_statementState.compare_exchange_strong(
        expected, (state & ~(LevelMask | DirtyBit)) | lowest, std::memory_order_acq_rel);
}

Logger::Logger()
    : d(new LoggerPrivate)
{ }

Logger::Logger(const QString &defaultCategory, bool writeToGlobalInstance)
    : d(new LoggerPrivate)
{
    d->writeDefaultCategoryToGlobalInstance = writeToGlobalInstance;
    setDefaultCategory(defaultCategory);
}

Logger::~Logger()
{
    {
        ZuLoggerLocks::MutexLocker locker(&d->loggerMutex);
        AppenderScope scope;
        QSet<LoggerAbstractAppender *> owned;
        for (LoggerAbstractAppender *appender : qAsConst(d->appenders))
            owned.insert(appender);
        for (auto it = d->categoryAppenders.cbegin(); it != d->categoryAppenders.cend(); ++it)
            owned.insert(it.value());
        for (LoggerAbstractAppender *appender : qAsConst(owned))
            delete appender;
    }
    delete d;
}

Logger *Logger::globalInstance()
{
    if (Logger *live = globalInstanceLive.load(std::memory_order_acquire))
        return live;
    {
        ZuLoggerLocks::ReadLocker locker(&globalInstanceLock);
        if (globalInstancePtr)
            return globalInstancePtr;
    }
    ZuLoggerLocks::WriteLocker locker(&globalInstanceLock);
    // Another thread may have won the race between the two locks.
    if (!globalInstancePtr) {
        globalInstancePtr = new Logger;
        qInstallMessageHandler(qtLoggerMessageHandler);
        qAddPostRoutine(cleanupLoggerGlobalInstance);
        globalInstanceLive.store(globalInstancePtr, std::memory_order_release);
    }
    return globalInstancePtr;
}

QString Logger::levelToString(Logger::LogLevel logLevel)
{
    switch (logLevel) {
    case Trace:
        return QStringLiteral("Trace");
    case Debug:
        return QStringLiteral("Debug");
    case Info:
        return QStringLiteral("Info");
    case Warning:
        return QStringLiteral("Warn");
    case Error:
        return QStringLiteral("Error");
    case Fatal:
        return QStringLiteral("Fatal");
    }
    return QString();
}

Logger::LogLevel Logger::levelFromString(const QString &s)
{
    const QString str = s.trimmed().toLower();
    if (str == QLatin1String("trace"))
        return Trace;
    if (str == QLatin1String("debug"))
        return Debug;
    if (str == QLatin1String("info"))
        return Info;
    if (str == QLatin1String("warning"))
        return Warning;
    if (str == QLatin1String("error"))
        return Error;
    if (str == QLatin1String("fatal"))
        return Fatal;
    return Debug;
}

void Logger::registerAppender(LoggerAbstractAppender *appender)
{
    ZuLoggerLocks::MutexLocker locker(&d->loggerMutex);
    LoggerStatementGate::invalidate();
    if (!d->appenders.contains(appender))
        d->appenders.append(appender);
    else
        printToStderr("Trying to register appender that was already registered");
}

void Logger::registerCategoryAppender(const QString &category, LoggerAbstractAppender *appender)
{
    ZuLoggerLocks::MutexLocker locker(&d->loggerMutex);
    LoggerStatementGate::invalidate();
    if (!d->categoryAppenders.values().contains(appender))
        d->categoryAppenders.insert(category, appender);
    else
        printToStderr("Trying to register appender that was already registered");
}

void Logger::removeAppender(LoggerAbstractAppender *appender)
{
    ZuLoggerLocks::MutexLocker locker(&d->loggerMutex);
    LoggerStatementGate::invalidate();
    d->appenders.removeAll(appender);
    for (auto it = d->categoryAppenders.begin(); it != d->categoryAppenders.end();) {
        if (it.value() == appender)
            it = d->categoryAppenders.erase(it);
        else
            ++it;
    }
}

void Logger::logToGlobalInstance(const QString &category, bool logToGlobal)
{
    Logger *global = globalInstance();
    if (this != global) {
        global->logToGlobalInstance(category, logToGlobal);
        return;
    }
    ZuLoggerLocks::MutexLocker locker(&d->loggerMutex);
    d->categories.insert(category, logToGlobal);
}

void Logger::setDefaultCategory(const QString &category)
{
    ZuLoggerLocks::MutexLocker locker(&d->loggerMutex);
    LoggerStatementGate::invalidate();
    d->defaultCategory = category;
}

QString Logger::defaultCategory() const
{
    return d->defaultCategory;
}

void Logger::write(Logger::LogLevel logLevel, const char *file, int line, const char *function,
                   const char *category, const QString &message)
{
    // A record raised inside an appender goes to standard error before it reads the clock: the
    // time stamp is this thread's kept one, which the record being written still refers to.
    if (threadAppenderDepth() > 0) {
        writeReentrant(logLevel, function, message);
        return;
    }
    write(currentTimeStamp(), logLevel, file, line, function, category, message, false);
}

void Logger::write(const QDateTime &timeStamp, Logger::LogLevel logLevel, const char *file,
                   int line, const char *function, const char *category, const QString &message)
{
    write(timeStamp, logLevel, file, line, function, category, message, false);
}

void Logger::write(const QDateTime &timeStamp, Logger::LogLevel logLevel, const char *file,
                   int line, const char *function, const char *category, const QString &message,
                   bool fromLocalInstance)
{
    int &depth = threadAppenderDepth();
    if (depth > 0) {
        // A local logger passes its records on outside of any appender, so this is a record
        // raised by an appender of this thread: its logger's mutex is taken.
        writeReentrant(logLevel, function, message);
        return;
    }
    ZuLoggerLocks::MutexLocker locker(&d->loggerMutex);

    QString logCategory = category ? QString::fromLatin1(category) : QString();
    if (logCategory.isNull() && !d->defaultCategory.isNull())
        logCategory = d->defaultCategory;

    Logger *global = globalInstance();
    const bool isGlobalInstance = this == global;
    const bool linkedToGlobal = isGlobalInstance && d->categories.value(logCategory, false);
    bool wasWritten = false;

    if (!logCategory.isNull()) {
        const QList<LoggerAbstractAppender *> appenders = d->categoryAppenders.values(logCategory);
        if (appenders.isEmpty()) {
            if (logCategory != d->defaultCategory && !linkedToGlobal && !fromLocalInstance
                && !d->noAppendersCategories.contains(logCategory)) {
                std::fputs("No appenders associated with category ", stderr);
                printToStderr(logCategory.toLocal8Bit());
                d->noAppendersCategories.append(logCategory);
            }
        } else {
            AppenderScope scope(depth);
            for (LoggerAbstractAppender *appender : appenders)
                appender->write(timeStamp, logLevel, file, line, function, logCategory, message);
            wasWritten = true;
        }
    }

    if (logCategory.isNull() || logCategory == d->defaultCategory || linkedToGlobal) {
        if (d->appenders.isEmpty()) {
            if (!noAppendersWarningPrinted.exchange(true))
                printToStderr("No appenders registered with logger");
        } else {
            AppenderScope scope(depth);
            for (LoggerAbstractAppender *appender : qAsConst(d->appenders))
                appender->write(timeStamp, logLevel, file, line, function, logCategory, message);
            wasWritten = true;
        }
    }

    if (!isGlobalInstance) {
        if (!logCategory.isNull()) {
            global->write(timeStamp, logLevel, file, line, function,
                          logCategory.toLatin1().constData(), message, true);
            wasWritten = true;
        }
        if (d->writeDefaultCategoryToGlobalInstance && logCategory == d->defaultCategory) {
            global->write(timeStamp, logLevel, file, line, function, nullptr, message, true);
            wasWritten = true;
        }
    }

    if (!wasWritten && !fromLocalInstance) {
        printToStderr(fallbackLine(logLevel, function, message).toLocal8Bit());
    }

    if (isGlobalInstance)
        LoggerStatementGate::update(d);

    if (logLevel == Logger::Fatal)
        std::abort();
}

void Logger::writeAssert(const char *file, int line, const char *function, const char *condition)
{
    write(Logger::Fatal, file, line, function, nullptr,
          QStringLiteral("ASSERT: \"%1\"").arg(QString::fromLatin1(condition)));
}

Logger *cuteLoggerInstance()
{
    return Logger::globalInstance();
}

CuteMessageLogger::~CuteMessageLogger()
{
    m_l->write(m_level, m_file, m_line, m_function, m_category, m_message);
}

void CuteMessageLogger::write(const char *msg, ...)
{
    va_list va;
    va_start(va, msg);
    m_message = QString::vasprintf(msg, va);
    va_end(va);
}

void CuteMessageLogger::write(const QString &msg)
{
    m_message = msg;
}

QDebug CuteMessageLogger::write()
{
    return QDebug(&m_message);
}

LoggerTimingHelper::~LoggerTimingHelper()
{
    QString message;
    if (m_block.isEmpty())
        message = QStringLiteral("Function %1 finished in ")
                      .arg(LoggerAbstractStringAppender::stripFunctionName(m_function));
    else
        message = QStringLiteral("\"%1\" finished in ").arg(m_block);

    const int elapsed = int(m_timer.elapsed());
    if (elapsed >= 10000 && m_timingMode == Logger::TimingAuto)
        message.append(QStringLiteral("%1 s.").arg(elapsed / 1000));
    else
        message.append(QStringLiteral("%1 ms.").arg(elapsed));

    m_logger->write(m_logLevel, m_file, m_line, m_function, nullptr, message);
}

void LoggerTimingHelper::start(const QString &block)
{
    m_block = block;
    m_timer.start();
}

void LoggerTimingHelper::start(Logger::TimingMode mode, const QString &block)
{
    m_timingMode = mode;
    m_block = block;
    m_timer.start();
}

void LoggerTimingHelper::start(const char *msg, ...)
{
    va_list va;
    va_start(va, msg);
    m_block = QString::vasprintf(msg, va);
    va_end(va);
    m_timer.start();
}
