#include "support/CapturingAppender.h"
#include "support/StderrCapture.h"
#include "support/TestFiles.h"
#include "support/ZuTest.h"

#include <zucore/LoggerConsoleAppender.h>
#include <zucore/LoggerFileAppender.h>

#include <QThread>

using zutest::contentOf;
using zutest::StderrCapture;
using zutest::writeFile;

namespace {

struct PatternAppender : LoggerAbstractStringAppender
{
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &) override
    { }
};

const QDateTime stamp(QDate(2024, 3, 5), QTime(7, 8, 9, 45));
const char *const path = "/src/core/zu.cpp";

// clang-format off
// The function is the one below unless given; with no file there is no function either.
const char *const exec = "bool ZuProcess::exec(const QString&)";
const struct { const char *name, *pattern; int level; const char *file, *expected, *function = exec; } patternRows[] = {
    // pattern null: the default one; expected null: a null string
    { "default pattern", nullptr, 1, path, "2024-03-05T07:08:09.045 [Debug  ] <ZuProcess::exec> hello" },
    { "empty pattern", "", 1, path, nullptr },
    { "type -7", "[%{type:-7}]", 3, path, "[Warn   ]" },
    { "type out of range", "[%{type:3}]", 9, path, "[   ]" },
    { "Type typeOne TypeOne", "%{Type}%{typeOne}%{TypeOne}", 3, path, "WARNwW" },
    { "line", "%{line:5}", 0, path, "   42" },
    { "field without brace", "at %{line", 0, path, "at 42" },
    { "File file", "%{File}|%{file}", 0, path, "/src/core/zu.cpp|zu.cpp" },
    { "file backslashes", "%{file}", 0, "C:\\src\\zu.cpp", "zu.cpp" },
    { "null file and function", "[%{File}|%{file}|%{Function}|%{function}]", 0, nullptr, "[|||]" },
    { "Function function", "%{Function}<%{function}>", 0, path, "bool ZuProcess::exec(const QString&)<ZuProcess::exec>" },
    { "category message", "%{category}: %{message}", 0, path, "net: hello" },
    { "doubled and last marker", "100%% done 50%", 0, path, "100%done 50%" },
    { "width not a number", "%{type:x}", 1, path, "Debug}" },
    { "time", "%{time} %{time}{yyyy}!", 0, path, "07:08:09.045 2024!" },
    { "time unterminated", "%{time}{yyyy", 0, path, "07:08:09.045{yyyy" },
    { "width beyond int", "%{type:99999999999}", 2, path, "Info" },
    { "template", "%{function}", 0, path, "Foo::baz", "QList<int> Foo<T>::baz() const [with T = int]" },
    { "operator()", "%{function}", 0, path, "Foo::operator()", "bool Foo::operator()(int)" },
    { "lambda in template", "%{function}", 0, path, "Foo::run::lambda", "auto Foo<int>::run()::<lambda(const QString&)>" },
    { "function pointer result", "%{function}", 0, path, "(*Foo::handler", "void (*Foo::handler(int))(double)" },
    { "empty", "%{function}", 0, path, "", "" }, // malformed ones come back as far as the clean-up got
    { "open argument list", "%{function}", 0, path, "void f(int", "void f(int" },
};
// clang-format on

// Writes one record; gives what that printed on standard error.
QByteArray writeRecord(LoggerAbstractAppender &appender, const QString &message,
                       Logger::LogLevel level = Logger::Info)
{
    StderrCapture err;
    appender.write(QDateTime::currentDateTime(), level, "src/f.cpp", 3, "void f()", QString(),
                   message);
    return err.take();
}

} // namespace

class tst_LoggerAppenders : public QObject
{
    Q_OBJECT

private slots:
    void formattedString_data()
    {
        QTest::addColumn<QDateTime>("timeStamp");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<int>("level");
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QByteArray>("function");
        QTest::addColumn<QString>("expected");
        for (const auto &row : patternRows)
            QTest::newRow(row.name)
                << stamp << (row.pattern ? QString::fromUtf8(row.pattern) : QString()) << row.level
                << QByteArray(row.file) << (row.file ? QByteArray(row.function) : QByteArray())
                << (row.expected ? QString::fromUtf8(row.expected) : QString());
        QTest::newRow("computed fields")
            << stamp << "%{pid}|%{appname}|%{threadid}" << 0 << QByteArray(path) << QByteArray(exec)
            << QStringLiteral("%1|%2|0x%3")
                   .arg(QCoreApplication::applicationPid())
                   .arg(QCoreApplication::applicationName())
                   .arg(quintptr(QThread::currentThread()), 0, 16);
        QTest::newRow("width INT_MIN, padding bounded")
            << stamp << "%{type:-2147483648}|" << 2 << QByteArray(path) << QByteArray(exec)
            << QString("Info").leftJustified(65536) + '|';
        // The walk writes common date formats itself; whatever it writes must equal QDateTime's.
        const QDateTime late(QDate(999, 12, 31), QTime(23, 59, 59, 999));
        for (const QDateTime &ts : { stamp, late, QDateTime() })
            for (const char *format : { "yyyy-MM-ddTHH:mm:ss.zzz", "dd.MM.yy hh:mm AP",
                                        "d/M/y H:m:s.z", "ddd MMMM 'at' t", "zzzz yyyyy" })
                QTest::addRow("%s %s", qPrintable(ts.toString(Qt::ISODate)), format)
                    << ts << QString("=%{time}{%1}").arg(format) << 0 << QByteArray(path)
                    << QByteArray(exec) << '=' + ts.toString(format);
    }

