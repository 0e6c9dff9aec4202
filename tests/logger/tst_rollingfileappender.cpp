#include "support/StderrCapture.h"
#include "support/TestFiles.h"
#include "support/ZuTest.h"

#include <zucore/LoggerRollingFileAppender.h>

using R = LoggerRollingFileAppender;

namespace {

// A rolling appender whose clock stands at the moment of the record being written.
struct ClockedAppender : R
{
    using R::R;
    QDateTime currentDateTime() const override { return now; }
    QDateTime now;
};

// The files beside the log file as "suffix=line line", folders as "suffix/", sorted.
QStringList folder(const QString &logName)
{
    QStringList entries;
    for (const QString &name :
         QDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        entries << name.mid(logName.size())
                + (QFileInfo(name).isDir() ? "/" : '=' + zutest::contentOf(name).simplified());
    entries.sort();
    return entries;
}

// clang-format off
// Records r0, r1, ... are written at the given moments; "after" lists the files by their sorted
// suffixes behind the log file's name. "am" and "pm" are the C locale's marks. A pattern string
// sets the period by its first field that changes; a text that never changes keeps the period.
const struct { const char *name; int pattern; const char *patternString; int limit; const char *before, *moments, *after; int frequency; } rows[] = {
    { "no pattern", -1, nullptr, 0, "", "2024-03-05T10:00|2024-04-05T10:00", "=r0 r1", 3 },
    { "minutely: the end of a period belongs to it", R::MinutelyRollover, nullptr, 0, "", "2024-03-05T10:07:31.500|2024-03-05T10:08|2024-03-05T10:08:00.001", ".2024-03-05-10-07=r0 r1|=r2", 0 },
    { "hourly", R::HourlyRollover, nullptr, 0, "", "2024-03-05T10:07:31.500|2024-03-05T11:00|2024-03-05T11:00:00.001", ".2024-03-05-10=r0 r1|=r2", 1 },
    { "half day, morning", R::HalfDailyRollover, nullptr, 0, "", "2024-03-05T11:59:59.999|2024-03-05T12:00|2024-03-05T12:00:00.001", ".2024-03-05-am=r0 r1|=r2", 2 },
    { "half day, noon", R::HalfDailyRollover, nullptr, 0, "", "2024-03-05T12:00|2024-03-06T00:00|2024-03-06T00:00:00.001", ".2024-03-05-pm=r0 r1|=r2", 2 },
    { "daily, quiet days", R::DailyRollover, nullptr, 0, "", "2024-03-05T10:00|2024-03-06T00:00|2024-03-09T08:00|2024-03-09T09:00|2024-03-10T00:30", ".2024-03-05=r0 r1|.2024-03-09=r2 r3|=r4", 3 },
    { "weekly from a Sunday: \"ww\" stands literally, the name changes with the year", R::WeeklyRollover, nullptr, 0, "", "2024-12-01T10:00|2024-12-08T10:00|2024-12-29T10:00|2025-01-05T00:00|2025-01-05T00:00:00.001", ".2024-ww=r0 r1 r2 r3|=r4", 4 },
    { "weekly from a Monday", R::WeeklyRollover, nullptr, 0, "", "2024-12-30T08:00|2025-01-05T00:00:00.001", ".2024-ww=r0|=r1", 4 },
    { "monthly", R::MonthlyRollover, nullptr, 0, "", "2024-12-31T23:59:59|2025-01-01T00:00|2025-01-01T00:00:00.001", ".2024-12=r0 r1|=r2", 5 },
    { "outside the enumeration", 42, nullptr, 0, "", "2024-03-05T10:00|2024-04-05T10:00", "=r0 r1", 42 },
    { "year only: hourly period kept", R::HourlyRollover, "'.'yyyy", 0, "", "2024-12-31T22:30|2024-12-31T23:30|2025-01-01T00:30", ".2024=r0 r1|=r2", 1 },
    { "restart: old lines roll with this period", R::DailyRollover, nullptr, 0, "=old", "2024-03-02T10:00|2024-03-03T10:00", ".2024-03-02=old r0|=r1", 3 },
    { "target replaced", R::DailyRollover, nullptr, 0, ".2024-03-02=stale", "2024-03-02T10:00|2024-03-03T10:00", ".2024-03-02=r0|=r1", 3 },
    { "target not removable", R::DailyRollover, nullptr, 0, ".2024-03-02/", "2024-03-02T10:00|2024-03-03T10:00|2024-03-04T10:00", ".2024-03-02/|.2024-03-03=r0 r1|=r2", 3 },
    { "rename fails: the target's folder does not exist", -1, "'.'dd/MM/yyyy", 0, "", "2024-03-02T10:00|2024-03-03T10:00|2024-03-04T10:00", "=r0 r1 r2", 3 },
    { "limit 3, four dated (day first: the order of names is not that of dates)", -1, "'.'dd-MM-yyyy", 3, ".01-03-2024=a|.15-02-2024=b|.28-02-2024=c", "2024-03-02T10:00|2024-03-03T10:00", ".01-03-2024=a|.02-03-2024=r0|=r1", 3 },
    { "limit 3, three dated", -1, "'.'dd-MM-yyyy", 3, ".15-02-2024=b|.28-02-2024=c", "2024-03-02T10:00|2024-03-03T10:00", ".02-03-2024=r0|.28-02-2024=c|=r1", 3 },
    { "unparsable suffixes", -1, "'.'dd-MM-yyyy", 3, ".31-02-2024=x|.bak=y|.28-02-2024=c", "2024-03-02T10:00|2024-03-03T10:00", ".02-03-2024=r0|.28-02-2024=c|.31-02-2024=x|.bak=y|=r1", 3 },
    { "limit 1", -1, "'.'dd-MM-yyyy", 1, ".01-03-2024=a|.15-02-2024=b", "2024-03-02T10:00|2024-03-03T10:00", ".01-03-2024=a|.02-03-2024=r0|.15-02-2024=b|=r1", 3 },
    { "no file name: nothing written, a file named like the bare suffix stays", R::DailyRollover, nullptr, 0, ".2024-03-02=other", "2024-03-02T10:00|2024-03-03T10:00", ".2024-03-02=other", 3 },
    { "string: minute", -1, "'.'yyyy-MM-dd-hh-mm", 0, "", "2024-03-05T10:07|2024-03-05T10:08:00.001", ".2024-03-05-10-07=r0|=r1", 0 },
    { "string: hour alone", -1, "hh", 0, "", "2024-03-05T10:07|2024-03-05T11:00:00.001", "10=r0|=r1", 1 },
    { "string: am/pm", -1, "'.'yyyy-MM-dd-a", 0, "", "2024-03-05T10:07", "=r0", 2 },
    { "string: day name", -1, "ddd", 0, "", "2024-03-05T10:07|2024-03-06T00:00:00.001", "=r1|Tue=r0", 3 },
    { "string: month", -1, "'.'yyyy-MM", 0, "", "2024-03-05T10:07", "=r0", 5 },
};
// clang-format on

} // namespace

class tst_RollingFileAppender : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void rolling_data() { zutest::addRows(rows); }

