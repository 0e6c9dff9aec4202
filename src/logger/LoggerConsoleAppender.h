#pragma once

#include <zucore/LoggerAbstractStringAppender.h>
#include <zucore/zucore_export.h>

/**
 * @brief Writes records to standard error, in the local 8-bit encoding.
 *
 * The pattern starts as "[%{type:-7}] <%{function}> %{message}\n" (no time stamp). A non-empty
 * environment variable QT_MESSAGE_PATTERN, read anew for every record, replaces it (with a
 * newline added), unless ignoreEnvironmentPattern(true) was called. Nothing is flushed; the
 * newline comes from the pattern.
 */
class ZUCORE_EXPORT LoggerConsoleAppender : public LoggerAbstractStringAppender
{
public:
    /// A console appender with the console pattern.
    LoggerConsoleAppender();

    /// The pattern in force: QT_MESSAGE_PATTERN plus a newline when set and not ignored.
    QString format() const override;
    /// Ignores QT_MESSAGE_PATTERN from now on (or not). Takes no lock: set it before logging.
    void ignoreEnvironmentPattern(bool ignore);

    /// Writes the formatted record to standard error, up to its first zero character.
    void append(const QDateTime &timeStamp, Logger::LogLevel logLevel, const char *file, int line,
                const char *function, const QString &category, const QString &message) override;

private:
    bool m_ignoreEnvPattern;
};