    void formattedString()
    {
        QFETCH(QDateTime, timeStamp);
        QFETCH(QString, pattern);
        QFETCH(int, level);
        QFETCH(QByteArray, file);
        QFETCH(QByteArray, function);
        QFETCH(QString, expected);
        PatternAppender appender;
        if (!pattern.isNull())
            appender.setFormat(pattern);
        // The walk caches the last name it cleaned: a buffer reused by every row must not fool it.
        static char reused[128];
        qstrncpy(reused, function.constData(), sizeof reused);
        const QString result = appender.formattedString(
            timeStamp, Logger::LogLevel(level), file.constData(), 42,
            function.isNull() ? nullptr : reused, QStringLiteral("net"), QStringLiteral("hello"));
        QCOMPARE(result, expected);
        QCOMPARE(result.isNull(), expected.isNull());
    }

    void detailsLevel_data()
    {
        QTest::addColumn<QString>("details"); // by name; null keeps the initial level
        QTest::addColumn<QString>("taken");
        QTest::newRow("initial") << QString() << "1,2,3,4,5";
        QTest::newRow("trace") << QStringLiteral("Trace") << "0,1,2,3,4,5";
        QTest::newRow("warning") << QStringLiteral(" warning") << "3,4,5";
        QTest::newRow("unknown name") << QStringLiteral("warn") << "1,2,3,4,5";
    }

    void detailsLevel()
    {
        QFETCH(QString, details);
        zutest::CapturingAppender appender;
        if (!details.isNull()) {
            appender.setDetailsLevel(Logger::Fatal);
            appender.setDetailsLevel(details);
        }
        for (int level = Logger::Trace; level <= Logger::Fatal; ++level)
            writeRecord(appender, QString::number(level), Logger::LogLevel(level));
        QTEST(appender.messages().join(','), "taken");
    }

    void console()
    {
        const QByteArray saved = qgetenv("QT_MESSAGE_PATTERN");
        qputenv("QT_MESSAGE_PATTERN", "");
        LoggerConsoleAppender appender;
        QCOMPARE(writeRecord(appender, "hi"), QByteArray("[Info   ] <f> hi\n")); // no time stamp
        qputenv("QT_MESSAGE_PATTERN", "%{typeOne} %{message}");
        appender.setFormat(QStringLiteral("%{message}|"));
        QCOMPARE(writeRecord(appender, "hi"), QByteArray("i hi\n")); // the environment wins
        appender.ignoreEnvironmentPattern(true);
        QCOMPARE(writeRecord(appender, "hi"), QByteArray("hi|"));
        qputenv("QT_MESSAGE_PATTERN", saved);
    }

    void fileAppendsAndSwitchesNames()
    {
        writeFile("a.log", "old\n");
        LoggerFileAppender appender(QStringLiteral("a.log"));
        writeRecord(appender, QStringLiteral("one"));
        const QByteArray text = contentOf("a.log"); // flushed, no line break added
        QVERIFY2(text.startsWith("old\n20") && text.endsWith(" [Info   ] <f> one"), text);
        appender.setFormat(QStringLiteral("%{message}\n"));
        appender.setFileName(QStringLiteral("b.log"));
        QVERIFY(!QFile::exists(QStringLiteral("b.log")));
        writeRecord(appender, QStringLiteral("two"));
        QVERIFY(appender.reopenFile());
        writeRecord(appender, QStringLiteral("three"));
        appender.closeFile();
        writeRecord(appender, QStringLiteral("four"));
        QCOMPARE(contentOf("a.log"), text);
        QCOMPARE(contentOf("b.log"), QByteArray("two\nthree\nfour\n"));
    }

    void fileDiagnostics()
    {
        StderrCapture err;
        LoggerFileAppender nameless { QString() };
        QCOMPARE(err.take(),
                 QByteArray("<FileAppender::FileAppender> File name is empty. The appender will "
                            "do nothing\n"));
        QCOMPARE(writeRecord(nameless, "lost"), QByteArray());
        QVERIFY(!nameless.reopenFile());

        LoggerFileAppender appender(QStringLiteral("missing/deeper/x.log"));
        appender.setFormat(QStringLiteral("%{message}\n"));
        const QByteArray line
            = "<FileAppender::append> Cannot open the log file missing/deeper/x.log\n";
        QCOMPARE(writeRecord(appender, "lost 1") + writeRecord(appender, "lost 2"), line + line);
        QVERIFY(QDir().mkpath(QStringLiteral("missing/deeper")));
        QCOMPARE(writeRecord(appender, "kept"), QByteArray());
        QCOMPARE(contentOf(appender.fileName()), QByteArray("kept\n"));
    }
};

ZU_TEST_MAIN(tst_LoggerAppenders)
#include "tst_loggerappenders.moc"
