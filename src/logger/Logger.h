#pragma once

#include <zucore/zucore_export.h>

#include <QDateTime>
#include <QDebug>
#include <QElapsedTimer>
#include <QString>

#include <atomic>

class LoggerAbstractAppender;
struct LoggerPrivate;

/**
 * @brief The frame through which records travel from a log statement to the appenders.
 *
 * A record is stamped with the current date and time and handed, in the caller's thread, to
 * each appender registered for it; there is no queue and no worker thread. One process-wide
 * instance exists (globalInstance()), created on first use; it takes over Qt's message handler
 * at that moment. Local instances may be created with a default category: what they write
 * reaches the global instance too.
 *
 * A logger owns its registered appenders until removeAppender(). Nothing that runs inside an
 * appender may log through the same logger: the logger's mutex is not recursive.
 *
 * Troubles are reported on standard error, never through the logger; no operation here returns
 * an error. A record at Logger::Fatal ends the process with abort() after its appenders ran.
 */
class ZUCORE_EXPORT Logger
{
    Q_DISABLE_COPY(Logger)
public:
    /// Severity of a record; an appender takes records at or above its details level.
    enum LogLevel {
        Trace = 0, ///< "Trace"
        Debug = 1, ///< "Debug"
        Info = 2, ///< "Info"
        Warning = 3, ///< "Warn" going out, "warning" coming in
        Error = 4, ///< "Error"
        Fatal = 5 ///< "Fatal"; ends the process
    };

    /// How LoggerTimingHelper reports the time taken.
    enum TimingMode {
        TimingAuto = 0, ///< seconds from 10000 ms on, milliseconds below
        TimingMs = 1 ///< always milliseconds (any other value acts the same)
    };

    /// A logger without default category.
    Logger();
    /**
     * A logger whose records without a category fall under @p defaultCategory.
     * With @p writeToGlobalInstance such records also go to the global instance without a
     * category, besides going there under their category name.
     */
    Logger(const QString &defaultCategory, bool writeToGlobalInstance = false);
    /// Deletes every appender this logger owns, each once.
    ~Logger();

    /// The process-wide logger, created (and Qt's message handler installed) on the first call.
    static Logger *globalInstance();

    /// "Trace", "Debug", "Info", "Warn", "Error" or "Fatal"; a null string for any other value.
    static QString levelToString(LogLevel logLevel);
    /**
     * The level named by @p s after trimming and lower-casing ("trace", "debug", "info",
     * "warning", "error", "fatal"). Any other text, "warn" included, gives Logger::Debug.
     */
    static LogLevel levelFromString(const QString &s);

    /**
     * Adds @p appender to the main appenders and takes ownership. Registering the same pointer
     * twice prints "Trying to register appender that was already registered" on standard error
     * and changes nothing.
     */
    void registerAppender(LoggerAbstractAppender *appender);
    /**
     * Binds @p appender to @p category and takes ownership. An appender may be bound to one
     * category only: a second binding prints "Trying to register appender that was already
     * registered" on standard error and keeps the first.
     */
    void registerCategoryAppender(const QString &category, LoggerAbstractAppender *appender);
    /**
     * Removes every occurrence of @p appender, from the main list and from every category,
     * and gives ownership back to the caller. An unknown pointer changes nothing.
     */
    void removeAppender(LoggerAbstractAppender *appender);

    /**
     * Lets the global instance write @p category to its main appenders too (or not). On a
     * local logger the call is passed on to the global instance.
     */
    void logToGlobalInstance(const QString &category, bool logToGlobal = false);

    /// Sets the category used for records that name none; a null string means none.
    void setDefaultCategory(const QString &category);
    /// The default category; a null string if none was given. Takes no lock.
    QString defaultCategory() const;

    /**
     * Writes a record stamped with the current local date and time, as
     * QDateTime::currentDateTime() gives it (records of one thread within the same millisecond
     * share one value). @p category may be null.
     */
    void write(LogLevel logLevel, const char *file, int line, const char *function,
               const char *category, const QString &message);
    /// Writes a record with the given time stamp. @p category may be null.
    void write(const QDateTime &timeStamp, LogLevel logLevel, const char *file, int line,
               const char *function, const char *category, const QString &message);
    /**
     * The full form: routes the record to the category appenders, the main appenders and,
     * from a local logger, to the global instance. @p fromLocalInstance marks a record passed
     * on by a local logger; such a record gives no category warning and no fallback line.
     * A record that reaches no appender is printed on standard error as
     * "[Level  ] <function> message". Logger::Fatal calls abort() at the end.
     */
    void write(const QDateTime &timeStamp, LogLevel logLevel, const char *file, int line,
               const char *function, const char *category, const QString &message,
               bool fromLocalInstance);

    /// Writes "ASSERT: \"condition\"" at Logger::Fatal and so ends the process.
    void writeAssert(const char *file, int line, const char *function, const char *condition);

