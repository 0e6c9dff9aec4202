#include <zucore/LoggerConsoleAppender.h>

#include <cstdio>

LoggerConsoleAppender::LoggerConsoleAppender()
    : m_ignoreEnvPattern(false)
{
    setFormat(QStringLiteral("[%{type:-7}] <%{function}> %{message}\n"));
}

QString LoggerConsoleAppender::format() const
{
    // Read for every record, so that a change of the variable applies at once.
    const QString envPattern = QString::fromLocal8Bit(qgetenv("QT_MESSAGE_PATTERN"));
    if (!m_ignoreEnvPattern && !envPattern.isEmpty())
        return envPattern + QLatin1Char('\n');
    return LoggerAbstractStringAppender::format();
}

void LoggerConsoleAppender::ignoreEnvironmentPattern(bool ignore)
{
    m_ignoreEnvPattern = ignore;
}

void LoggerConsoleAppender::append(const QDateTime &timeStamp, Logger::LogLevel logLevel,
                                   const char *file, int line, const char *function,
                                   const QString &category, const QString &message)
{
    const QByteArray text
        = formattedString(timeStamp, logLevel, file, line, function, category, message)
              .toLocal8Bit();
    std::fputs(text.constData(), stderr);
}
