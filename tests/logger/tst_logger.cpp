#include "support/CapturingAppender.h"
#include "support/StderrCapture.h"
#include "support/ZuTest.h"

#include <zucore/Logger.h>
#include <zucore/LoggerConsoleAppender.h>
#include <zucore/LoggerFileAppender.h>

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QProcess>
#include <QRegularExpression>
#include <QThread>

#include <fcntl.h>
#include <unistd.h>

using namespace zutest;

namespace {

QStringList sink; // the names of the NamedAppenders written to or deleted, in order

struct NamedAppender : LoggerAbstractAppender
{
    explicit NamedAppender(const char *n)
        : name(QString::fromLatin1(n))
    { }
    ~NamedAppender() override { sink << name + QLatin1String(" deleted"); }
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &) override
    {
        sink << name;
    }
    QString name;
};

// Raises a message of its own while it runs, as an application's appender might.
struct ChattyAppender : LoggerAbstractAppender
{
    explicit ChattyAppender(bool throughQt)
        : throughQt(throughQt)
    { }
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &message) override
    {
        if (throughQt)
            qWarning("inner %s", qPrintable(message));
        else
            LOG_WARNING() << "inner" << message;
    }
    bool throughQt;
};

// Points the descriptor that holds @p fileName at a read-only one: later writes fail.
bool makeUnwritable(const QString &fileName)
{
    const QString target = QFileInfo(fileName).canonicalFilePath();
    const int readOnly = ::open("/dev/null", O_RDONLY);
    for (const QString &fd : QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System)) {
        if (QFileInfo("/proc/self/fd/" + fd).canonicalFilePath() == target)
            return ::dup2(readOnly, fd.toInt()) >= 0 && ::close(readOnly) == 0;
    }
    return false;
}

void put(Logger *logger, const char *category, const char *message)
{
    logger->write(Logger::Info, "f.cpp", 1, "void f()", category, QString::fromLatin1(message));
}

// Scenarios that end the process run in a child: the test binary, started again with
// ZU_LOGGER_CHILD set, runs one of them before main().
const bool childRan = [] {
    const QByteArray scenario = qgetenv("ZU_LOGGER_CHILD");
    if (scenario.isEmpty())
        return false;
    Logger *global = cuteLoggerInstance();
    auto *console = new LoggerConsoleAppender;
    console->ignoreEnvironmentPattern(true);
    if (scenario == "fatal-statement") { // no appender takes Fatal: the statement still ends it
        console->setDetailsLevel(Logger::LogLevel(Logger::Fatal + 1));
        global->registerAppender(console);
        LOG_INFO() << "dropped";
        LOG_FATAL("gone");
    }
    if (scenario == "qfatal") {
        console->setFormat(QStringLiteral("%{type}:%{message}\n"));
        global->registerAppender(console);
        qFatal("gone %d", 5);
    }
    global->write(Logger::Info, "f.cpp", 1, "void first()", nullptr, QStringLiteral("one"));
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
    void logStatements();
    void registrationAndOwnership();
    void categoryRouting();
    void timingHelper();
    void skippedStatements();
    void messagesFromInsideAnAppender_data();
    void messagesFromInsideAnAppender();
    void childProcess_data();
    void childProcess();
};

void tst_Logger::logStatements()
{
    LogCapture capture;
    CapturingAppender categoryAppender;
    cuteLoggerInstance()->registerCategoryAppender(QStringLiteral("zu.qt.cat"), &categoryAppender);
    const int line = __LINE__ + 1;
    LOG_INFO() << "hello" << 42 << QStringLiteral("quoted");
    LOG_WARNING("value %d", 7);
    LOG_TRACE(QStringLiteral("trace text"));
    LOG_ERROR().noquote() << QStringLiteral("plain");
    qDebug("debug %d", 1);
    qWarning("warning");
    qCritical("critical");
    QLoggingCategory named("zu.qt.cat");
    qCInfo(named, "named");
    cuteLoggerInstance()->removeAppender(&categoryAppender);

    QStringList seen; // level:message
    for (const LogRecord &r : capture.records())
        seen << QString::number(r.level) + ':' + r.message;
    QCOMPARE(seen,
             QStringList({ "2:hello 42 \"quoted\" ", "3:value 7", "0:trace text", "4:plain ",
                           "1:debug 1", "3:warning", "4:critical" }));
    const LogRecord first = capture.records().at(0);
    QCOMPARE(first.line, line);
    QVERIFY(first.function.contains(QLatin1String("tst_Logger::logStatements(")));
    QCOMPARE(categoryAppender.records().at(0).category, QStringLiteral("zu.qt.cat"));
    QCOMPARE(categoryAppender.records().at(0).level, Logger::Info);
}

