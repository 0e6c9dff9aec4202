#include "support/ZuTest.h"

#include <zucore/LoggerAbstractStringAppender.h>

#include <QThread>

namespace {

// Formats only; never registered anywhere.
struct PatternAppender : LoggerAbstractStringAppender
{
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &) override
    { }
};

const QDateTime stamp(QDate(2024, 3, 5), QTime(7, 8, 9, 45));
const char *const signature = "bool ZuProcess::exec(const QString&)";

} // namespace

class tst_LoggerFormat : public QObject
{
    Q_OBJECT

private slots:
    void formattedString_data();
    void formattedString();
    void formattedString_badPatterns_data();
    void formattedString_badPatterns();
    void emptyPatternGivesNull();
    void timeFormats_data();
    void timeFormats();
    void cleanupFuncinfo_data();
    void cleanupFuncinfo();
    void cleanupFuncinfo_malformed_data();
    void cleanupFuncinfo_malformed();
};

void tst_LoggerFormat::formattedString_data()
{
    QTest::addColumn<QString>("pattern"); // null: keep the default pattern
    QTest::addColumn<int>("level");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("expected");

    const QByteArray path("/src/core/zu.cpp");
    QTest::newRow("default pattern") << QString() << int(Logger::Debug) << path
                                     << "2024-03-05T07:08:09.045 [Debug  ] <ZuProcess::exec> hello";
    QTest::newRow("type -7 Debug") << "[%{type:-7}]" << int(Logger::Debug) << path << "[Debug  ]";
    QTest::newRow("type -7 Warn") << "[%{type:-7}]" << int(Logger::Warning) << path << "[Warn   ]";
    QTest::newRow("type 7") << "[%{type:7}]" << int(Logger::Info) << path << "[   Info]";
    QTest::newRow("type out of range") << "[%{type:3}]" << 9 << path << "[   ]";
    QTest::newRow("width never cuts") << "%{message:3}" << 0 << path << "hello";
    QTest::newRow("Type") << "%{Type}" << int(Logger::Warning) << path << "WARN";
    QTest::newRow("typeOne") << "%{typeOne}" << int(Logger::Warning) << path << "w";
    QTest::newRow("TypeOne") << "%{TypeOne}" << int(Logger::Warning) << path << "W";
    QTest::newRow("File") << "%{File}" << 0 << path << "/src/core/zu.cpp";
    QTest::newRow("file slashes") << "%{file}" << 0 << path << "zu.cpp";
    QTest::newRow("file backslashes")
        << "%{file}" << 0 << QByteArray("C:\\src\\zu.cpp") << "zu.cpp";
    QTest::newRow("file bare") << "%{file:-8}|" << 0 << QByteArray("zu.cpp") << "zu.cpp  |";
    QTest::newRow("file trailing slash") << "[%{file}]" << 0 << QByteArray("src/") << "[]";
    QTest::newRow("null file") << "[%{File}|%{file}]" << 0 << QByteArray() << "[|]";
    QTest::newRow("line") << "%{line:5}" << 0 << path << "   42";
    QTest::newRow("Function") << "%{Function}" << 0 << path << QString::fromLatin1(signature);
    QTest::newRow("function") << "<%{function}>" << 0 << path << "<ZuProcess::exec>";
    QTest::newRow("message category") << "%{category}: %{message}" << 0 << path << "net: hello";
    QTest::newRow("several fields") << "%{typeOne}/%{line} %{message}" << 1 << path << "d/42 hello";
    QTest::newRow("unknown command") << "%{foo}" << 0 << path << "%foo";
    QTest::newRow("unknown with width") << "%{foo:-6}|" << 0 << path << "%foo  |";
    QTest::newRow("doubled marker") << "100%% done" << 0 << path << "100%done";
    QTest::newRow("percent last") << "50%" << 0 << path << "50%";
    QTest::newRow("percent last but one") << "ends %x" << 0 << path << "ends %x";
    QTest::newRow("width not a number") << "%{type:x}" << 1 << path << "Debug}";
    QTest::newRow("lone dash width") << "%{type:-}" << 1 << path << "Debug";
    QTest::newRow("plus is no width") << "%{type:+5}" << 1 << path << "Debug5}";
    QTest::newRow("non-letter command") << "%{ x}" << 0 << path << "%x}";
    QTest::newRow("unicode letters")
        << QString::fromUtf8("%{t\xc3\xbfpe}") << 0 << path << QString::fromUtf8("%t\xc3\xbfpe");
    QTest::newRow("field without brace") << "at %{line" << 0 << path << "at 42";
    QTest::newRow("time default") << "%{time}" << 0 << path << "07:08:09.045";
    QTest::newRow("time format") << "%{time}{yyyy}!" << 0 << path << "2024!";
    QTest::newRow("time unterminated") << "%{time}{yyyy" << 0 << path << "07:08:09.045{yyyy";
    QTest::newRow("time at end") << "%{time" << 0 << path << "07:08:09.045";
    QTest::newRow("time brace as format") << "%{time}{}H}" << 0 << path << "}7";
    QTest::newRow("time width") << "%{time:-14}{HH}|" << 0 << path << "07            |";
    QTest::newRow("pid") << "%{pid}" << 0 << path
                         << QString::number(QCoreApplication::applicationPid());
    QTest::newRow("appname") << "%{appname}" << 0 << path << QCoreApplication::applicationName();
    QTest::newRow("threadid") << "%{threadid}" << 0 << path
                              << QStringLiteral("0x%1").arg(quintptr(QThread::currentThread()), 0,
                                                            16);
}

