#include "compat/ZuTextCodec.h"
#include "logger/LoggerFormat_p.h"
#include "logger/LoggerLocks_p.h"
#include "platform/FileWrite.h"

#include <zucore/LoggerFileAppender.h>

#include <cstdio>

namespace {

// Each thread formats into buffers of its own that outlive the record, so that a record costs no
// allocation. Buffers grown by a huge record are given back afterwards.
struct Buffers
{
    QString text;
    QByteArray bytes;
};

// Not inlined: the caller keeps the address, instead of asking for it again after every call.
Q_NEVER_INLINE Buffers &threadBuffers()
{
    thread_local Buffers buffers;
    return buffers;
}

} // namespace

LoggerFileAppender::LoggerFileAppender(const QString &fileName)
{
    setFileName(fileName);
}

LoggerFileAppender::~LoggerFileAppender()
{
    closeFile();
}

QString LoggerFileAppender::fileName() const
{
    ZuLoggerLocks::MutexLocker locker(&m_logFileMutex);
    return m_logFile.fileName();
}

void LoggerFileAppender::setFileName(const QString &fileName)
{
    if (fileName.isEmpty()) {
        std::fputs(
            "<FileAppender::FileAppender> File name is empty. The appender will do nothing\n",
            stderr);
        std::fflush(stderr);
    }
    ZuLoggerLocks::MutexLocker locker(&m_logFileMutex);
    if (m_logFile.isOpen())
        m_logFile.close();
    m_logFile.setFileName(fileName);
}

bool LoggerFileAppender::openFile()
{
    if (m_logFile.fileName().isEmpty())
        return false;
    if (m_logFile.isOpen())
        return true;
    // Unbuffered: each record goes to the system at once, and no buffer adds a copy.
    if (m_logFile.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text
                       | QIODevice::Unbuffered)) {
        m_logStream.setDevice(&m_logFile);
        return true;
    }
    std::fputs("<FileAppender::append> Cannot open the log file ", stderr);
    std::fputs(m_logFile.fileName().toLocal8Bit().constData(), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
    return false;
}

void LoggerFileAppender::closeFile()
{
    ZuLoggerLocks::MutexLocker locker(&m_logFileMutex);
    m_logFile.close();
}

bool LoggerFileAppender::reopenFile()
{
    ZuLoggerLocks::MutexLocker locker(&m_logFileMutex);
    m_logFile.close();
    return openFile();
}

void LoggerFileAppender::append(const QDateTime &timeStamp, Logger::LogLevel logLevel,
                                const char *file, int line, const char *function,
                                const QString &category, const QString &message)
{
    Buffers &buffers = threadBuffers();
    constexpr int KeptCapacity = 64 * 1024;

    ZuLoggerLocks::MutexLocker locker(&m_logFileMutex);
    if (!m_logFile.isOpen() && !openFile())
        return;
    const int length = ZuLoggerFormat::formatRecord(buffers.text, format(), timeStamp, logLevel,
                                                    file, line, function, category, message);
    // The stream's encoding decides the bytes; encoding the line here and handing it to the
    // file skips the stream's own buffer, a copy and a conversion loop per record.
    ZuCompat::encodeAsStream(m_logStream, buffers.text.constData(), length, buffers.bytes);
    // The file is unbuffered: the record goes to the system at once, and there is nothing left
    // for a flush to do.
    ZuPlatform::appendToFile(m_logFile, buffers.bytes.constData(), buffers.bytes.size());
    if (buffers.text.size() > KeptCapacity || buffers.bytes.capacity() > KeptCapacity)
        buffers = Buffers();
}
