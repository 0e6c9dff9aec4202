#pragma once

#include <QFile>

namespace ZuPlatform {

/**
 * Appends @p size bytes at @p data to the open, unbuffered @p file and returns true when all of
 * them were written.
 *
 * On POSIX systems the bytes go straight to the file descriptor: QIODevice::write would walk
 * three layers of Qt for each record and keep a position that an appending log file never reads.
 * Partial writes and interrupted calls are continued. Elsewhere QFile::write is used.
 */
bool appendToFile(QFile &file, const char *data, qint64 size);

} // namespace ZuPlatform
