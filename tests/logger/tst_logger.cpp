#include "support/CapturingAppender.h"
#include "support/StderrCapture.h"
#include "support/ZuTest.h"

#include <zucore/Logger.h>
#include <zucore/LoggerAbstractStringAppender.h>
#include <zucore/LoggerConsoleAppender.h>

#include <QLoggingCategory>
#include <QProcess>
#include <QRegularExpression>

#include <unistd.h>

using zutest::CapturingAppender;
using zutest::LogCapture;
using zutest::StderrCapture;

namespace {

// Appends its name to a shared list, so that the order of the calls can be seen.
struct NamedAppender : LoggerAbstractAppender
{
    NamedAppender(const QString &n, QStringList *s)
        : name(n)
        , sink(s)
    { }
    ~NamedAppender() override { sink->append(name + QLatin1String(" deleted")); }
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &) override
    {
        sink->append(name);
    }
    QString name;
    QStringList *sink;
};

QStringList childSink;

// Scenarios that end the process or need a logger of their own run in a child process: the
// test binary is started again with ZU_LOGGER_CHILD set and runs one of these before main().
int runChildScenario(const QByteArray &scenario)
{
    int argc = 1;
    char name[] = "child";
    char *argv[] = { name, nullptr };
    auto *app = new QCoreApplication(argc, argv);
    Logger *global = cuteLoggerInstance();
    auto *console = new LoggerConsoleAppender;
    console->ignoreEnvironmentPattern(true);
    if (scenario == "no-appenders") {
        global->write(Logger::Info, "f.cpp", 1, "void first()", nullptr, QStringLiteral("one"));
        Logger local;
        local.write(Logger::Warning, "f.cpp", 2, "void second(int)", nullptr,
                    QStringLiteral("two"));
    } else if (scenario == "fatal" || scenario == "fatal-none") {
        if (scenario == "fatal")
            global->registerAppender(console);
        global->write(Logger::Fatal, "f.cpp", 1, "void boom()", nullptr, QStringLiteral("end"));
    } else if (scenario == "assert") {
        global->registerAppender(console);
        global->writeAssert("f.cpp", 3, "void check()", "x > 1");
    } else if (scenario == "qfatal") {
        console->setFormat(QStringLiteral("%{type}:%{message}\n"));
        global->registerAppender(console);
        qFatal("gone %d", 5);
    } else if (scenario == "post-routine") {
        global->registerAppender(new NamedAppender(QStringLiteral("main"), &childSink));
        delete app;
        app = nullptr;
        std::fprintf(stderr, "%s\n", qPrintable(childSink.join(QLatin1Char(','))));
        cuteLoggerInstance()->write(Logger::Info, "f.cpp", 4, "void after()", nullptr,
                                    QStringLiteral("again"));
    }
    std::fflush(stderr);
    return 0;
}

const bool childRan = [] {
    const QByteArray scenario = qgetenv("ZU_LOGGER_CHILD");
    if (!scenario.isEmpty())
        ::_exit(runChildScenario(scenario));
    return false;
}();

} // namespace

class tst_Logger : public QObject
{
    Q_OBJECT

private slots:
    void logStatements();
    void levels_data();
    void levels();
    void registrationAndOwnership();
    void globalCategoryRouting();
    void categoryAppendersNewestFirst();
    void localLoggerRouting();
    void qtMessages();
    void timingHelper();
    void childProcess_data();
    void childProcess();
};

void tst_Logger::logStatements()
{
    LogCapture capture;
    const int line = __LINE__ + 1;
    LOG_INFO() << "hello" << 42 << QStringLiteral("quoted");
    LOG_WARNING("value %d", 7);
    LOG_TRACE(QStringLiteral("trace text"));
    LOG_ERROR().noquote() << QStringLiteral("plain");

    const QList<zutest::LogRecord> records = capture.records();
    QCOMPARE(records.size(), 4);
    QCOMPARE(records.at(0).level, Logger::Info);
    QCOMPARE(records.at(0).message, QStringLiteral("hello 42 \"quoted\" "));
    QCOMPARE(records.at(0).line, line);
    QVERIFY(records.at(0).file.endsWith(QLatin1String("tst_logger.cpp")));
    QCOMPARE(LoggerAbstractStringAppender::stripFunctionName(qPrintable(records.at(0).function)),
             QStringLiteral("tst_Logger::logStatements"));
    QVERIFY(records.at(0).category.isNull());
    QCOMPARE(records.at(0).timeStamp.timeSpec(), Qt::LocalTime);
    QVERIFY(records.at(0).timeStamp.msecsTo(QDateTime::currentDateTime()) < 60000);
    QVERIFY(records.at(0).timeStamp <= records.at(3).timeStamp);
    QCOMPARE(records.at(1).message, QStringLiteral("value 7"));
    QCOMPARE(records.at(2).level, Logger::Trace);
    QCOMPARE(records.at(3).message, QStringLiteral("plain "));
    QVERIFY(capture.contains(Logger::Error, QStringLiteral("plain")));
    QVERIFY(!capture.contains(Logger::Info, QStringLiteral("plain")));
}

