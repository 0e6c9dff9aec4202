#pragma once

#include <zucore/LoggerAbstractAppender.h>
#include <zucore/zucore_export.h>

#include <QByteArray>
#include <QMutex>

/**
 * @brief An appender that turns each record into text by a format pattern.
 *
 * The pattern is walked again for every record (format() may give a different one each time).
 * A field reads "%{command}" or "%{command:width}"; a positive width aligns right, a negative
 * one left, and longer text is never cut. Commands: time (with an optional date format in a
 * second brace pair, "%{time}{yyyy-MM-dd}", default "HH:mm:ss.zzz"), type, Type, typeOne,
 * TypeOne, File, file, line, Function, function, message, category, pid, appname, threadid.
 * An unknown command comes out as "%" followed by its name.
 *
 * The default pattern is "%{time}{yyyy-MM-ddTHH:mm:ss.zzz} [%{type:-7}] <%{function}> %{message}",
 * without a newline at its end.
 *
 * Widths are honoured up to 65536 characters of padding; a larger width pads to that bound,
 * so that a stray pattern cannot ask for gigabytes of blanks.
 */
class ZUCORE_EXPORT LoggerAbstractStringAppender : public LoggerAbstractAppender
{
public:
    /// An appender with the default pattern.
    LoggerAbstractStringAppender();

    /// The pattern for the next record (a copy taken under a lock).
    virtual QString format() const;
    /// Replaces the pattern from the next record on.
    void setFormat(const QString &format);

    /**
     * The record as text by the pattern of format(). An empty pattern gives a null string.
     * Never fails: any pattern text gives some text.
     */
    QString formattedString(const QDateTime &timeStamp, Logger::LogLevel logLevel, const char *file,
                            int line, const char *function, const QString &category,
                            const QString &message) const;

    /**
     * Reduces a compiler's function signature to the qualified function name, without return
     * type, arguments and template arguments: "bool ZuProcess::exec(const QString&)" gives
     * "ZuProcess::exec", "void Foo::bar()::<lambda(int)>" gives "Foo::bar::lambda".
     * A null @p name gives a null array; text that cannot be parsed comes back partly cleaned.
     */
    static QByteArray qCleanupFuncinfo(const char *name);
    /// qCleanupFuncinfo() as a QString (up to the first zero byte); null for a null @p name.
    static QString stripFunctionName(const char *name);

private:
    QString m_format;
    mutable QMutex m_formatMutex;
};
