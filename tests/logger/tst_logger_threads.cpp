#include "support/ZuTest.h"

#include <zucore/Logger.h>
#include <zucore/LoggerFileAppender.h>

#include <atomic>
#include <thread>
#include <vector>

#if defined(__SANITIZE_THREAD__)
// Hand-overs that ThreadSanitizer cannot see, since these libraries are not built for it:
// glibc's tzset() (reached through QDateTime::currentDateTime) guards its state with a lock of
// its own, a contended QReadWriteLock parks its waiters on a QWaitCondition that it creates
// lazily, and Qt Test runs a watchdog thread. The logger's own data is covered by the lock
// annotations in the library.
extern "C" const char *__tsan_default_suppressions()
{
    return "race:tzset_internal\nrace:QWaitCondition\nrace:libQt5Test.so\n";
}
#endif

class tst_LoggerThreads : public QObject
{
    Q_OBJECT

private slots:
    void manyThreadsOneFile();
};

// Four threads write through the global logger into one file appender while a fifth keeps
// reading and resetting the appender's settings; afterwards every record must be in the file
// exactly once, on a line of its own.
void tst_LoggerThreads::manyThreadsOneFile()
{
    constexpr int threadCount = 4;
    constexpr int perThread = 20000;

    auto *appender = new LoggerFileAppender(QStringLiteral("threads.log"));
    appender->setFormat(QStringLiteral("%{type} %{message}\n"));
    cuteLoggerInstance()->registerAppender(appender);

    // Plain std::thread: QThread's own bookkeeping would draw ThreadSanitizer reports on Qt.
    std::atomic_int running(threadCount);
    std::thread meddler([appender, &running] {
        while (running.load() > 0) {
            appender->setDetailsLevel(Logger::Trace);
            appender->setDetailsLevel(Logger::Info);
            appender->setFormat(QStringLiteral("%{type} %{message}\n"));
            (void)appender->fileName();
            std::this_thread::yield();
        }
    });
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([t, &running] {
            for (int n = 0; n < perThread; ++n)
                LOG_INFO("thread %d record %d", t, n);
            --running;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    meddler.join();
    cuteLoggerInstance()->removeAppender(appender);
    delete appender;

    QFile file(QStringLiteral("threads.log"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray all = file.readAll();
    QVERIFY(all.endsWith('\n'));
    const QList<QByteArray> lines = all.left(all.size() - 1).split('\n');
    QCOMPARE(lines.size(), threadCount * perThread);

    std::vector<int> next(threadCount, 0); // records of one thread keep their order
    for (const QByteArray &line : lines) {
        int t = -1;
        int n = -1;
        char tail = 0;
        const bool whole
            = std::sscanf(line.constData(), "Info thread %d record %d%c", &t, &n, &tail) == 2;
        if (!whole || t < 0 || t >= threadCount || n != next[t])
            QFAIL(qPrintable("broken or misplaced line: " + QString::fromLatin1(line)));
        ++next[t];
    }
    QCOMPARE(next, std::vector<int>(threadCount, perThread));
}

ZU_TEST_MAIN(tst_LoggerThreads)
#include "tst_logger_threads.moc"
