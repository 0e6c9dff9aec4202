#include "platform/DebugOutput.h"
#include "support/CapturingAppender.h"
#include "support/StderrCapture.h"
#include "support/ZuTest.h"

#include <zucore/LoggerConsoleAppender.h>
#include <zucore/LoggerFileAppender.h>
#include <zucore/LoggerOutputDebugAppender.h>

#include <QRegularExpression>

using zutest::StderrCapture;

namespace {

// Hands out a fresh pattern for every record and counts how often it was asked.
struct CountingPatternAppender : LoggerAbstractStringAppender
{
    QString format() const override { return QStringLiteral("#%1 %{message}").arg(++calls); }
    void append(const QDateTime &ts, Logger::LogLevel level, const char *file, int line,
                const char *function, const QString &category, const QString &message) override
    {
        lines << formattedString(ts, level, file, line, function, category, message);
    }
    mutable int calls = 0;
    QStringList lines;
};

void writeRecord(LoggerAbstractAppender &appender, const QString &message,
                 Logger::LogLevel level = Logger::Info)
{
    appender.write(QDateTime::currentDateTime(), level, "src/f.cpp", 3, "void f()", QString(),
                   message);
}

QByteArray readFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

} // namespace

class tst_LoggerAppenders : public QObject
{
    Q_OBJECT

private slots:
    void detailsLevel_data();
    void detailsLevel();
    void patternAskedPerRecord();
    void console_data();
    void console();
    void outputDebugWithoutDebugger();
    void fileDefaultPatternHasNoLineBreak();
    void fileAppendsAndSwitchesNames();
    void fileEmptyName();
    void fileUnwritablePath_data();
    void fileUnwritablePath();
};

void tst_LoggerAppenders::detailsLevel_data()
{
    QTest::addColumn<QString>("details"); // by name; null keeps the initial level
    QTest::addColumn<QList<int>>("passing");

    QTest::newRow("initial") << QString() << QList<int> { 1, 2, 3, 4, 5 };
    QTest::newRow("trace") << "Trace" << QList<int> { 0, 1, 2, 3, 4, 5 };
    QTest::newRow("warning") << " warning" << QList<int> { 3, 4, 5 };
    QTest::newRow("fatal") << "FATAL" << QList<int> { 5 };
    QTest::newRow("warn is unknown") << "warn" << QList<int> { 1, 2, 3, 4, 5 };
    QTest::newRow("garbage") << "loud" << QList<int> { 1, 2, 3, 4, 5 };
}

void tst_LoggerAppenders::detailsLevel()
{
    QFETCH(QString, details);
    QFETCH(QList<int>, passing);

    zutest::CapturingAppender appender;
    if (!details.isNull()) {
        appender.setDetailsLevel(Logger::Fatal);
        appender.setDetailsLevel(details);
    }
    for (int level = Logger::Trace; level <= Logger::Fatal; ++level)
        writeRecord(appender, QString::number(level), Logger::LogLevel(level));
    QList<int> passed;
    for (const zutest::LogRecord &record : appender.records())
        passed << record.level;
    QCOMPARE(passed, passing);
    QCOMPARE(int(appender.detailsLevel()), passing.first());
}

void tst_LoggerAppenders::patternAskedPerRecord()
{
    CountingPatternAppender appender;
    appender.setDetailsLevel(Logger::Warning);
    writeRecord(appender, QStringLiteral("dropped"), Logger::Info);
    QCOMPARE(appender.calls, 0); // filtered before any text is formed
    writeRecord(appender, QStringLiteral("a"), Logger::Warning);
    writeRecord(appender, QStringLiteral("b"), Logger::Error);
    QCOMPARE(appender.lines, QStringList({ "#1 a", "#2 b" }));
}

void tst_LoggerAppenders::console_data()
{
    QTest::addColumn<QByteArray>("envPattern"); // null: unset
    QTest::addColumn<QString>("ownPattern"); // null: the console's default
    QTest::addColumn<bool>("ignoreEnv");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("default, no time stamp")
        << QByteArray() << QString() << false << QByteArray("[Info   ] <f> hi\n");
    QTest::newRow("own pattern") << QByteArray() << "%{line}:%{message}" << false
                                 << QByteArray("3:hi");
    QTest::newRow("environment wins")
        << QByteArray("%{typeOne} %{message}") << "x" << false << QByteArray("i hi\n");
    QTest::newRow("environment ignored")
        << QByteArray("%{typeOne} %{message}") << "%{message}|" << true << QByteArray("hi|");
    QTest::newRow("empty environment")
        << QByteArray("") << QString() << false << QByteArray("[Info   ] <f> hi\n");
}