    void rolling()
    {
        QFETCH(int, row);
        const auto &r = rows[row];
        QTemporaryDir dir;
        QVERIFY(zutest::enterTemporaryDir(dir));
        const QString logName = QString(r.name).startsWith("no file name") ? "" : "app.log";
        for (const QString &entry : QString(r.before).split('|', Qt::SkipEmptyParts)) {
            QFile file(logName + entry.section('=', 0, 0));
            QVERIFY(entry.endsWith('/') ? QDir().mkdir(file.fileName())
                                        : file.open(QIODevice::WriteOnly)
                            && file.write(entry.section('=', 1).toUtf8() + '\n') > 0);
        }
        const QStringList moments = QString(r.moments).split('|');
        zutest::StderrCapture err;
        {
            ClockedAppender appender(logName);
            appender.setFormat("%{message}\n");
            appender.now = QDateTime::fromString(moments[0], Qt::ISODate);
            if (r.pattern >= 0)
                appender.setDatePattern(R::DatePattern(r.pattern));
            if (r.patternString)
                appender.setDatePattern(QString(r.patternString));
            appender.setLogFilesLimit(r.limit);
            QCOMPARE(appender.datePatternString().isNull(), r.pattern < 0 && !r.patternString);
            QCOMPARE(int(appender.datePattern()), r.frequency);
            for (int i = 0; i < moments.size(); ++i) {
                appender.now = QDateTime::fromString(moments[i], Qt::ISODate);
                appender.write(appender.now, Logger::Info, "f.cpp", 1, "void f()", QString(),
                               QStringLiteral("r%1").arg(i));
            }
            appender.setDatePatternString("'.'yyyy-MM"); // stores, derives nothing
            QCOMPARE(int(appender.datePattern()), r.frequency);
        }
        QCOMPARE(err.take().isEmpty(), !logName.isEmpty()); // only a missing name is told
        QCOMPARE(folder(logName), QString(r.after).split('|'));
    }
};

ZU_TEST_MAIN(tst_RollingFileAppender)
#include "tst_rollingfileappender.moc"
