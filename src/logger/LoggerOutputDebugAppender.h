#pragma once

#include <zucore/LoggerAbstractStringAppender.h>
#include <zucore/zucore_export.h>

/**
 * @brief Passes records to the debugger.
 *
 * On Windows through OutputDebugStringW. Elsewhere the text goes to standard error while a
 * debugger is attached to the process (on Linux: a non-zero TracerPid), and nowhere otherwise.
 * No newline is added; the default pattern has none.
 */
class ZUCORE_EXPORT LoggerOutputDebugAppender : public LoggerAbstractStringAppender
{
public:
    /// An appender with the default pattern.
    LoggerOutputDebugAppender();

    /// Hands the formatted record to the debugger; does nothing without one (not on Windows).
    void append(const QDateTime &timeStamp, Logger::LogLevel logLevel, const char *file, int line,
                const char *function, const QString &category, const QString &message) override;
};