void tst_Logger::registrationAndOwnership()
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
    QCOMPARE(err.take(),
             QByteArray("Trying to register appender that was already registered\n"
                        "Trying to register appender that was already registered\n"));
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

void tst_Logger::categoryRouting()
{
    LogCapture capture;
    Logger *global = cuteLoggerInstance();
    StderrCapture err;
    put(global, nullptr, "plain");
    put(global, "zu.none", "one");
    global->write(Logger::Error, "f.cpp", 1, "int g(int)", "zu.none", QStringLiteral("two"));
    put(global, "", "empty category"); // equal to the null default category: the main path
    global->logToGlobalInstance(QStringLiteral("zu.linked"), true);
    put(global, "zu.linked", "linked");
    global->logToGlobalInstance(QStringLiteral("zu.linked"), false);
    put(global, "zu.linked", "unlinked");
    {
        Logger local(QStringLiteral("zu.local"), true);
        auto *own = new CapturingAppender;
        local.registerAppender(own);
        put(&local, nullptr, "default");
        put(&local, "zu.other", "other");
        put(&local, "zu.other", "other 2");
        global->logToGlobalInstance(QStringLiteral("zu.local"), true);
        put(&local, nullptr, "local linked");
        global->logToGlobalInstance(QStringLiteral("zu.local"), false);
        QCOMPARE(own->messages(), QStringList({ "default", "local linked" }));
    }
    QCOMPARE(err.take(),
             QByteArray("No appenders associated with category zu.none\n"
                        "[Info   ] <f> one\n"
                        "[Error  ] <g> two\n"
                        "No appenders associated with category zu.linked\n"
                        "[Info   ] <f> unlinked\n"
                        "No appenders associated with category zu.other\n"));
    QStringList seen; // message@category
    for (const LogRecord &r : capture.records())
        seen << r.message + '@' + (r.category.isNull() ? QStringLiteral("null") : r.category);
    QCOMPARE(seen,
             QStringList({ "plain@null", "empty category@", "linked@zu.linked", "default@null",
                           "local linked@zu.local", "local linked@null" }));
}

void tst_Logger::timingHelper()
{
    Logger logger;
    auto *appender = new CapturingAppender;
    logger.registerAppender(appender);
    {
        LoggerTimingHelper helper(&logger, Logger::Warning, "f.cpp", 7, "void Foo::bar(int)");
        helper.start();
    }
    const QString message = appender->messages().value(0);
    const QRegularExpression expected("^Function Foo::bar finished in \\d+ ms\\.$");
    QVERIFY2(expected.match(message).hasMatch(), qPrintable(message));
    QCOMPARE(appender->records().at(0).level, Logger::Warning);
    QCOMPARE(appender->records().at(0).line, 7);
}