    /**
     * Whether a log statement at @p level can have any effect: false only when the global logger
     * exists, has main appenders, and no appender registered with it takes @p level. The LOG_*
     * macros ask this first and then neither build the statement nor evaluate what it streams.
     * Cheap (one atomic read) and conservative: true whenever in doubt, such as before the first
     * statement (which creates the global logger), while no main appender is registered (the
     * record goes to standard error) and for Logger::Fatal. A change of appenders or details
     * levels counts from the next statement on, in any thread.
     */
    static bool isEnabledFor(LogLevel level) noexcept
    {
        return int(level) >= (s_statementState.load(std::memory_order_acquire) & 0xff);
    }

private:
    friend struct LoggerStatementGate;
    // Lowest level that a LOG_* statement may need (low byte), whether it must be worked out
    // again, and a generation that tells a stale answer from a fresh one.
    static std::atomic<int> s_statementState;
    LoggerPrivate *d;
};

/// The global logger, the same as Logger::globalInstance(); what log statements call.
ZUCORE_EXPORT Logger *cuteLoggerInstance();

/**
 * @brief One log statement in flight.
 *
 * A temporary on the caller's stack, made by the LOG_* macros. The text pointers are kept,
 * not copied: they must outlive the object, which string literals do. The destructor hands the
 * finished message to Logger::write().
 */
class ZUCORE_EXPORT CuteMessageLogger
{
    Q_DISABLE_COPY(CuteMessageLogger)
public:
    /// Starts a statement with a null message. @p category may be null.
    CuteMessageLogger(Logger *l, Logger::LogLevel level, const char *file, int line,
                      const char *function, const char *category)
        : m_l(l)
        , m_level(level)
        , m_file(file)
        , m_line(line)
        , m_function(function)
        , m_category(category)
    { }
    /// Writes the record through Logger::write(), the short form.
    ~CuteMessageLogger();

    /// Sets the message from a printf-style format.
    void write(const char *msg, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);
    /// Sets the message.
    void write(const QString &msg);
    /// A QDebug that streams into the message (strings quoted, values spaced).
    QDebug write();

private:
    Logger *m_l;
    Logger::LogLevel m_level;
    const char *m_file;
    int m_line;
    const char *m_function;
    const char *m_category;
    QString m_message;
};

/**
 * @brief Measures a scope and logs how long it took when it ends.
 *
 * The record reads "Function <name> finished in 12 ms." or "\"block\" finished in 12 s.";
 * start() must be called before the object ends, since nothing else starts the timer.
 * The constructor takes the logger, the level and the statement's place (file, line, function
 * as the LOG_* macros pass them) and starts in Logger::TimingAuto mode with an empty block name.
 */
class ZUCORE_EXPORT LoggerTimingHelper
{
    Q_DISABLE_COPY(LoggerTimingHelper)
public:
    /// Prepares a measurement reported to @p l at @p logLevel. Call start() next.
    LoggerTimingHelper(Logger *l, Logger::LogLevel logLevel, const char *file, int line,
                       const char *function)
        : m_logger(l)
        , m_logLevel(logLevel)
        , m_timingMode(Logger::TimingAuto)
        , m_file(file)
        , m_line(line)
        , m_function(function)
    { }
    /// Logs the elapsed time; see the class description.
    ~LoggerTimingHelper();

    /// Names the timed block (empty: the function) and restarts the timer.
    void start(const QString &block = QString());
    /// Sets the reporting mode, names the block and restarts the timer.
    void start(Logger::TimingMode mode, const QString &block);
    /// Names the block from a printf-style format and restarts the timer.
    void start(const char *msg, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);

private:
    Logger *m_logger;
    QElapsedTimer m_timer; // a monotonic clock: no wrap at midnight, no jump with the wall clock
    Logger::LogLevel m_logLevel;
    Logger::TimingMode m_timingMode;
    const char *m_file;
    int m_line;
    const char *m_function;
    QString m_block;
};

/**
 * The log statements of the six levels: a temporary CuteMessageLogger on the global logger with
 * the statement's file, line and function and a null category. Use them as
 * LOG_INFO() << a << b; (QDebug streaming), LOG_INFO("format %d", n); or LOG_INFO(text);
 * A statement whose level no appender takes (Logger::isEnabledFor()) is skipped whole, like Qt's
 * category macros: what it streams is not evaluated. Each is one statement, safe in an if/else.
 */
#define ZU_LOG_STATEMENT(level)                                                                    \
    for (bool zuLogEnabled = Logger::isEnabledFor(level); zuLogEnabled; zuLogEnabled = false)      \
    CuteMessageLogger(cuteLoggerInstance(), level, __FILE__, __LINE__, Q_FUNC_INFO, nullptr).write
#define LOG_TRACE ZU_LOG_STATEMENT(Logger::Trace)
#define LOG_DEBUG ZU_LOG_STATEMENT(Logger::Debug)
#define LOG_INFO ZU_LOG_STATEMENT(Logger::Info)
#define LOG_WARNING ZU_LOG_STATEMENT(Logger::Warning)
#define LOG_ERROR ZU_LOG_STATEMENT(Logger::Error)
#define LOG_FATAL ZU_LOG_STATEMENT(Logger::Fatal)
