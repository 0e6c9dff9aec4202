#include "compat/ZuTextCodec.h"
#include "logger/LoggerLocks_p.h"

#include <zucore/LoggerFileAppender.h>

#include <cstdio>

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
    // Unbuffered: each record is flushed anyway, so QFile's buffer would only add a copy.
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
    ZuLoggerLocks::MutexLocker locker(&m_logFileMutex);
    if (!openFile())
        return;
    const QString text
        = formattedString(timeStamp, logLevel, file, line, function, category, message);
    // The stream's encoding decides the bytes; encoding the whole line here and handing it to
    // the file skips the stream's own buffer, a copy and a conversion loop per record.
    m_logFile.write(ZuCompat::encodeAsStream(m_logStream, text));
    m_logFile.flush();
}