// A statement that no appender takes is skipped whole; one that some path still needs is not.
void tst_Logger::skippedStatements()
{
    Logger *global = cuteLoggerInstance();
    int evaluated = 0;
    StderrCapture err;
    LOG_TRACE() << ++evaluated; // no main appender: the record goes to standard error
    QCOMPARE(evaluated, 1);
    const QByteArray fallback = err.take();
    QVERIFY2(fallback.contains("[Trace  ] <tst_Logger::skippedStatements> 1"),
             fallback.constData());

    auto *appender = new CapturingAppender;
    appender->setDetailsLevel(Logger::Info);
    global->registerAppender(appender);
    LOG_INFO() << "first" << ++evaluated;
    LOG_DEBUG() << "skipped" << ++evaluated;
    QCOMPARE(evaluated, 2);
    // Another thread lowers the level: the very next statement here is taken.
    QScopedPointer<QThread> thread(
        QThread::create([appender] { appender->setDetailsLevel(Logger::Debug); }));
    thread->start();
    QVERIFY(thread->wait(10000));
    LOG_DEBUG() << "second" << ++evaluated;
    if (evaluated == 0)
        LOG_ERROR() << "not this";
    else
        LOG_WARNING("else branch");
    global->removeAppender(appender);
    QStringList messages = appender->messages();
    for (QString &message : messages)
        message = message.trimmed();
    delete appender;
    QCOMPARE(messages, QStringList({ "first 2", "second 3", "else branch" }));
}

void tst_Logger::messagesFromInsideAnAppender_data()
{
    QTest::addColumn<QString>("appender");
    QTest::addColumn<QString>("expectedErr"); // a regular expression
    QTest::newRow("qWarning") << "qt"
                              << "^\\[Warn   \\] <[^>]*> inner outer\n$";
    QTest::newRow("log statement")
        << "log"
        << "^\\[Warn   \\] <[^>]*ChattyAppender::append> inner \"outer\" ?\n$";
    QTest::newRow("file becomes unwritable") << "file"
                                             << "";
}

// A message raised on the thread that runs an appender would wait for a mutex the thread
// holds: it goes to standard error, and logging goes on.
void tst_Logger::messagesFromInsideAnAppender()
{
    QFETCH(QString, appender);
    QFETCH(QString, expectedErr);
    Logger *global = cuteLoggerInstance();
    LogCapture capture;
    LoggerAbstractAppender *inner = nullptr;
    if (appender == "file") {
        auto *file = new LoggerFileAppender("unwritable.log");
        file->setFormat("%{message}\n");
        file->write(QDateTime::currentDateTime(), Logger::Info, "f.cpp", 1, "void f()", {}, "open");
        QVERIFY(makeUnwritable("unwritable.log"));
        inner = file;
    } else {
        inner = new ChattyAppender(appender == "qt");
    }
    global->registerAppender(inner);
    StderrCapture err;
    put(global, nullptr, "outer");
    put(global, nullptr, "outer");
    const QString text = QString::fromLocal8Bit(err.take());
    global->removeAppender(inner);
    delete inner;
    QCOMPARE(capture.messages(), QStringList({ "outer", "outer" }));
    if (!expectedErr.isEmpty()) {
        const QStringList lines = text.split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 2);
        QVERIFY2(QRegularExpression(expectedErr).match(lines.at(0) + '\n').hasMatch(),
                 qPrintable(text));
    }
}

void tst_Logger::childProcess_data()
{
    QTest::addColumn<QByteArray>("scenario");
    QTest::addColumn<QByteArray>("expectedErr");

    QTest::newRow("no appenders, then assert")
        << QByteArray("no-appenders-then-assert")
        << QByteArray("No appenders registered with logger\n[Info   ] <first> one\n"
                      "[Warn   ] <second> two\n[Fatal  ] <check> ASSERT: \"x > 1\"\n");
    QTest::newRow("qFatal") << QByteArray("qfatal") << QByteArray("Fatal:gone 5\n");
    QTest::newRow("LOG_FATAL that no appender takes")
        << QByteArray("fatal-statement") << QByteArray();
}

void tst_Logger::childProcess()
{
    QFETCH(QByteArray, scenario);
    QFETCH(QByteArray, expectedErr);

    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("ZU_LOGGER_CHILD"), QString::fromLatin1(scenario));
    child.setProcessEnvironment(env);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    QVERIFY(child.waitForFinished(60000));
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    QCOMPARE(child.readAllStandardError(), expectedErr);
}

ZU_TEST_MAIN(tst_Logger)
#include "tst_logger.moc"