void tst_Logger::levels_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("parsed"); // levelFromString(text)
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("name"); // levelToString(level)
    // clang-format off
    const struct { const char *row, *text; int parsed, level; const char *name; } rows[] = {
        { "trace", "trace", 0, 0, "Trace" }, { "debug", "Debug", 1, 1, "Debug" },
        { "info", "INFO", 2, 2, "Info" }, { "warning between blanks", "  WARNING ", 3, 3, "Warn" },
        { "error with newline", "error\n", 4, 4, "Error" }, { "fatal", "Fatal", 5, 5, "Fatal" },
        { "Warn is not read", "Warn", 1, 6, nullptr }, { "empty", "", 1, -1, nullptr },
        { "number", "4", 1, 100, nullptr }, { "inner blank", "fa tal", 1, 0, "Trace" },
    };
    // clang-format on
    for (const auto &r : rows)
        QTest::newRow(r.row) << QString::fromLatin1(r.text) << r.parsed << r.level
                             << (r.name ? QString::fromLatin1(r.name) : QString());
}

void tst_Logger::levels()
{
    QFETCH(QString, text);
    QFETCH(int, parsed);
    QFETCH(int, level);
    QFETCH(QString, name);
    QCOMPARE(int(Logger::levelFromString(text)), parsed);
    const QString result = Logger::levelToString(Logger::LogLevel(level));
    QCOMPARE(result, name);
    QCOMPARE(result.isNull(), name.isNull());
}

void tst_Logger::registrationAndOwnership()
{
    QStringList sink;
    auto *logger = new Logger;
    auto *appender = new NamedAppender(QStringLiteral("a"), &sink);
    NamedAppender stranger(QStringLiteral("stranger"), &sink);
    StderrCapture err;
    logger->registerAppender(appender);
    logger->registerAppender(appender);
    logger->registerCategoryAppender(QStringLiteral("a"), appender); // main and category: fine
    logger->registerCategoryAppender(QStringLiteral("b"), appender);
    logger->removeAppender(&stranger); // unknown: changes nothing, prints nothing
    logger->write(Logger::Info, "f.cpp", 1, "void f()", nullptr, QStringLiteral("main"));
    logger->write(Logger::Info, "f.cpp", 1, "void f()", "a", QStringLiteral("in a"));
    QCOMPARE(err.take(),
             QByteArray("Trying to register appender that was already registered\n"
                        "Trying to register appender that was already registered\n"));
    QCOMPARE(sink, QStringList({ "a", "a" }));

    // Removed from both lists: no longer written to, and not deleted by the logger.
    logger->removeAppender(appender);
    logger->registerAppender(new NamedAppender(QStringLiteral("b"), &sink));
    logger->registerCategoryAppender(QStringLiteral("c"), new NamedAppender("c", &sink));
    logger->write(Logger::Info, "f.cpp", 1, "void f()", nullptr, QStringLiteral("later"));
    delete logger;
    sink.sort(); // the order of deletion is not fixed
    QCOMPARE(sink, QStringList({ "a", "a", "b", "b deleted", "c deleted" }));
    delete appender;

    // An appender both in the main list and bound to a category is deleted once.
    sink.clear();
    logger = new Logger;
    auto *both = new NamedAppender(QStringLiteral("both"), &sink);
    logger->registerAppender(both);
    logger->registerCategoryAppender(QStringLiteral("x"), both);
    delete logger;
    QCOMPARE(sink, QStringList({ "both deleted" }));
}

