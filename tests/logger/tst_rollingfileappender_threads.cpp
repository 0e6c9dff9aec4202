#include "support/ZuTest.h"

#include <zucore/LoggerRollingFileAppender.h>

#include <atomic>
#include <thread>
#include <vector>

#if defined(__SANITIZE_THREAD__)
// Hand-overs in libraries not built for ThreadSanitizer (tzset, QReadWriteLock, Qt Test).
extern "C" const char *__tsan_default_suppressions()
{
    return "race:tzset_internal\nrace:QWaitCondition\nrace:libQt*Test.so\n";
}
#endif

namespace {

constexpr int threadCount = 4;
constexpr int perThread = 20000;
constexpr qint64 tick = 60; // milliseconds per reading of the clock

// Every reading moves the clock on, so that time runs with the records whichever thread
// writes them: 80 000 records cross eighty minutes, a roll-over every thousand records or so,
// often enough for a missing lock to show under ThreadSanitizer.
struct TickingAppender : LoggerRollingFileAppender
{
    using LoggerRollingFileAppender::LoggerRollingFileAppender;
    QDateTime currentDateTime() const override
    {
        return QDateTime::fromMSecsSinceEpoch(start + elapsed.fetch_add(tick));
    }
    qint64 start = QDateTime(QDate(2024, 3, 5), QTime(23, 55, 30)).toMSecsSinceEpoch();
    mutable std::atomic<qint64> elapsed { 0 };
};

} // namespace

class tst_RollingFileAppenderThreads : public QObject
{
    Q_OBJECT

private slots:
    void nothingLostAcrossRollOvers();
};

// Every record must be in exactly one file, whole and in its thread's order, and the dated
// files must be those of the minutes that the clock crossed.
void tst_RollingFileAppenderThreads::nothingLostAcrossRollOvers()
{
    TickingAppender appender(QStringLiteral("load.log"));
    appender.setFormat(QStringLiteral("%{message}\n"));
    appender.setDatePattern(LoggerRollingFileAppender::MinutelyRollover);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&appender, t] {
            for (int n = 0; n < perThread; ++n)
                appender.write(QDateTime(), Logger::Info, "f.cpp", 1, "void f()", QString(),
                               QStringLiteral("%1 %2").arg(t).arg(n));
        });
    }
    for (std::thread &thread : threads)
        thread.join();

    // A minute is dated once a reading came after its end; the last reading's minute is the
    // current file.
    const QDateTime last = QDateTime::fromMSecsSinceEpoch(appender.start + appender.elapsed - tick);
    QStringList expected;
    for (QDateTime minute = QDateTime::fromMSecsSinceEpoch(appender.start - appender.start % 60000);
         minute.addSecs(60) < last; minute = minute.addSecs(60))
        expected << "load.log" + minute.toString("'.'yyyy-MM-dd-hh-mm");
    QVERIFY(expected.size() >= 75); // the day's end among them
    QStringList names = QDir().entryList(QDir::Files);
    QVERIFY(names.removeOne(QStringLiteral("load.log")));
    QCOMPARE(names, expected);

    std::vector<int> next(threadCount, 0);
    for (const QString &name : names << QStringLiteral("load.log")) {
        QFile file(name);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray all = file.readAll();
        QVERIFY2(all.endsWith('\n'), qPrintable(name));
        for (const QByteArray &line : all.left(all.size() - 1).split('\n')) {
            int t = -1, n = -1;
            char tail = 0;
            if (std::sscanf(line.constData(), "%d %d%c", &t, &n, &tail) != 2 || t < 0
                || t >= threadCount || n != next[t]++)
                QFAIL(qPrintable(name + ": broken or misplaced line " + QString::fromLatin1(line)));
        }
    }
    QCOMPARE(next, std::vector<int>(threadCount, perThread));
}

ZU_TEST_MAIN(tst_RollingFileAppenderThreads)
#include "tst_rollingfileappender_threads.moc"
