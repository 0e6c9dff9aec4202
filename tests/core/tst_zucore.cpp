#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/ZuCore.h>
#include <zucore/ZuPrivatable.h>

#include <QCryptographicHash>
#include <QStandardItemModel>
#include <QTimeZone>

class tst_ZuCore : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void formats();
    void displayStrings();
    void storedStrings_data();
    void storedStrings();
    void daysOfWeek_data();
    void daysOfWeek();
    void escapeField_data();
    void escapeField();
    void numberLists();
    void matchValue_data();
    void matchValue();
    void md5_data();
    void md5();
    void json_data();
    void json();
    void modelOptions();
    void privatable();
};

void tst_ZuCore::formats()
{
    QCOMPARE(ZuCore::dateFormat(), QStringLiteral("MMM dd, yyyy"));
    QCOMPARE(ZuCore::dateTimeFormat(), QStringLiteral("MMM dd, yyyy hh:mm:ss"));
    QCOMPARE(ZuCore::settingsIniFileName(), QString());
    ZuCore::setDateFormat(QStringLiteral("dd.MM.yyyy"));
    ZuCore::setSettingsIniFileName(QStringLiteral("app.ini"));
    QCOMPARE(ZuCore::dateToString(QDate(2024, 3, 9)), QStringLiteral("09.03.2024"));
    QCOMPARE(ZuCore::dateFromString(QStringLiteral("09.03.2024")), QDate(2024, 3, 9));
    QCOMPARE(ZuCore::settingsIniFileName(), QStringLiteral("app.ini"));
    ZuCore::setDateFormat(QStringLiteral("MMM dd, yyyy"));
    ZuCore::setSettingsIniFileName(QString());
}

void tst_ZuCore::displayStrings()
{
    // A null date prints today (and a null date-time the present), where the stored forms give
    // the caller's default.
    const QString today = QDate::currentDate().toString(ZuCore::dateFormat());
    QCOMPARE(ZuCore::dateToString(ZuCore::nullDate()), today);
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    const QDateTime now = ZuCore::dateTimeFromString(ZuCore::dateTimeToString(QDateTime()));
    QVERIFY2(now >= before && now <= QDateTime::currentDateTime(), qPrintable(now.toString()));

    // A valid date at a time that doesn't exist there (a daylight saving gap) is invalid but not
    // QDateTime::isNull: null for isNullDateTime, handed to toString as it is.
    const QDateTime halfValid(QDate(2021, 3, 28), QTime(2, 30),
                              QTimeZone(QByteArrayLiteral("Europe/Berlin")));
    QVERIFY(!halfValid.isNull());
    QVERIFY(ZuCore::isNullDateTime(halfValid));
    QVERIFY(ZuCore::isNullDate(QDate(2021, 2, 30)));
    QVERIFY(!ZuCore::isNullDate(QDate(2021, 2, 28)));
    QCOMPARE(ZuCore::dateTimeToString(halfValid), halfValid.toString(ZuCore::dateTimeFormat()));
    QCOMPARE(ZuCore::dateTimeFromString(QStringLiteral("garbage")).isValid(), false);
}

void tst_ZuCore::storedStrings_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("dateTime");
    const QDateTime moment(QDate(2023, 12, 31), QTime(23, 5, 9));
    QTest::newRow("date") << QVariant(QDate(2023, 12, 31)) << "2023-12-31"
                          << "2023-12-31 00:00:00";
    QTest::newRow("date-time") << QVariant(moment) << "2023-12-31"
                               << "2023-12-31 23:05:09";
    QTest::newRow("null variant") << QVariant() << "n/a"
                                  << "n/a";
    QTest::newRow("bad text") << QVariant(QStringLiteral("31/12/2023")) << "n/a"
                              << "n/a";
}

void tst_ZuCore::storedStrings()
{
    QFETCH(QVariant, value);
    QFETCH(QString, date);
    QFETCH(QString, dateTime);
    const QString fallback = QStringLiteral("n/a");
    QCOMPARE(ZuCore::toDateString(value, fallback), date);
    QCOMPARE(ZuCore::toDateTimeString(value, fallback), dateTime);
    // The fixed forms read back whatever the display format is.
    ZuCore::setDateFormat(QStringLiteral("yy"));
    if (date != fallback) {
        QCOMPARE(ZuCore::fromDateString(date), value.toDate());
        QCOMPARE(ZuCore::fromDateTimeString(dateTime), value.toDateTime());
        QCOMPARE(ZuCore::dateToMySqlString(value.toDate()), date);
        QCOMPARE(ZuCore::dateTimeToMySqlString(value.toDateTime()), dateTime);
    } else {
        QVERIFY(ZuCore::isNullDate(ZuCore::fromDateString(value)));
        QVERIFY(ZuCore::isNullDateTime(ZuCore::fromDateTimeString(value)));
    }
    ZuCore::setDateFormat(QStringLiteral("MMM dd, yyyy"));
}