void tst_LoggerAppenders::console()
{
    QFETCH(QByteArray, envPattern);
    QFETCH(QString, ownPattern);
    QFETCH(bool, ignoreEnv);
    QFETCH(QByteArray, expected);

    const QByteArray saved = qgetenv("QT_MESSAGE_PATTERN");
    if (envPattern.isNull())
        qunsetenv("QT_MESSAGE_PATTERN");
    else
        qputenv("QT_MESSAGE_PATTERN", envPattern);
    LoggerConsoleAppender appender;
    if (!ownPattern.isNull())
        appender.setFormat(ownPattern);
    appender.ignoreEnvironmentPattern(ignoreEnv);
    StderrCapture err;
    writeRecord(appender, QStringLiteral("hi"));
    const QByteArray written = err.take();
    qputenv("QT_MESSAGE_PATTERN", saved);
    QCOMPARE(written, expected);
}

void tst_LoggerAppenders::outputDebugWithoutDebugger()
{
    if (ZuPlatform::isDebuggerAttached())
        QSKIP("a debugger is attached");
    LoggerOutputDebugAppender appender;
    StderrCapture err;
    writeRecord(appender, QStringLiteral("to nobody"));
    QCOMPARE(err.take(), QByteArray());
}

void tst_LoggerAppenders::fileDefaultPatternHasNoLineBreak()
{
    {
        LoggerFileAppender appender(QStringLiteral("plain.log"));
        writeRecord(appender, QStringLiteral("one"));
        writeRecord(appender, QStringLiteral("two"), Logger::Error);
    }
    const QString text = QString::fromLocal8Bit(readFile(QStringLiteral("plain.log")));
    const QString stampRx = QStringLiteral("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}");
    QVERIFY2(QRegularExpression(
                 QStringLiteral("^%1 \\[Info   \\] <f> one%1 \\[Error  \\] <f> two$").arg(stampRx))
                 .match(text)
                 .hasMatch(),
             qPrintable(text));
}

void tst_LoggerAppenders::fileAppendsAndSwitchesNames()
{
    QFile old(QStringLiteral("a.log"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("old\n");
    old.close();

    LoggerFileAppender appender(QStringLiteral("a.log"));
    appender.setFormat(QStringLiteral("%{message}\n"));
    writeRecord(appender, QStringLiteral("one"));
    QCOMPARE(readFile(QStringLiteral("a.log")), QByteArray("old\none\n")); // flushed per record

    appender.setFileName(QStringLiteral("b.log"));
    QCOMPARE(appender.fileName(), QStringLiteral("b.log"));
    QVERIFY(!QFile::exists(QStringLiteral("b.log")));
    writeRecord(appender, QStringLiteral("two"));
    QVERIFY(appender.reopenFile());
    writeRecord(appender, QStringLiteral("three"));
    appender.closeFile();
    writeRecord(appender, QStringLiteral("four"));
    QCOMPARE(readFile(QStringLiteral("a.log")), QByteArray("old\none\n"));
    QCOMPARE(readFile(QStringLiteral("b.log")), QByteArray("two\nthree\nfour\n"));
}

void tst_LoggerAppenders::fileEmptyName()
{
    StderrCapture err;
    LoggerFileAppender appender { QString() };
    QCOMPARE(err.take(),
             QByteArray("<FileAppender::FileAppender> File name is empty. The appender will do "
                        "nothing\n"));
    StderrCapture quiet;
    writeRecord(appender, QStringLiteral("lost"));
    QVERIFY(!appender.reopenFile());
    QVERIFY(!appender.openFile());
    QCOMPARE(quiet.take(), QByteArray());
}

void tst_LoggerAppenders::fileUnwritablePath_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<bool>("canRepair"); // by creating the missing folder
    QTest::newRow("missing folder") << "missing/deeper/x.log" << true;
    QTest::newRow("a directory") << "." << false;
}

void tst_LoggerAppenders::fileUnwritablePath()
{
    QFETCH(QString, fileName);
    QFETCH(bool, canRepair);

    LoggerFileAppender appender(fileName);
    appender.setFormat(QStringLiteral("%{message}\n"));
    StderrCapture err;
    writeRecord(appender, QStringLiteral("lost 1"));
    writeRecord(appender, QStringLiteral("lost 2"));
    const QByteArray line
        = "<FileAppender::append> Cannot open the log file " + fileName.toLocal8Bit() + '\n';
    QCOMPARE(err.take(), line + line);
    if (!canRepair)
        return;
    QVERIFY(QDir().mkpath(QFileInfo(fileName).path()));
    StderrCapture none;
    writeRecord(appender, QStringLiteral("kept"));
    QCOMPARE(none.take(), QByteArray());
    QCOMPARE(readFile(fileName), QByteArray("kept\n"));
}

ZU_TEST_MAIN(tst_LoggerAppenders)
#include "tst_loggerappenders.moc"
