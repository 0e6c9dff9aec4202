#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/ZuCore.h>
#include <zucore/ZuPrivatable.h>

#include <QStandardItemModel>
#include <QTimeZone>

class tst_ZuCore : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void datesAndFormats();
    void smallHelpers();
    void md5AndJson();
};

void tst_ZuCore::datesAndFormats()
{
    QCOMPARE(ZuCore::dateFormat() + '|' + ZuCore::dateTimeFormat(),
             QStringLiteral("MMM dd, yyyy|MMM dd, yyyy hh:mm:ss"));
    ZuCore::setDateFormat(QStringLiteral("dd.MM.yyyy"));
    QCOMPARE(ZuCore::dateFromString(QStringLiteral("09.03.2024")), QDate(2024, 3, 9));
    // A null date prints today; the stored forms below keep their fixed formats.
    QCOMPARE(ZuCore::dateToString(ZuCore::nullDate()),
             QDate::currentDate().toString(QStringLiteral("dd.MM.yyyy")));
    // A time inside a daylight saving gap: invalid but not QDateTime::isNull.
    const QDateTime halfValid(QDate(2021, 3, 28), QTime(2, 30), QTimeZone("Europe/Berlin"));
    QVERIFY(!halfValid.isNull() && ZuCore::isNullDateTime(halfValid));
    const QDateTime stamp(QDate(2023, 12, 31), QTime(23, 5, 9));
    QVERIFY(ZuCore::isNullDate(QDate(2021, 2, 30)) && !ZuCore::isNullDate(stamp.date()));
    QCOMPARE(ZuCore::toDateString(stamp, "n/a"), QStringLiteral("2023-12-31"));
    QCOMPARE(ZuCore::toDateTimeString(stamp.date(), "n/a"), QStringLiteral("2023-12-31 00:00:00"));
    QCOMPARE(ZuCore::fromDateTimeString(QStringLiteral("2023-12-31 23:05:09")), stamp);
    QCOMPARE(ZuCore::fromDateString(QStringLiteral("2023-12-31")), stamp.date());
    for (const QVariant &bad : { QVariant(), QVariant("31/12/2023") }) {
        QCOMPARE(ZuCore::toDateString(bad, "n/a"), QStringLiteral("n/a"));
        QCOMPARE(ZuCore::toDateTimeString(bad, "n/a"), QStringLiteral("n/a"));
        QVERIFY(ZuCore::isNullDate(ZuCore::fromDateString(bad)));
        QVERIFY(ZuCore::isNullDateTime(ZuCore::fromDateTimeString(bad)));
    }
}

void tst_ZuCore::smallHelpers()
{
    const QStringList names = { "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat" };
    QCOMPARE(ZuCore::mySqlDaysOfWeek(), names);
    for (int day = 1; day <= 7; ++day) {
        QCOMPARE(ZuCore::mySqlDayOfWeek(ZuCore::dayOfWeekQtToMySql(day)), names.at(day % 7));
        QCOMPARE(ZuCore::dayOfWeekMySqlToQt(ZuCore::dayOfWeekQtToMySql(day)), day);
    }
    for (int bad : { 0, 8 }) {
        QCOMPARE(ZuCore::dayOfWeekQtToMySql(bad) + ZuCore::dayOfWeekMySqlToQt(bad), 0);
        QCOMPARE(ZuCore::mySqlDayOfWeek(bad), QStringLiteral("Unknown Day"));
    }
    QCOMPARE(ZuCore::escapeField("O'Brien's \"x\"\\"), QString("O''Brien''s \"x\"\\"));
    QCOMPARE(ZuCore::checkChar().unicode(), ushort(10003));
    QCOMPARE(ZuCore::crossChar().unicode(), ushort(9747));
    QCOMPARE(ZuCore::intsToStrings({ 10, 9, 100, -5 }), QStringList({ "-5", "10", "100", "9" }));
    QCOMPARE(ZuCore::uintsToStrings({ 2147483648u, 7u }), QStringList({ "-2147483648", "7" }));
    QCOMPARE(ZuCore::stringsToInts({ "7", "x", "-3", "0x10" }), QList<int>({ 7, 0, -3, 0 }));
    QCOMPARE(ZuCore::stringsToUints({ "-1", "4294967295" }), QList<uint>({ 4294967295u, 0u }));
    QCOMPARE(int(ZuCore::ReadOnly | ZuCore::ModelOption8 | ZuCore::ModelOption16), 25);
    // Both are released without harm; the sanitizer build sees a leak or a mismatched delete.
    ZuPrivatable empty(nullptr);
    ZuPrivatable owner(new ZuPrivate);

    QStandardItemModel model(0, 2);
    for (const char *text : { "a", "b", "c", "b" }) {
        auto *first = new QStandardItem;
        first->setData(10 * model.rowCount(), Qt::UserRole);
        first->appendRow({ new QStandardItem, new QStandardItem("zz") });
        model.appendRow({ first, new QStandardItem(QString::fromLatin1(text)) });
    }
    QCOMPARE(ZuCore::matchValue(&model, "b", 1, Qt::DisplayRole), model.index(1, 1)); // first hit
    QCOMPARE(ZuCore::matchValue(&model, 30, 0, Qt::UserRole), model.index(3, 0));
    QVERIFY(!ZuCore::matchValue(&model, "zz", 1, Qt::DisplayRole).isValid()); // top level only
    QVERIFY(!ZuCore::matchValue(&model, "a", 5, Qt::DisplayRole).isValid());
}

void tst_ZuCore::md5AndJson()
{
    // Zero bytes, UTF-8 input over many blocks, and the padding edge at 56 bytes.
    QCOMPARE(ZuCore::md5(""), QStringLiteral("d41d8cd98f00b204e9800998ecf8427e"));
    QCOMPARE(ZuCore::md5(QString::fromUtf8("\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80x").repeated(300)),
             QStringLiteral("d3a272a265676cf858f4051b5b5f87c4"));
    QCOMPARE(ZuCore::md5(QString(56, 'q')), QStringLiteral("266ea7b18061f04ebe140d63ce648567"));

    zutest::LogCapture capture;
    const QJsonObject object = ZuCore::jsonObjFromString("{ \"b\": [1, 2], \"a\": \"\\u00e4\" }");
    QCOMPARE(ZuCore::stringFromJsonObj(object),
             QString::fromUtf8("{\"a\":\"\xc3\xa4\",\"b\":[1,2]}"));
    for (const char *bad : { "", "{\"a\":", "[1,2]" })
        QVERIFY(ZuCore::jsonObjFromString(bad).isEmpty());
    QCOMPARE(capture.messages(),
             QStringList({ "Invalid JSON...\n\n ", "Invalid JSON...\n{\"a\":\n ",
                           "Document is not an object\n " })); // the log stream adds the blanks
    QCOMPARE(capture.records().last().level, Logger::Error);
}

ZU_TEST_MAIN(tst_ZuCore)
#include "tst_zucore.moc"
