#include "support/ZuTest.h"

#include <zucore/LoggerAbstractStringAppender.h>

#include <QThread>

namespace {

struct PatternAppender : LoggerAbstractStringAppender
{
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &) override
    { }
};

const QDateTime stamp(QDate(2024, 3, 5), QTime(7, 8, 9, 45));
const char *const signature = "bool ZuProcess::exec(const QString&)";
const char *const path = "/src/core/zu.cpp";

struct PatternRow
{
    const char *name, *pattern; // pattern null: keep the default
    int level;
    const char *file, *expected;
};

// clang-format off
const PatternRow patternRows[] = {
    { "default pattern", nullptr, 1, path, "2024-03-05T07:08:09.045 [Debug  ] <ZuProcess::exec> hello" },
    { "type -7 Debug", "[%{type:-7}]", 1, path, "[Debug  ]" },
    { "type -7 Warn", "[%{type:-7}]", 3, path, "[Warn   ]" },
    { "type 7", "[%{type:7}]", 2, path, "[   Info]" },
    { "type out of range", "[%{type:3}]", 9, path, "[   ]" },
    { "width never cuts", "%{message:3}", 0, path, "hello" },
    { "Type", "%{Type}", 3, path, "WARN" },
    { "typeOne", "%{typeOne}", 3, path, "w" },
    { "TypeOne", "%{TypeOne}", 3, path, "W" },
    { "File", "%{File}", 0, path, "/src/core/zu.cpp" },
    { "file slashes", "%{file}", 0, path, "zu.cpp" },
    { "file backslashes", "%{file}", 0, "C:\\src\\zu.cpp", "zu.cpp" },
    { "file bare", "%{file:-8}|", 0, "zu.cpp", "zu.cpp  |" },
    { "file trailing slash", "[%{file}]", 0, "src/", "[]" },
    { "null file", "[%{File}|%{file}]", 0, nullptr, "[|]" },
    { "line", "%{line:5}", 0, path, "   42" },
    { "Function", "%{Function}", 0, path, "bool ZuProcess::exec(const QString&)" },
    { "function", "<%{function}>", 0, path, "<ZuProcess::exec>" },
    { "message category", "%{category}: %{message}", 0, path, "net: hello" },
    { "several fields", "%{typeOne}/%{line} %{message}", 1, path, "d/42 hello" },
    { "unknown command", "%{foo}", 0, path, "%foo" },
    { "unknown with width", "%{foo:-6}|", 0, path, "%foo  |" },
    { "doubled marker", "100%% done", 0, path, "100%done" },
    { "percent last", "50%", 0, path, "50%" },
    { "percent last but one", "ends %x", 0, path, "ends %x" },
    { "width not a number", "%{type:x}", 1, path, "Debug}" },
    { "lone dash width", "%{type:-}", 1, path, "Debug" },
    { "plus is no width", "%{type:+5}", 1, path, "Debug5}" },
    { "non-letter command", "%{ x}", 0, path, "%x}" },
    { "unicode letters", "%{t\xc3\xbfpe}", 0, path, "%t\xc3\xbfpe" },
    { "field without brace", "at %{line", 0, path, "at 42" },
    { "time default", "%{time}", 0, path, "07:08:09.045" },
    { "time format", "%{time}{yyyy}!", 0, path, "2024!" },
    { "time unterminated", "%{time}{yyyy", 0, path, "07:08:09.045{yyyy" },
    { "time at end", "%{time", 0, path, "07:08:09.045" },
    { "time brace as format", "%{time}{}H}", 0, path, "}7" },
    { "time width", "%{time:-14}{HH}|", 0, path, "07            |" },
    // Bad patterns: no crash, the documented text.
    { "lone percent", "%", 2, nullptr, "%" },
    { "percent brace", "%{", 2, nullptr, "%{" },
    { "three chars", "%{}", 2, nullptr, "%" },
    { "colon at end", "%{type:", 2, nullptr, "Info" },
    { "dash at end", "%{type:-", 2, nullptr, "Info" },
    { "width beyond int", "%{type:99999999999}", 2, nullptr, "Info" },
    { "only markers", "%%%%%%", 2, nullptr, "%%" },
    { "time brace at end", "%{time}{", 2, nullptr, "07:08:09.045{" },
    { "time empty pair", "%{time}{}", 2, nullptr, "07:08:09.045{}" },
};

