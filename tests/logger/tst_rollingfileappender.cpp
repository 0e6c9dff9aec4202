#include "support/StderrCapture.h"
#include "support/ZuTest.h"

#include <zucore/LoggerRollingFileAppender.h>

#include <iterator>

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
    for (const QFileInfo &entry :
         QDir().entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
        QFile file(entry.fileName());
        const QString suffix = entry.fileName().mid(logName.size());
        entries << (entry.isDir() || !file.open(QIODevice::ReadOnly)
                        ? suffix + '/'
                        : suffix + '=' + QString::fromUtf8(file.readAll()).simplified());
    }
    entries.sort();
    return entries;
}

// clang-format off
// Records r0, r1, ... are written at the given moments; names are suffixes of the log file's.
const struct { const char *name; int pattern; const char *patternString; int limit;
               const char *before, *moments, *after; } rows[] = {
    { "no pattern", -1, nullptr, 0, "", "2024-03-05T10:00|2024-04-05T10:00", "=r0 r1" },
    // The end of a period still belongs to it; the first record after it lands in the new file.
    { "minutely", R::MinutelyRollover, nullptr, 0, "", "2024-03-05T10:07:31.500|2024-03-05T10:08|2024-03-05T10:08:00.001", "=r2|.2024-03-05-10-07=r0 r1" },
    { "hourly", R::HourlyRollover, nullptr, 0, "", "2024-03-05T10:07:31.500|2024-03-05T11:00|2024-03-05T11:00:00.001", "=r2|.2024-03-05-10=r0 r1" },
    // "am" and "pm" are the C locale's marks, as Qt's "a" writes them.
    { "half day, morning", R::HalfDailyRollover, nullptr, 0, "", "2024-03-05T11:59:59.999|2024-03-05T12:00|2024-03-05T12:00:00.001", "=r2|.2024-03-05-am=r0 r1" },
    { "half day, noon", R::HalfDailyRollover, nullptr, 0, "", "2024-03-05T12:00|2024-03-06T00:00|2024-03-06T00:00:00.001", "=r2|.2024-03-05-pm=r0 r1" },
    { "daily, quiet days", R::DailyRollover, nullptr, 0, "", "2024-03-05T10:00|2024-03-06T00:00|2024-03-09T08:00|2024-03-09T09:00|2024-03-10T00:30", "=r4|.2024-03-05=r0 r1|.2024-03-09=r2 r3" },
    // "ww" stands literally: the name changes with the year only.
    { "weekly from a Sunday", R::WeeklyRollover, nullptr, 0, "", "2024-12-01T10:00|2024-12-08T10:00|2024-12-29T10:00|2025-01-05T00:00|2025-01-05T00:00:00.001", "=r4|.2024-ww=r0 r1 r2 r3" },
    { "weekly from a Monday", R::WeeklyRollover, nullptr, 0, "", "2024-12-30T08:00|2025-01-05T00:00:00.001", "=r1|.2024-ww=r0" },
    { "weekly, week begun last year", R::WeeklyRollover, nullptr, 0, "", "2025-01-04T23:00|2025-01-05T00:00|2025-01-05T00:00:00.001", "=r2|.2024-ww=r0 r1" },
    { "monthly", R::MonthlyRollover, nullptr, 0, "", "2024-12-31T23:59:59|2025-01-01T00:00|2025-01-01T00:00:00.001", "=r2|.2024-12=r0 r1" },
    { "monthly, leap day", R::MonthlyRollover, nullptr, 0, "", "2024-02-29T12:00|2024-03-01T00:00:00.001", "=r1|.2024-02=r0" },
    { "outside the enumeration", 42, nullptr, 0, "", "2024-03-05T10:00|2024-04-05T10:00", "=r0 r1" },
    { "year only: hourly period kept", R::HourlyRollover, "'.'yyyy", 0, "", "2024-12-31T22:30|2024-12-31T23:30|2025-01-01T00:30", "=r2|.2024=r0 r1" },
    { "restart: old lines roll with this period", R::DailyRollover, nullptr, 0, "=old", "2024-03-02T10:00|2024-03-03T10:00", "=r1|.2024-03-02=old r0" },
    { "target replaced", R::DailyRollover, nullptr, 0, ".2024-03-02=stale", "2024-03-02T10:00|2024-03-03T10:00", "=r1|.2024-03-02=r0" },
    { "target not removable", R::DailyRollover, nullptr, 0, ".2024-03-02/", "2024-03-02T10:00|2024-03-03T10:00|2024-03-04T10:00", "=r2|.2024-03-02/|.2024-03-03=r0 r1" },
    // The target's folder does not exist.
    { "rename fails", -1, "'.'dd/MM/yyyy", 0, "", "2024-03-02T10:00|2024-03-03T10:00|2024-03-04T10:00", "=r0 r1 r2" },
    // Day first, so that the order of names is not the order of dates.
    { "limit 3, four dated", -1, "'.'dd-MM-yyyy", 3, ".01-03-2024=a|.15-02-2024=b|.28-02-2024=c", "2024-03-02T10:00|2024-03-03T10:00", "=r1|.01-03-2024=a|.02-03-2024=r0" },
    { "limit 3, three dated", -1, "'.'dd-MM-yyyy", 3, ".15-02-2024=b|.28-02-2024=c", "2024-03-02T10:00|2024-03-03T10:00", "=r1|.02-03-2024=r0|.28-02-2024=c" },
    { "unparsable suffixes", -1, "'.'dd-MM-yyyy", 3, ".31-02-2024=x|.bak=y|.28-02-2024=c", "2024-03-02T10:00|2024-03-03T10:00", "=r1|.02-03-2024=r0|.28-02-2024=c|.31-02-2024=x|.bak=y" },
    { "limit 1", -1, "'.'dd-MM-yyyy", 1, ".01-03-2024=a|.15-02-2024=b", "2024-03-02T10:00|2024-03-03T10:00", "=r1|.01-03-2024=a|.02-03-2024=r0|.15-02-2024=b" },
    { "limit 0", -1, "'.'dd-MM-yyyy", 0, ".01-03-2024=a|.15-02-2024=b", "2024-03-02T10:00|2024-03-03T10:00", "=r1|.01-03-2024=a|.02-03-2024=r0|.15-02-2024=b" },
};