void tst_LoggerFormat::formattedString()
{
    QFETCH(QString, pattern);
    QFETCH(int, level);
    QFETCH(QByteArray, file);
    QFETCH(QString, expected);

    PatternAppender appender;
    if (!pattern.isNull())
        appender.setFormat(pattern);
    QCOMPARE(appender.formattedString(stamp, Logger::LogLevel(level), file.constData(), 42,
                                      signature, QStringLiteral("net"), QStringLiteral("hello")),
             expected);
}

void tst_LoggerFormat::formattedString_badPatterns_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");

    QTest::newRow("lone percent") << "%"
                                  << "%";
    QTest::newRow("percent brace") << "%{"
                                   << "%{";
    QTest::newRow("three chars") << "%{}"
                                 << "%";
    QTest::newRow("colon at end") << "%{type:"
                                  << "Info";
    QTest::newRow("dash at end") << "%{type:-"
                                 << "Info";
    QTest::newRow("huge width") << "%{type:99999999999}"
                                << "Info";
    QTest::newRow("only markers") << "%%%%%%"
                                  << "%%";
    QTest::newRow("time brace at end") << "%{time}{"
                                       << "07:08:09.045{";
    QTest::newRow("time empty pair") << "%{time}{}"
                                     << "07:08:09.045{}";
}

void tst_LoggerFormat::formattedString_badPatterns()
{
    QFETCH(QString, pattern);
    QFETCH(QString, expected);

    PatternAppender appender;
    appender.setFormat(pattern);
    QCOMPARE(
        appender.formattedString(stamp, Logger::Info, nullptr, 0, nullptr, QString(), QString()),
        expected);
}

void tst_LoggerFormat::emptyPatternGivesNull()
{
    PatternAppender appender;
    appender.setFormat(QString(""));
    QVERIFY(appender.formattedString(stamp, Logger::Info, "f", 1, "g()", "c", "m").isNull());
}

// The walk writes common date formats itself; whatever it writes must equal QDateTime's text.
void tst_LoggerFormat::timeFormats_data()
{
    QTest::addColumn<QDateTime>("timeStamp");
    QTest::addColumn<QString>("format");

    const QStringList formats { "yyyy-MM-ddTHH:mm:ss.zzz",
                                "dd.MM.yyyy HH:mm",
                                "yyyyMMdd",
                                "yy",
                                "d/M/y",
                                "hh:mm AP",
                                "ddd MMM",
                                "'at' HH",
                                "zzzz",
                                "yyyyy",
                                "H:m:s.z",
                                "t",
                                QString::fromUtf8("HH \xc3\xbc"),
                                "x T z",
                                "MMMM" };
    const QList<QDateTime> stamps { stamp, QDateTime(QDate(999, 12, 31), QTime(23, 59, 59, 999)),
                                    QDateTime() };
    for (const QDateTime &ts : stamps) {
        for (const QString &format : formats)
            QTest::addRow("%s %s", qPrintable(ts.toString(Qt::ISODate)), qPrintable(format))
                << ts << format;
    }
}

void tst_LoggerFormat::timeFormats()
{
    QFETCH(QDateTime, timeStamp);
    QFETCH(QString, format);

    PatternAppender appender;
    appender.setFormat(QStringLiteral("%{time}{") + format + QLatin1Char('}'));
    QCOMPARE(appender.formattedString(timeStamp, Logger::Info, "", 0, "", "", ""),
             timeStamp.toString(format));
}

