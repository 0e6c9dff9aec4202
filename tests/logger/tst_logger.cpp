#include "support/CapturingAppender.h"
#include "support/StderrCapture.h"
#include "support/ZuTest.h"

#include <zucore/LoggerConsoleAppender.h>
#include <zucore/LoggerFileAppender.h>

#include <QLoggingCategory>
#include <QProcess>
#include <QRegularExpression>

#include <thread>
#include <unistd.h>

using namespace zutest;

namespace {

QStringList sink; // what the NamedAppenders wrote, and which were deleted, in order

// Notes its name; "qt" and "log" raise a message of their own instead, as an app's appender might.
struct NamedAppender : LoggerAbstractAppender
{
    explicit NamedAppender(const char *n)
        : name(QString::fromLatin1(n))
    { }
    ~NamedAppender() override { sink << name + QLatin1String(" deleted"); }
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &message) override
    {
        if (name == QLatin1String("qt"))
            qWarning("inner %s", qPrintable(message));
        else if (name == QLatin1String("log"))
            LOG_WARNING() << "inner" << message;
        else
            sink << name;
    }
    QString name;
};

void put(Logger *logger, const char *category, const char *message)
{
    logger->write(Logger::Info, "f.cpp", 1, "void f()", category, QString::fromLatin1(message));
}

QStringList summary(const QList<LogRecord> &records)
{
    QStringList lines;
    for (const LogRecord &r : records)
        lines << QString("%1:%2@%3")
                     .arg(r.level)
                     .arg(r.message, r.category.isNull() ? "null" : r.category);
    return lines;
}

// Scenarios that end the process: the test binary, run again with ZU_LOGGER_CHILD, does one.
const bool childRan = [] {
    const QByteArray scenario = qgetenv("ZU_LOGGER_CHILD");
    if (scenario.isEmpty())
        return false;
    Logger *global = cuteLoggerInstance();
    auto *console = new LoggerConsoleAppender;
    console->ignoreEnvironmentPattern(true);
    console->setFormat(QStringLiteral("%{type}:%{message}\n"));
    if (scenario != "no-appenders-then-assert")
        global->registerAppender(console);
    if (scenario == "qfatal")
        qFatal("gone %d", 5);
    if (scenario == "fatal-statement") {
        console->setDetailsLevel(Logger::LogLevel(Logger::Fatal + 1)); // takes no record
        LOG_FATAL("gone"); // yet the statement ends the process
    }
    put(global, nullptr, "one");
    Logger local;
    local.write(Logger::Warning, "f.cpp", 2, "void second(int)", nullptr, QStringLiteral("two"));
    global->registerAppender(console);
    global->writeAssert("f.cpp", 3, "void check()", "x > 1");
    ::_exit(0); // not reached: no recursion into the tests
}();

} // namespace

class tst_Logger : public QObject
{
    Q_OBJECT

private slots:
    void logStatements()
    {
        LogCapture capture;
        cuteLoggerInstance()->logToGlobalInstance(QStringLiteral("zu.qt.cat"), true);
        const int line = __LINE__ + 1;
        LOG_INFO() << "hello" << 42 << QStringLiteral("quoted");
        LOG_WARNING("value %d", 7);
        LOG_TRACE(QStringLiteral("trace text"));
        qDebug("debug %d", 1);
        qWarning("warning");
        qCritical("critical");
        QLoggingCategory category("zu.qt.cat");
        qCInfo(category, "named");
        {
            LoggerTimingHelper helper(cuteLoggerInstance(), Logger::Error, "f.cpp", 7,
                                      "int Foo::bar()");
            helper.start();
        }
        cuteLoggerInstance()->logToGlobalInstance(QStringLiteral("zu.qt.cat"), false);
        QStringList seen = summary(capture.records());
        seen.last().replace(QRegularExpression(" \\d+ ms\\."), " N ms.");
        QCOMPARE(
            seen,
            QStringList({ "2:hello 42 \"quoted\" @null", "3:value 7@null", "0:trace text@null",
                          "1:debug 1@null", "3:warning@null", "4:critical@null",
                          "2:named@zu.qt.cat", "4:Function Foo::bar finished in N ms.@null" }));
        QCOMPARE(capture.records().at(0).line, line);
    }

    void registrationAndOwnership()
    {
        auto *logger = new Logger;
        auto *appender = new NamedAppender("a");
        auto *older = new NamedAppender("older");
        StderrCapture err;
        logger->registerAppender(appender);
        logger->registerAppender(appender);
        logger->registerCategoryAppender(QStringLiteral("a"), appender); // main and category: fine
        logger->registerCategoryAppender(QStringLiteral("a"), appender);
        logger->registerCategoryAppender(QStringLiteral("b"), older);
        logger->registerCategoryAppender(QStringLiteral("b"), new NamedAppender("newer"));
        put(logger, "b", "newest first");
        put(logger, nullptr, "main");
        QCOMPARE(err.take().count("Trying to register appender that was already registered\n"), 2);
        QCOMPARE(sink, QStringList({ "newer", "older", "a" }));

        // Removed from both lists: no longer written to, and not deleted by the logger.
        sink.clear();
        logger->removeAppender(appender);
        logger->registerAppender(older); // in the main list and bound to a category: deleted once
        put(logger, "a", "gone");
        delete logger;
        sink.sort(); // the order of deletion is not fixed
        QCOMPARE(sink, QStringList({ "newer deleted", "older deleted" }));
        delete appender;
    }

