#include "platform/DebugOutput.h"

#include <zucore/LoggerOutputDebugAppender.h>

LoggerOutputDebugAppender::LoggerOutputDebugAppender() = default;

void LoggerOutputDebugAppender::append(const QDateTime &timeStamp, Logger::LogLevel logLevel,
                                       const char *file, int line, const char *function,
                                       const QString &category, const QString &message)
{
    ZuPlatform::outputDebugString(
        formattedString(timeStamp, logLevel, file, line, function, category, message));
}
