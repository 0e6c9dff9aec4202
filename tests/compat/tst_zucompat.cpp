#include "compat/ZuBinaryJson.h"
#include "compat/ZuChecksum.h"
#include "compat/ZuProcessStart.h"
#include "compat/ZuTextCodec.h"
#include "compat/ZuVariantCompare.h"
#include "support/ZuTest.h"

#include <QDate>
#include <QJsonArray>
#include <QJsonObject>

// The helpers that bridge Qt 5 and Qt 6 must answer alike in both builds: this suite runs in each.
class TestZuCompat : public QObject
{
    Q_OBJECT

private slots:
    void binaryJsonReadsTheOtherBuildsImage()
    {
        // {"list":[1,true,null],"n":42.5,"name":"Zoë"} as the Qt 5 build writes it.
        const QByteArray image = QByteArray::fromHex(
            "71626a73010000006000000007000000540000001403000004006c6973740000180000000600"
            "00000c0000002a00000021000000000000001207000001006e0000000000004045409b090000"
            "04006e616d65000003005a6feb0000000c0000003000000040000000");
        const QJsonObject expected { { "name", QStringLiteral("Zoë") },
                                     { "n", 42.5 },
                                     { "list", QJsonArray { 1, true, QJsonValue() } } };
        QCOMPARE(ZuCompat::fromBinaryJson(image).object(), expected);
        QCOMPARE(ZuCompat::toBinaryJson(QJsonDocument(expected)), image);
        QVERIFY(ZuCompat::fromBinaryJson(image.left(image.size() - 4)).isNull());
        QVERIFY(ZuCompat::fromBinaryJson("{}").isNull());
    }

    void variantEqualConvertsAcrossTypes_data()
    {
        QTest::addColumn<QVariant>("a");
        QTest::addColumn<QVariant>("b");
        QTest::addColumn<bool>("equal");
        QTest::newRow("text and number") << QVariant("1") << QVariant(1) << true;
        QTest::newRow("number and text") << QVariant(2.5) << QVariant("2.5") << true;
        QTest::newRow("other text") << QVariant("1x") << QVariant(1) << false;
        QTest::newRow("int and double") << QVariant(3) << QVariant(3.0) << true;
        QTest::newRow("date and its text")
            << QVariant(QDate(2024, 2, 29)) << QVariant("2024-02-29") << true;
        QTest::newRow("null and empty text") << QVariant() << QVariant(QString()) << false;
        QTest::newRow("two nulls") << QVariant() << QVariant() << true;
        QTest::newRow("null and empty text of one type")
            << QVariant(QString()) << QVariant(QString("")) << true;
    }

    void variantEqualConvertsAcrossTypes()
    {
        QFETCH(QVariant, a);
        QFETCH(QVariant, b);
        QFETCH(bool, equal);
        QCOMPARE(ZuCompat::variantEqual(a, b), equal);
        QCOMPARE(ZuCompat::variantEqual(b, a), equal);
    }

    void streamsAndChecksums()
    {
        QCOMPARE(ZuCompat::checksum16("123456789"), quint16(0x906E)); // CRC-16/X-25
        QString buffer;
        QTextStream stream(&buffer);
        ZuCompat::setUtf8(stream);
        QCOMPARE(ZuCompat::encodeAsStream(stream, QStringLiteral("Zoë €")),
                 QByteArray("Zo\xc3\xab \xe2\x82\xac"));
    }

    void startCommandSplitsLikeAShell()
    {
        QProcess process;
        ZuCompat::startCommand(process, QStringLiteral("echo \"a  b\" c"), QIODevice::ReadWrite);
        QVERIFY(process.waitForFinished(10000));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("a  b c\n"));
    }
};

ZU_TEST_MAIN(TestZuCompat)
#include "tst_zucompat.moc"