    void categoryRouting()
    {
        LogCapture capture;
        Logger *global = cuteLoggerInstance();
        StderrCapture err;
        put(global, "zu.none", "one");
        put(global, "zu.none", "two");
        put(global, "", "empty"); // not the null default category, yet the main path
        global->logToGlobalInstance(QStringLiteral("zu.linked"), true);
        put(global, "zu.linked", "linked");
        global->logToGlobalInstance(QStringLiteral("zu.linked"), false);
        {
            Logger local(QStringLiteral("zu.local"), true);
            auto *own = new CapturingAppender;
            local.registerAppender(own);
            // Passed on to the global one.
            local.logToGlobalInstance(QStringLiteral("zu.local"), true);
            put(&local, nullptr, "default");
            local.logToGlobalInstance(QStringLiteral("zu.local"), false);
            put(&local, "zu.other", "other"); // warned here, not again by the global instance
            QCOMPARE(own->messages(), QStringList({ "default" }));
        }
        QCOMPARE(err.take(),
                 QByteArray("No appenders associated with category zu.none\n"
                            "[Info   ] <f> one\n[Info   ] <f> two\n"
                            "No appenders associated with category zu.other\n"));
        QCOMPARE(summary(capture.records()),
                 QStringList(
                     { "2:empty@", "2:linked@zu.linked", "2:default@zu.local", "2:default@null" }));
    }

    // A statement that no appender takes is skipped whole; one that some path still needs is not.
    void skippedStatements()
    {
        int evaluated = 0;
        StderrCapture err;
        LOG_TRACE() << ++evaluated; // no main appender: the record goes to standard error
        QCOMPARE(evaluated, 1);
        QVERIFY(err.take().contains("[Trace  ] <tst_Logger::skippedStatements> 1"));

        CapturingAppender appender;
        appender.setDetailsLevel(Logger::Info);
        cuteLoggerInstance()->registerAppender(&appender);
        LOG_INFO() << "first" << ++evaluated;
        LOG_DEBUG() << "skipped" << ++evaluated;
        QCOMPARE(evaluated, 2);
        // Another thread lowers the level: the very next statement here is taken.
        std::thread([&appender] { appender.setDetailsLevel(Logger::Debug); }).join();
        LOG_DEBUG() << "second" << ++evaluated;
        if (evaluated == 0)
            LOG_ERROR() << "not this";
        else
            LOG_WARNING("else branch");
        cuteLoggerInstance()->removeAppender(&appender);
        QCOMPARE(appender.messages(), QStringList({ "first 2 ", "second 3 ", "else branch" }));
    }

    void messagesFromInsideAnAppender_data()
    {
        QTest::addColumn<QByteArray>("appender");
        QTest::newRow("qWarning") << QByteArray("qt");
        QTest::newRow("log statement") << QByteArray("log");
        QTest::newRow("file that cannot be written") << QByteArray("file");
    }

    // A message raised on the thread that runs an appender would wait for a mutex the thread
    // holds: it goes to standard error, and logging goes on.
    void messagesFromInsideAnAppender()
    {
        QFETCH(QByteArray, appender);
        LogCapture capture;
        LoggerAbstractAppender *inner = appender == "file" // opens, then every write fails
            ? static_cast<LoggerAbstractAppender *>(new LoggerFileAppender("/dev/full"))
            : new NamedAppender(appender.constData());
        cuteLoggerInstance()->registerAppender(inner);
        StderrCapture err;
        put(cuteLoggerInstance(), nullptr, "outer");
        put(cuteLoggerInstance(), nullptr, "outer");
        const QString text = QString::fromLocal8Bit(err.take());
        cuteLoggerInstance()->removeAppender(inner);
        delete inner;
        QCOMPARE(capture.messages(), QStringList({ "outer", "outer" }));
        const QRegularExpression line("^\\[Warn   \\] <[^>]*> inner \"?outer\"? ?$",
                                      QRegularExpression::MultilineOption);
        QCOMPARE(text.count(line), appender == "file" ? 0 : 2);
    }

    void childProcess_data()
    {
        QTest::addColumn<QByteArray>("scenario");
        QTest::addColumn<QByteArray>("expectedErr");
        QTest::newRow("no appenders, then assert")
            << QByteArray("no-appenders-then-assert")
            << QByteArray("No appenders registered with logger\n[Info   ] <f> one\n"
                          "[Warn   ] <second> two\nFatal:ASSERT: \"x > 1\"\n");
        QTest::newRow("qFatal") << QByteArray("qfatal") << QByteArray("Fatal:gone 5\n");
        QTest::newRow("LOG_FATAL taken by none") << QByteArray("fatal-statement") << QByteArray();
    }

    void childProcess()
    {
        QFETCH(QByteArray, scenario);
        QProcess child;
        qputenv("ZU_LOGGER_CHILD", scenario);
        child.start(QCoreApplication::applicationFilePath(), QStringList());
        qunsetenv("ZU_LOGGER_CHILD");
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QTEST(child.readAllStandardError(), "expectedErr");
    }
};

ZU_TEST_MAIN(tst_Logger)
#include "tst_logger.moc"