const char *const cleanupRows[][3] = {
    // name, signature, expected
    { "method", "bool ZuProcess::exec(const QString&)", "ZuProcess::exec" },
    { "template", "QList<int> Foo<T>::baz() const [with T = int]", "Foo::baz" },
    { "operator<", "bool Foo::operator<(const Foo&) const", "Foo::operator<" },
    { "lambda", "void Foo::bar()::<lambda(int)>", "Foo::bar::lambda" },
    { "lambda without arguments", "void Foo::bar()::<lambda()>", "Foo::bar::lambda" },
    { "lambda in template", "auto Foo<int>::run()::<lambda(const QString&)>", "Foo::run::lambda" },
    { "free function", "int main(int, char**)", "main" },
    { "static", "static void Foo::run()", "Foo::run" },
    { "reference result", "const QString& Foo::name() const", "Foo::name" },
    { "pointer mark", "QString *Foo::ptr()", "Foo::ptr" },
    { "reference marks", "QString &&Foo::ref()", "Foo::ref" },
    { "operator()", "bool Foo::operator()(int)", "Foo::operator()" },
    { "operator<=", "bool Foo::operator<=(const Foo&) const", "Foo::operator<=" },
    { "operator>", "bool Foo::operator>(const Foo&) const", "Foo::operator>" },
    { "operator>=", "bool Foo::operator>=(const Foo&) const", "Foo::operator>=" },
    { "nested templates", "void Foo<Bar<int> >::baz()", "Foo::baz" },
    { "function pointer result", "void (*Foo::handler(int))(double)", "(*Foo::handler" },
    { "trailing brackets", "void f() [x] [y]", "f" },
    // Malformed: returned as far as the clean-up got.
    { "empty", "", "" },
    { "parentheses only", "()", "()" },
    { "closing only", "))))", "))))" },
    { "opening only", "((((", "((((" },
    { "unbalanced", "x (y))", "x (y))" },
    { "open argument list", "void f(int", "void f(int" },
    { "brackets only", "[]", "[]" },
    { "template at start", "<a>()", "<" },
    { "template without name", "T<a>()", "T" },
    { "stray less-than", ">a<b()", ">a<b" },
    { "spaced operator<<", "Foo& Foo::operator <<(int)", "Foo& Foo::operator<<" },
    { "operator words", "operator operator ()", "operatoroperator" },
    { "unclosed lambda", "void f()::<lambda(", "f" },
};
// clang-format on

} // namespace

class tst_LoggerFormat : public QObject
{
    Q_OBJECT

private slots:
    void formattedString_data();
    void formattedString();
    void computedFields();
    void timeFormats_data();
    void timeFormats();
    void cleanupFuncinfo_data();
    void cleanupFuncinfo();
};

void tst_LoggerFormat::formattedString_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<int>("level");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("expected");
    for (const PatternRow &row : patternRows)
        QTest::newRow(row.name) << (row.pattern ? QString::fromUtf8(row.pattern) : QString())
                                << row.level << QByteArray(row.file)
                                << QString::fromUtf8(row.expected);
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

void tst_LoggerFormat::computedFields()
{
    PatternAppender appender;
    appender.setFormat(QStringLiteral("%{pid}|%{appname}|%{threadid}"));
    QCOMPARE(appender.formattedString(stamp, Logger::Info, "f", 1, "g()", "c", "m"),
             QStringLiteral("%1|%2|0x%3")
                 .arg(QCoreApplication::applicationPid())
                 .arg(QCoreApplication::applicationName())
                 .arg(quintptr(QThread::currentThread()), 0, 16));
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
    for (const auto &row : cleanupRows)
        QTest::newRow(row[0]) << QByteArray(row[1]) << QByteArray(row[2]);
    QTest::newRow("null") << QByteArray() << QByteArray();
}

void tst_LoggerFormat::cleanupFuncinfo()
{
    QFETCH(QByteArray, signature);
    QFETCH(QByteArray, expected);
    const char *name = signature.isNull() ? nullptr : signature.constData();
    const QByteArray result = LoggerAbstractStringAppender::qCleanupFuncinfo(name);
    QCOMPARE(result, expected);
    QCOMPARE(result.isNull(), expected.isNull());
    const QString stripped = LoggerAbstractStringAppender::stripFunctionName(name);
    QCOMPARE(stripped, QString::fromLatin1(expected));
    QCOMPARE(stripped.isNull(), expected.isNull());
}

ZU_TEST_MAIN(tst_LoggerFormat)
#include "tst_loggerformat.moc"
