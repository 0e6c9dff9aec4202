#pragma once

// Not API: the pattern walk behind LoggerAbstractStringAppender::formattedString(), writing
// into a caller's buffer so that an appender can reuse one buffer for all its records.

#include <zucore/Logger.h>

#include <QString>

namespace ZuLoggerFormat {

// Writes the record formatted by @p pattern to the start of @p buffer and returns its length.
// The buffer's whole size is room: it grows when a record needs more and never shrinks, so a
// reused buffer costs no allocation per record. Characters behind the length are left over.
int formatRecord(QString &buffer, const QString &pattern, const QDateTime &timeStamp,
                 Logger::LogLevel logLevel, const char *file, int line, const char *function,
                 const QString &category, const QString &message);

} // namespace ZuLoggerFormat