void tst_ZuCore::daysOfWeek_data()
{
    QTest::addColumn<int>("qtDay");
    QTest::addColumn<int>("mySqlDay");
    QTest::addColumn<QString>("name");
    QTest::newRow("Monday") << 1 << 2 << "Mon";
    QTest::newRow("Saturday") << 6 << 7 << "Sat";
    QTest::newRow("Sunday") << 7 << 1 << "Sun";
    QTest::newRow("zero") << 0 << 0 << "Unknown Day";
    QTest::newRow("eight") << 8 << 0 << "Unknown Day";
    QTest::newRow("negative") << -1 << 0 << "Unknown Day";
}

void tst_ZuCore::daysOfWeek()
{
    QFETCH(int, qtDay);
    QFETCH(int, mySqlDay);
    QFETCH(QString, name);
    QCOMPARE(ZuCore::dayOfWeekQtToMySql(qtDay), mySqlDay);
    QCOMPARE(ZuCore::mySqlDayOfWeek(mySqlDay), name);
    QCOMPARE(ZuCore::dayOfWeekMySqlToQt(mySqlDay), mySqlDay ? qtDay : 0);
    if (!mySqlDay) { // the invalid inputs, read as MySQL numbers
        QCOMPARE(ZuCore::dayOfWeekMySqlToQt(qtDay), 0);
        QCOMPARE(ZuCore::mySqlDayOfWeek(qtDay), name);
    }
    QCOMPARE(ZuCore::mySqlDaysOfWeek().join(QLatin1Char(',')),
             QStringLiteral("Sun,Mon,Tue,Wed,Thu,Fri,Sat"));
}

void tst_ZuCore::escapeField_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("escaped");
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("one quote") << "'"
                               << "''";
    QTest::newRow("inner") << "O'Brien's"
                           << "O''Brien''s";
    QTest::newRow("others untouched") << "a\"b\\c%"
                                      << "a\"b\\c%";
}

void tst_ZuCore::escapeField()
{
    QFETCH(QString, field);
    QFETCH(QString, escaped);
    QCOMPARE(ZuCore::escapeField(field), escaped);
}

void tst_ZuCore::numberLists()
{
    QCOMPARE(ZuCore::intsToStrings({ 10, 9, 100, -5 }), QStringList({ "-5", "10", "100", "9" }));
    QCOMPARE(ZuCore::uintsToStrings({ 2147483648u, 7u }), QStringList({ "-2147483648", "7" }));
    QCOMPARE(ZuCore::stringsToInts({ "7", "x", "-3", "", "0x10" }), QList<int>({ 7, 0, -3, 0, 0 }));
    QCOMPARE(ZuCore::stringsToUints({ "-1", "4294967295", "12", "2147483647" }),
             QList<uint>({ 4294967295u, 0u, 12u, 2147483647u }));
    QCOMPARE(ZuCore::checkChar().unicode(), ushort(10003));
    QCOMPARE(ZuCore::crossChar().unicode(), ushort(9747));
}

void tst_ZuCore::matchValue_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("column");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("role");
    QTest::addColumn<int>("row"); // -1: invalid index
    QTest::newRow("first of two hits") << 4 << 1 << QVariant("b") << int(Qt::DisplayRole) << 1;
    QTest::newRow("by user role") << 4 << 0 << QVariant(30) << int(Qt::UserRole) << 3;
    QTest::newRow("no hit") << 4 << 1 << QVariant("zz") << int(Qt::DisplayRole) << -1;
    QTest::newRow("no rows") << 0 << 0 << QVariant("a") << int(Qt::DisplayRole) << -1;
    QTest::newRow("no such column") << 4 << 5 << QVariant("a") << int(Qt::DisplayRole) << -1;
    QTest::newRow("negative column") << 4 << -1 << QVariant("a") << int(Qt::DisplayRole) << -1;
}

void tst_ZuCore::matchValue()
{
    QFETCH(int, rows);
    QFETCH(int, column);
    QFETCH(QVariant, value);
    QFETCH(int, role);
    QFETCH(int, row);
    QStandardItemModel model(0, 2);
    const char *texts[] = { "a", "b", "c", "b" };
    for (int r = 0; r < rows; ++r) {
        auto *first = new QStandardItem(QString::number(r));
        first->setData(10 * r, Qt::UserRole);
        auto *child = new QStandardItem(QStringLiteral("zz")); // never searched: no recursion
        first->appendRow(child);
        model.appendRow({ first, new QStandardItem(QString::fromLatin1(texts[r])) });
    }
    const QModelIndex hit = ZuCore::matchValue(&model, value, column, role);
    QCOMPARE(hit.isValid() ? hit.row() : -1, row);
    if (hit.isValid()) {
        QCOMPARE(hit.column(), column);
        QVERIFY(!hit.parent().isValid());
    }
}