void tst_LoggerFormat::cleanupFuncinfo_data()
{
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("method") << QByteArray(signature) << QByteArray("ZuProcess::exec");
    QTest::newRow("template") << QByteArray("QList<int> Foo<T>::baz() const [with T = int]")
                              << QByteArray("Foo::baz");
    QTest::newRow("operator<") << QByteArray("bool Foo::operator<(const Foo&) const")
                               << QByteArray("Foo::operator<");
    QTest::newRow("lambda") << QByteArray("void Foo::bar()::<lambda(int)>")
                            << QByteArray("Foo::bar::lambda");
    QTest::newRow("lambda without arguments")
        << QByteArray("void Foo::bar()::<lambda()>") << QByteArray("Foo::bar::lambda");
    QTest::newRow("lambda in template")
        << QByteArray("auto Foo<int>::run()::<lambda(const QString&)>")
        << QByteArray("Foo::run::lambda");
    QTest::newRow("free function") << QByteArray("int main(int, char**)") << QByteArray("main");
    QTest::newRow("static") << QByteArray("static void Foo::run()") << QByteArray("Foo::run");
    QTest::newRow("reference result")
        << QByteArray("const QString& Foo::name() const") << QByteArray("Foo::name");
    QTest::newRow("pointer mark") << QByteArray("QString *Foo::ptr()") << QByteArray("Foo::ptr");
    QTest::newRow("reference mark") << QByteArray("QString &&Foo::ref()") << QByteArray("Foo::ref");
    QTest::newRow("operator()") << QByteArray("bool Foo::operator()(int)")
                                << QByteArray("Foo::operator()");
    QTest::newRow("operator<=") << QByteArray("bool Foo::operator<=(const Foo&) const")
                                << QByteArray("Foo::operator<=");
    QTest::newRow("operator>") << QByteArray("bool Foo::operator>(const Foo&) const")
                               << QByteArray("Foo::operator>");
    QTest::newRow("operator>=") << QByteArray("bool Foo::operator>=(const Foo&) const")
                                << QByteArray("Foo::operator>=");
    QTest::newRow("nested templates")
        << QByteArray("void Foo<Bar<int> >::baz()") << QByteArray("Foo::baz");
    QTest::newRow("function pointer result")
        << QByteArray("void (*Foo::handler(int))(double)") << QByteArray("(*Foo::handler");
    QTest::newRow("trailing brackets") << QByteArray("void f() [x] [y]") << QByteArray("f");
}

void tst_LoggerFormat::cleanupFuncinfo()
{
    QFETCH(QByteArray, signature);
    QFETCH(QByteArray, expected);

    QCOMPARE(LoggerAbstractStringAppender::qCleanupFuncinfo(signature.constData()), expected);
    QCOMPARE(LoggerAbstractStringAppender::stripFunctionName(signature.constData()),
             QString::fromLatin1(expected));
}

void tst_LoggerFormat::cleanupFuncinfo_malformed_data()
{
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("null") << QByteArray() << QByteArray();
    QTest::newRow("empty") << QByteArray("") << QByteArray("");
    QTest::newRow("parentheses only") << QByteArray("()") << QByteArray("()");
    QTest::newRow("closing only") << QByteArray("))))") << QByteArray("))))");
    QTest::newRow("opening only") << QByteArray("((((") << QByteArray("((((");
    QTest::newRow("unbalanced") << QByteArray("x (y))") << QByteArray("x (y))");
    QTest::newRow("open argument list") << QByteArray("void f(int") << QByteArray("void f(int");
    QTest::newRow("brackets only") << QByteArray("[]") << QByteArray("[]");
    QTest::newRow("template at start") << QByteArray("<a>()") << QByteArray("<");
    QTest::newRow("template without name") << QByteArray("T<a>()") << QByteArray("T");
    QTest::newRow("stray less-than") << QByteArray(">a<b()") << QByteArray(">a<b");
    QTest::newRow("spaced operator<<")
        << QByteArray("Foo& Foo::operator <<(int)") << QByteArray("Foo& Foo::operator<<");
    QTest::newRow("operator words")
        << QByteArray("operator operator ()") << QByteArray("operatoroperator");
    QTest::newRow("lambda text without close")
        << QByteArray("void f()::<lambda(") << QByteArray("f");
}

void tst_LoggerFormat::cleanupFuncinfo_malformed()
{
    QFETCH(QByteArray, signature);
    QFETCH(QByteArray, expected);

    const QByteArray result = LoggerAbstractStringAppender::qCleanupFuncinfo(
        signature.isNull() ? nullptr : signature.constData());
    QCOMPARE(result, expected);
    QCOMPARE(result.isNull(), expected.isNull());
    QCOMPARE(LoggerAbstractStringAppender::stripFunctionName(
                 signature.isNull() ? nullptr : signature.constData())
                 .isNull(),
             expected.isNull());
}

ZU_TEST_MAIN(tst_LoggerFormat)
#include "tst_loggerformat.moc"
