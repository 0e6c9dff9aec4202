#pragma once

#include <zucore/LoggerFileAppender.h>
#include <zucore/zucore_export.h>

#include <QDateTime>
#include <QMutex>
#include <QString>

/**
 * @brief A file appender that starts a fresh file at the end of each period and keeps the old
 * ones under dated names.
 *
 * One date pattern gives both the period and the suffix of a rolled file. When the first record
 * after the end of a period arrives, the log file is renamed to its name followed by the suffix
 * of the period that ended (for the daily pattern "app.log.2024-03-05"), a fresh file is opened
 * under the old name and the record goes there. Nothing happens without a record: there is no
 * timer. Until a date pattern is set the appender behaves as a plain LoggerFileAppender.
 *
 * | DatePattern         | Suffix pattern            | Period starts                    |
 * |---------------------|---------------------------|----------------------------------|
 * | MinutelyRollover    | '.'yyyy-MM-dd-hh-mm       | at each minute                   |
 * | HourlyRollover      | '.'yyyy-MM-dd-hh          | at each hour                     |
 * | HalfDailyRollover   | '.'yyyy-MM-dd-a           | at 00:00 and 12:00               |
 * | DailyRollover       | '.'yyyy-MM-dd             | at 00:00                         |
 * | WeeklyRollover      | '.'yyyy-ww                | on Sunday at 00:00               |
 * | MonthlyRollover     | '.'yyyy-MM                | on the first of a month at 00:00 |
 *
 * "ww" is no field of Qt's date format and stands literally in the name, so the weekly suffix
 * changes with the year only: the weekly appender renames its file once a year, at the end of
 * the year's last week, and otherwise goes on in the same file. A roll-over whose suffix equals
 * the previous one renames nothing.
 *
 * With setLogFilesLimit() above 1, each roll-over removes the oldest dated files (by the date
 * read back from their suffix) so that the limit counts the current file too: a limit of 7
 * keeps the log file and 6 dated files. Files whose suffix does not parse under the current
 * pattern are never touched, so a change of pattern leaves the files of the former one alone.
 *
 * A roll-over that cannot remove an existing target or rename the log file fails silently: the
 * file stays under its name and takes the records of the next period too, and the next attempt
 * comes one period later under that period's suffix. Only a file that cannot be opened is
 * reported, on standard error, as by LoggerFileAppender.
 *
 * Set the date pattern and the limit before records flow; they cannot be changed safely while
 * another thread writes. Records themselves may come from any thread: append() runs under the
 * write mutex, so one thread at a time rolls.
 */
class ZUCORE_EXPORT LoggerRollingFileAppender : public LoggerFileAppender
{
public:
    /**
     * The periods, each with its fixed suffix pattern (see the class description). Based on
     * int, so that any int value is a DatePattern; one outside the list means no period.
     */
    enum DatePattern : int {
        MinutelyRollover = 0,
        HourlyRollover,
        HalfDailyRollover,
        DailyRollover,
        WeeklyRollover,
        MonthlyRollover
    };

    /// An appender for @p fileName without a date pattern: nothing rolls until one is set.
    explicit LoggerRollingFileAppender(const QString &fileName);

    /// The period; DailyRollover until a date pattern is set.
    DatePattern datePattern() const;
    /// The suffix pattern for QDateTime::toString(); null until a date pattern is set.
    QString datePatternString() const;

    /**
     * Sets the period and its suffix pattern, and computes the end of the current period from
     * now. A value outside the enumeration gets the daily suffix pattern but no period: the
     * file then never rolls.
     */
    void setDatePattern(DatePattern datePattern);
    /**
     * Sets any QDateTime::toString() pattern as the suffix and derives the period from it
     * (computeFrequency()), then computes the end of the current period. A pattern that does
     * not change within a month (a year alone, say) keeps the former period.
     */
    void setDatePattern(const QString &datePattern);
    /// Only stores the suffix pattern; the period and its end are not recomputed.
    void setDatePatternString(const QString &datePatternString);

    /// The number of files, the current one included, that a roll-over leaves; 0 at first.
    int logFilesLimit() const;
    /**
     * Sets the number of files that a roll-over leaves, the current one included. 0 and 1 keep
     * every dated file. Takes effect at the next roll-over; nothing is removed here.
     */
    void setLogFilesLimit(int limit);

    /**
     * Derives the period from the suffix pattern: the shortest of minute, hour, half day, day,
     * week and month over which the pattern's text of 1 January 1999 00:00 changes. If it
     * changes over none of them, the period stays as it was.
     */
    void computeFrequency();
    /**
     * Computes the end of the current period and the suffix of the current period from now.
     * Takes no lock: called with the settings' mutex held or under the write mutex.
     */
    void computeRollOverTime();
    /**
     * Ends the current period: renames the log file to its name followed by the suffix of the
     * period that ended, opens a fresh file and removes old files. Renames nothing if the new
     * period has the same suffix, or if the appender has no file name. An existing target is
     * replaced; if it cannot be removed, or the rename fails, the file keeps its name silently.
     * Called by append() under the write mutex; call it from elsewhere only while no record is
     * being written.
     */
    void rollOver();
    /**
     * Removes the oldest dated files beside the log file so that logFilesLimit() files remain
     * with the current one. Does nothing for a limit of 0 or 1. Removal failures are ignored.
     */
    void removeOldFiles();

    /// Rolls over first if the current period has ended, then writes the record.
    void append(const QDateTime &timeStamp, Logger::LogLevel logLevel, const char *file, int line,
                const char *function, const QString &category, const QString &message) override;

protected:
    /**
     * Testing hook: the local date and time that decides periods and roll-overs. Returns
     * QDateTime::currentDateTime(); a test overrides it to cross period boundaries without
     * waiting. It is called under the appender's locks, from any writing thread, and must
     * neither log nor block.
     */
    virtual QDateTime currentDateTime() const;

private:
    QString m_datePatternString;
    DatePattern m_frequency;
    QDateTime m_rollOverTime;
    QString m_rollOverSuffix;
    int m_logFilesLimit;
    mutable QMutex m_rollingMutex;
};
