#include "support/ZuTest.h"

#include <zucore/LoggerRollingFileAppender.h>

#include <thread>
#include <vector>

constexpr int threadCount = 4, perThread = 20000, tick = 60; // tick: milliseconds a reading
const QDateTime start(QDate(2024, 3, 5), QTime(23, 55, 30));

// Each reading moves the clock on: 80 000 records cross eighty minutes, whichever thread writes.
struct TickingAppender : LoggerRollingFileAppender
{
    using LoggerRollingFileAppender::LoggerRollingFileAppender;
    QDateTime currentDateTime() const override { return start.addMSecs(elapsed += tick); }
    mutable QAtomicInteger<qint64> elapsed = 0;
};

class tst_RollingFileAppenderThreads : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // Every record in exactly one file, whole and in its thread's order; the minutes rolled.
    void nothingLostAcrossRollOvers()
    {
        TickingAppender appender(QStringLiteral("load.log"));
        appender.setFormat(QStringLiteral("%{message}\n"));
        appender.setDatePattern(LoggerRollingFileAppender::MinutelyRollover);
        std::thread threads[threadCount];
        for (int t = 0; t < threadCount; ++t)
            threads[t] = std::thread([&appender, t] {
                for (int n = 0; n < perThread; ++n)
                    appender.write(QDateTime(), Logger::Info, "f.cpp", 1, "void f()", QString(),
                                   QStringLiteral("%1 %2").arg(t).arg(n));
            });
        for (std::thread &thread : threads)
            thread.join();

        QStringList files; // the minutes that a later reading left behind
        for (QDateTime m = start.addSecs(-30); m.addSecs(60) < start.addMSecs(appender.elapsed);
             m = m.addSecs(60))
            files << m.toString("'load.log.'yyyy-MM-dd-hh-mm");
        QVERIFY(files.size() >= 75); // the day's end among them
        QCOMPARE(QDir().entryList(QDir::Files), QStringList("load.log") + files);
        QByteArray all;
        for (const QString &name : files << "load.log") {
            QFile file(name);
            QVERIFY(file.open(QIODevice::ReadOnly) && (all += file.readAll()).endsWith('\n'));
        }
        std::vector<int> next(threadCount, 0);
        for (const QByteArray &line : all.chopped(1).split('\n')) {
            const int t = qBound(0, line.left(1).toInt(), threadCount - 1);
            QVERIFY2(line == QByteArray::number(t) + ' ' + QByteArray::number(next[t]++), line);
        }
        QCOMPARE(next, std::vector<int>(threadCount, perThread));
    }
};

ZU_TEST_MAIN(tst_RollingFileAppenderThreads)
#include "tst_rollingfileappender_threads.moc"
