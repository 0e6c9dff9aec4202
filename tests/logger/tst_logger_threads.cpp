#include "support/TestFiles.h"
#include "support/ZuTest.h"

#include <zucore/Logger.h>
#include <zucore/LoggerFileAppender.h>

#include <thread>
#include <vector>

class tst_LoggerThreads : public QObject
{
    Q_OBJECT

private slots:
    // Four std::threads at once: every record lands once, whole, on its own line, in thread order.
    void manyThreadsOneFile()
    {
        constexpr int threadCount = 4, perThread = 20000;
        LoggerFileAppender appender(QStringLiteral("threads.log"));
        appender.setFormat(QStringLiteral("%{type} %{message}\n"));
        cuteLoggerInstance()->registerAppender(&appender);
        std::vector<std::thread> threads;
        for (int t = 0; t < threadCount; ++t)
            threads.emplace_back([t] {
                for (int n = 0; n < perThread; ++n)
                    LOG_INFO("%d %d", t, n);
            });
        for (int k = 0; k < 2000; ++k) { // settings change while the threads write
            appender.setDetailsLevel(k % 2 ? Logger::Trace : Logger::Info);
            appender.setFormat(QStringLiteral("%{type} %{message}\n"));
        }
        for (std::thread &thread : threads)
            thread.join();
        cuteLoggerInstance()->removeAppender(&appender);

        const QByteArray all = zutest::contentOf("threads.log");
        QVERIFY(all.endsWith('\n'));
        std::vector<int> next(threadCount, 0);
        for (const QByteArray &line : all.chopped(1).split('\n')) {
            const int t = qBound(0, line.mid(5, 1).toInt(), threadCount - 1);
            QVERIFY2(line == "Info " + QByteArray::number(t) + ' ' + QByteArray::number(next[t]++),
                     line);
        }
        QCOMPARE(next, std::vector<int>(threadCount, perThread));
    }
};

ZU_TEST_MAIN(tst_LoggerThreads)
#include "tst_logger_threads.moc"