void tst_ZuCore::md5_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("digest");
    // RFC 1321, appendix A.5.
    QTest::newRow("empty") << ""
                           << "d41d8cd98f00b204e9800998ecf8427e";
    QTest::newRow("a") << "a"
                       << "0cc175b9c0f1b6a831c399e269772661";
    QTest::newRow("abc") << "abc"
                         << "900150983cd24fb0d6963f7d28e17f72";
    QTest::newRow("message digest") << "message digest"
                                    << "f96b697d7cb7938d525a2f31aaf161d0";
    QTest::newRow("a-z") << "abcdefghijklmnopqrstuvwxyz"
                         << "c3fcd3d76192e4007dfb496cca67e13b";
    QTest::newRow("A-Za-z0-9") << "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                               << "d174ab98d277d9f5a5611c2c9f419d9f";
    QTest::newRow("8 x 1234567890")
        << QString("1234567890").repeated(8) << "57edf4a22be3c955ac49da2e2107b67a";
    // Non-ASCII goes in as UTF-8, and the block edges (55, 56, 64 bytes, buffer refills) hold.
    const QString mixed = QString::fromUtf8("\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80x");
    for (const QString &text :
         { mixed, mixed.repeated(300), QString(55, 'q'), QString(56, 'q'), QString(64, 'q'),
           QString(2000, QChar(0x20ac)), QString(QChar(0xd800)) + "lone", QString(QChar(0xdc00)) })
        QTest::newRow(qPrintable(QStringLiteral("utf8 %1").arg(text.size())))
            << text
            << QString::fromLatin1(
                   QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5).toHex());
}

void tst_ZuCore::md5()
{
    QFETCH(QString, text);
    QFETCH(QString, digest);
    QCOMPARE(ZuCore::md5(text), digest);
}

void tst_ZuCore::json_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("compact"); // empty: the empty object
    QTest::addColumn<QString>("logged");
    QTest::newRow("object") << "{ \"b\": [1, 2], \"a\": \"\\u00e4\" }"
                            << QString::fromUtf8("{\"a\":\"\xc3\xa4\",\"b\":[1,2]}") << "";
    QTest::newRow("empty object") << "{}"
                                  << "{}"
                                  << "";
    QTest::newRow("empty text") << ""
                                << "{}"
                                << "Invalid JSON...\n\n";
    QTest::newRow("broken") << "{\"a\":"
                            << "{}"
                            << "Invalid JSON...\n{\"a\":\n";
    QTest::newRow("array") << "[1,2]"
                           << "{}"
                           << "Document is not an object\n";
}

void tst_ZuCore::json()
{
    QFETCH(QString, text);
    QFETCH(QString, compact);
    QFETCH(QString, logged);
    zutest::LogCapture capture;
    const QJsonObject object = ZuCore::jsonObjFromString(text);
    QCOMPARE(ZuCore::stringFromJsonObj(object), compact);
    QCOMPARE(capture.records().size(), logged.isEmpty() ? 0 : 1);
    if (!logged.isEmpty()) {
        QCOMPARE(capture.records().first().level, Logger::Error);
        QVERIFY2(capture.records().first().message.startsWith(logged),
                 qPrintable(capture.records().first().message));
    }
}

void tst_ZuCore::modelOptions()
{
    const QFlags<ZuCore::ModelOption> options = ZuCore::ReadOnly | ZuCore::ModelOption16;
    QCOMPARE(int(options), 17);
    QCOMPARE(int(ZuCore::ModelOption8), 8);
    QVERIFY(options.testFlag(ZuCore::ReadOnly) && !options.testFlag(ZuCore::ModelOption8));
    QCOMPARE(QMetaEnum::fromType<ZuCore::ModelOptions>().keyToValue("ModelOption16"), 16);
}

struct CountedPrivate : ZuPrivate
{
    int values[4] = { 1, 2, 3, 4 };
};

void tst_ZuCore::privatable()
{
    // Both are released without harm; the sanitizer build sees a leak or a bad delete.
    {
        ZuPrivatable empty(nullptr);
    }
    {
        ZuPrivatable owner(new CountedPrivate);
    }
    QVERIFY(!std::is_copy_constructible<ZuPrivatable>::value);
}

ZU_TEST_MAIN(tst_ZuCore)
#include "tst_zucore.moc"