void tst_Logger::globalCategoryRouting()
{
    LogCapture capture;
    Logger *global = cuteLoggerInstance();
    StderrCapture err;
    global->write(Logger::Info, "f.cpp", 1, "void f()", nullptr, QStringLiteral("plain"));
    global->write(Logger::Info, "f.cpp", 1, "void f()", "zu.none", QStringLiteral("one"));
    global->write(Logger::Error, "f.cpp", 1, "int g(int)", "zu.none", QStringLiteral("two"));
    global->write(Logger::Info, "f.cpp", 1, "void f()", "", QStringLiteral("empty category"));
    global->logToGlobalInstance(QStringLiteral("zu.linked"), true);
    global->write(Logger::Info, "f.cpp", 1, "void f()", "zu.linked", QStringLiteral("linked"));
    global->logToGlobalInstance(QStringLiteral("zu.linked"), false);
    global->write(Logger::Info, "f.cpp", 1, "void f()", "zu.linked", QStringLiteral("unlinked"));
    QCOMPARE(err.take(),
             QByteArray("No appenders associated with category zu.none\n"
                        "[Info   ] <f> one\n"
                        "[Error  ] <g> two\n"
                        "No appenders associated with category zu.linked\n"
                        "[Info   ] <f> unlinked\n"));
    // An empty category compares equal to the null default category: it takes the main path.
    QCOMPARE(capture.messages(), QStringList({ "plain", "empty category", "linked" }));
    QCOMPARE(capture.records().at(1).category, QStringLiteral(""));
    QCOMPARE(capture.records().at(2).category, QStringLiteral("zu.linked"));
}

void tst_Logger::categoryAppendersNewestFirst()
{
    LogCapture capture;
    QStringList sink;
    auto *older = new NamedAppender(QStringLiteral("older"), &sink);
    auto *newer = new NamedAppender(QStringLiteral("newer"), &sink);
    Logger *global = cuteLoggerInstance();
    global->registerCategoryAppender(QStringLiteral("zu.order"), older);
    global->registerCategoryAppender(QStringLiteral("zu.order"), newer);
    global->write(Logger::Debug, "f.cpp", 1, "void f()", "zu.order", QStringLiteral("x"));
    global->removeAppender(older);
    global->removeAppender(newer);
    delete older;
    delete newer;
    QCOMPARE(sink, QStringList({ "newer", "older", "older deleted", "newer deleted" }));
    QVERIFY(capture.records().isEmpty()); // a category with appenders skips the main ones
}

void tst_Logger::localLoggerRouting()
{
    LogCapture capture;
    StderrCapture err;
    {
        Logger local(QStringLiteral("zu.local"), true);
        QCOMPARE(local.defaultCategory(), QStringLiteral("zu.local"));
        auto *own = new CapturingAppender;
        local.registerAppender(own);
        local.write(Logger::Info, "f.cpp", 1, "void f()", nullptr, QStringLiteral("default"));
        local.write(Logger::Info, "f.cpp", 1, "void f()", "zu.other", QStringLiteral("other"));
        local.write(Logger::Info, "f.cpp", 1, "void f()", "zu.other", QStringLiteral("other 2"));
        cuteLoggerInstance()->logToGlobalInstance(QStringLiteral("zu.local"), true);
        local.write(Logger::Info, "f.cpp", 1, "void f()", nullptr, QStringLiteral("linked"));
        cuteLoggerInstance()->logToGlobalInstance(QStringLiteral("zu.local"), false);
        QCOMPARE(own->messages(), QStringList({ "default", "linked" }));

        Logger quiet(QStringLiteral("zu.quiet"), false);
        quiet.registerAppender(new CapturingAppender);
        quiet.write(Logger::Info, "f.cpp", 1, "void f()", nullptr, QStringLiteral("quiet"));
        quiet.setDefaultCategory(QString());
        QVERIFY(quiet.defaultCategory().isNull());
    }
    QCOMPARE(err.take(), QByteArray("No appenders associated with category zu.other\n"));
    const QList<zutest::LogRecord> records = capture.records();
    QCOMPARE(capture.messages(), QStringList({ "default", "linked", "linked" }));
    QVERIFY(records.at(0).category.isNull());
    QCOMPARE(records.at(1).category, QStringLiteral("zu.local"));
    QVERIFY(records.at(2).category.isNull());
}