// The appender starts minutely, so that the last rows show the period kept.
const struct { const char *name, *pattern; R::DatePattern frequency; } frequencyRows[] = {
    { "minute", "'.'yyyy-MM-dd-hh-mm", R::MinutelyRollover }, { "hour alone", "hh", R::HourlyRollover },
    { "am/pm", "'.'yyyy-MM-dd-a", R::HalfDailyRollover }, { "day name", "ddd", R::DailyRollover },
    { "month", "'.'yyyy-MM", R::MonthlyRollover }, { "literal ww", "'.'yyyy-ww", R::MinutelyRollover },
    { "year only", "'.'yyyy", R::MinutelyRollover },
};
// clang-format on

} // namespace

class tst_RollingFileAppender : public QObject
{
    Q_OBJECT

private slots:
    void rolling_data();
    void rolling();
    void frequency_data();
    void frequency();
    void emptyNameTouchesNothing();
};

void tst_RollingFileAppender::rolling_data()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < int(std::size(rows)); ++row)
        QTest::newRow(rows[row].name) << row;
}

void tst_RollingFileAppender::rolling()
{
    QFETCH(int, row);
    const auto &r = rows[row];
    QTemporaryDir dir;
    QVERIFY(zutest::enterTemporaryDir(dir));
    const QString logName = QStringLiteral("app.log");
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
        appender.setFormat(QStringLiteral("%{message}\n"));
        appender.now = QDateTime::fromString(moments[0], Qt::ISODate);
        if (r.pattern >= 0)
            appender.setDatePattern(R::DatePattern(r.pattern));
        if (r.patternString)
            appender.setDatePattern(QString(r.patternString));
        appender.setLogFilesLimit(r.limit);
        QCOMPARE(appender.datePatternString().isNull(), r.pattern < 0 && !r.patternString);
        for (int i = 0; i < moments.size(); ++i) {
            appender.now = QDateTime::fromString(moments[i], Qt::ISODate);
            appender.write(appender.now, Logger::Info, "f.cpp", 1, "void f()", QString(),
                           QStringLiteral("r%1").arg(i));
        }
    }
    QCOMPARE(err.take(), QByteArray()); // failures are silent
    QStringList after = QString(r.after).split('|');
    after.sort();
    QCOMPARE(folder(logName), after);
}

void tst_RollingFileAppender::frequency_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<int>("frequency");
    for (const auto &row : frequencyRows)
        QTest::newRow(row.name) << QString(row.pattern) << int(row.frequency);
}

void tst_RollingFileAppender::frequency()
{
    QFETCH(QString, pattern);
    QFETCH(int, frequency);
    ClockedAppender appender(QStringLiteral("app.log"));
    QCOMPARE(appender.datePattern(), R::DailyRollover);
    appender.setDatePattern(R::MinutelyRollover);
    appender.setDatePatternString(QStringLiteral("'.'yyyy-MM")); // stores, derives nothing
    QCOMPARE(appender.datePattern(), R::MinutelyRollover);
    appender.setDatePattern(pattern);
    QCOMPARE(appender.datePatternString(), pattern);
    QCOMPARE(int(appender.datePattern()), frequency);
}

// Without a name nothing is written, and a file named like the bare suffix is not replaced.
void tst_RollingFileAppender::emptyNameTouchesNothing()
{
    QTemporaryDir dir;
    QVERIFY(zutest::enterTemporaryDir(dir));
    QFile other(QStringLiteral(".2024-03-02"));
    QVERIFY(other.open(QIODevice::WriteOnly) && other.write("other\n") == 6);
    other.close();
    zutest::StderrCapture err; // the empty name is reported once
    ClockedAppender appender { QString() };
    appender.now = QDateTime(QDate(2024, 3, 2), QTime(10, 0));
    appender.setDatePattern(R::DailyRollover);
    appender.now = appender.now.addDays(1);
    appender.write(appender.now, Logger::Info, "f.cpp", 1, "void f()", QString(), "r0");
    err.take();
    QCOMPARE(folder(QString()), QStringList { ".2024-03-02=other" });
}

ZU_TEST_MAIN(tst_RollingFileAppender)
#include "tst_rollingfileappender.moc"
