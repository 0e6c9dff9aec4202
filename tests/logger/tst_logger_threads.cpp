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
        constexpr int threadCount = 4;
        constexpr int perThread = 20000;
        auto *appender = new LoggerFileAppender(QStringLiteral("threads.log"));
        appender->setFormat(QStringLiteral("%{type} %{message}\n"));
        cuteLoggerInstance()->registerAppender(appender);

        std::vector<std::thread> threads;
        for (int t = 0; t < threadCount; ++t) {
            threads.emplace_back([t] {
                for (int n = 0; n < perThread; ++n)
                    LOG_INFO("thread %d record %d", t, n);
            });
        }
        for (int k = 0; k < 2000; ++k) { // settings change while the threads write
            appender->setDetailsLevel(k % 2 ? Logger::Trace : Logger::Info);
            appender->setFormat(QStringLiteral("%{type} %{message}\n"));
        }
        for (std::thread &thread : threads)
            thread.join();
        cuteLoggerInstance()->removeAppender(appender);
        delete appender;

        QFile file(QStringLiteral("threads.log"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray all = file.readAll();
        QVERIFY(all.endsWith('\n'));
        all.chop(1);
        std::vector<int> next(threadCount, 0);
        for (const QByteArray &line : all.split('\n')) {
            int t = -1, n = -1;
            char tail = 0;
            if (std::sscanf(line.constData(), "Info thread %d record %d%c", &t, &n, &tail) != 2
                || t < 0 || t >= threadCount || n != next[t]++)
                QFAIL(qPrintable("broken or misplaced line: " + QString::fromLatin1(line)));
        }
        QCOMPARE(next, std::vector<int>(threadCount, perThread));
    }
};

ZU_TEST_MAIN(tst_LoggerThreads)
#include "tst_logger_threads.moc"