void tst_Logger::qtMessages()
{
    LogCapture capture;
    auto *categoryAppender = new CapturingAppender;
    cuteLoggerInstance()->registerCategoryAppender(QStringLiteral("zu.qt.cat"), categoryAppender);
    qDebug("debug %d", 1);
    qInfo("info");
    qWarning("warning");
    qCritical("critical");
    QLoggingCategory named("zu.qt.cat");
    qCWarning(named, "named");
    QLoggingCategory lonely("zu.qt.lonely");
    StderrCapture err;
    qCWarning(lonely, "lonely");
    const QByteArray errors = err.take();
    cuteLoggerInstance()->removeAppender(categoryAppender);

    QCOMPARE(capture.messages(), QStringList({ "debug 1", "info", "warning", "critical" }));
    QList<int> levels;
    for (const zutest::LogRecord &r : capture.records()) {
        levels << r.level;
        QVERIFY(r.category.isNull());
    }
    QCOMPARE(levels, QList<int>({ Logger::Debug, Logger::Info, Logger::Warning, Logger::Error }));
    QCOMPARE(categoryAppender->messages(), QStringList({ "named" }));
    QCOMPARE(categoryAppender->records().at(0).category, QStringLiteral("zu.qt.cat"));
    QVERIFY(errors.startsWith("No appenders associated with category zu.qt.lonely\n[Warn   ] <"));
    QVERIFY(errors.endsWith("> lonely\n"));
    delete categoryAppender;
}

void tst_Logger::timingHelper()
{
    Logger logger;
    auto *appender = new CapturingAppender;
    logger.registerAppender(appender);
    {
        LoggerTimingHelper helper(&logger, Logger::Info, "f.cpp", 7, "void Foo::bar(int)");
        helper.start("block %d", 3);
    }
    {
        LoggerTimingHelper helper(&logger, Logger::Warning, "f.cpp", 8, "void Foo::bar(int)");
        helper.start();
    }
    {
        LoggerTimingHelper helper(&logger, Logger::Info, "f.cpp", 9, "void Foo::bar(int)");
        helper.start(Logger::TimingMs, QStringLiteral("ms"));
    }
    const QList<zutest::LogRecord> records = appender->records();
    const QStringList expected { "^\"block 3\" finished in \\d+ ms\\.$",
                                 "^Function Foo::bar finished in \\d+ ms\\.$",
                                 "^\"ms\" finished in \\d+ ms\\.$" };
    QCOMPARE(records.size(), expected.size());
    for (int k = 0; k < records.size(); ++k)
        QVERIFY2(QRegularExpression(expected[k]).match(records[k].message).hasMatch(),
                 qPrintable(records[k].message));
    QCOMPARE(records[1].level, Logger::Warning);
    QCOMPARE(records[1].line, 8);
    QCOMPARE(records[1].function, QStringLiteral("void Foo::bar(int)"));
    QVERIFY(records[1].category.isNull());
}

void tst_Logger::childProcess_data()
{
    QTest::addColumn<QByteArray>("scenario");
    QTest::addColumn<bool>("crashes");
    QTest::addColumn<QByteArray>("expectedErr");

    QTest::newRow("no appenders anywhere")
        << QByteArray("no-appenders") << false
        << QByteArray("No appenders registered with logger\n[Info   ] <first> one\n"
                      "[Warn   ] <second> two\n");
    QTest::newRow("fatal after appenders")
        << QByteArray("fatal") << true << QByteArray("[Fatal  ] <boom> end\n");
    QTest::newRow("fatal without appenders")
        << QByteArray("fatal-none") << true
        << QByteArray("No appenders registered with logger\n[Fatal  ] <boom> end\n");
    QTest::newRow("assert") << QByteArray("assert") << true
                            << QByteArray("[Fatal  ] <check> ASSERT: \"x > 1\"\n");
    QTest::newRow("qFatal") << QByteArray("qfatal") << true << QByteArray("Fatal:gone 5\n");
    QTest::newRow("post routine ends the global logger")
        << QByteArray("post-routine") << false
        << QByteArray(
               "main deleted\nNo appenders registered with logger\n[Info   ] <after> again\n");
}

void tst_Logger::childProcess()
{
    QFETCH(QByteArray, scenario);
    QFETCH(bool, crashes);
    QFETCH(QByteArray, expectedErr);

    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("ZU_LOGGER_CHILD"), QString::fromLatin1(scenario));
    env.remove(QStringLiteral("QT_MESSAGE_PATTERN"));
    child.setProcessEnvironment(env);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    QVERIFY(child.waitForFinished(60000));
    QCOMPARE(child.exitStatus() == QProcess::CrashExit, crashes);
    QCOMPARE(child.readAllStandardError(), expectedErr);
}

ZU_TEST_MAIN(tst_Logger)
#include "tst_logger.moc"
