#include "platform/NaturalCompare.h"
#include "support/ZuTest.h"

#include <QRandomGenerator>

#include <algorithm>

using ZuPlatform::naturalCompare;

class TestNaturalCompare : public QObject
{
    Q_OBJECT

private slots:
    void pairs_data();
    void pairs();
    void randomStringsFormAStrictWeakOrder();
    void rawDataStringsNeedNoTerminator();
};

void TestNaturalCompare::pairs_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("expected");

    QTest::newRow("both empty") << QString() << QString("") << 0;
    QTest::newRow("empty before text") << QString() << "a" << -1;
    QTest::newRow("empty before digit") << ""
                                        << "0" << -1;
    QTest::newRow("prefix first") << "file"
                                  << "file1" << -1;
    QTest::newRow("a2 before a10") << "a2"
                                   << "a10" << -1;
    QTest::newRow("numbers by value") << "9"
                                      << "10" << -1;
    QTest::newRow("second run decides") << "v1.10"
                                        << "v1.9" << 1;
    QTest::newRow("run then text") << "x10y"
                                   << "x10z" << -1;
    QTest::newRow("same length runs") << "a123b"
                                      << "a124a" << -1;
    QTest::newRow("shared leading digit") << "a105"
                                          << "a1005" << -1;
    QTest::newRow("case only") << "ReadMe.TXT"
                               << "readme.txt" << 0;
    QTest::newRow("case does not order") << "B"
                                         << "a" << 1;
    QTest::newRow("mixed case with digits") << "Photo10.JPG"
                                            << "photo9.jpg" << 1;
    QTest::newRow("digits before letters") << "1"
                                           << "a" << -1;
    QTest::newRow("digits before capitals") << "Z"
                                            << "9" << 1;
    QTest::newRow("digit next to letter") << "a1b"
                                          << "ab" << -1;
    QTest::newRow("symbols before digits") << "_"
                                           << "0" << -1;
    QTest::newRow("space before digits") << "a b"
                                         << "a1" << -1;
    QTest::newRow("leading zeros keep value") << "a007"
                                              << "a10" << -1;
    QTest::newRow("leading zeros: fewer first") << "a1"
                                                << "a01" << -1;
    QTest::newRow("leading zeros: later value wins") << "a01b2"
                                                     << "a1b1" << 1;
    QTest::newRow("zero and zeros") << "0"
                                    << "000" << -1;
    QTest::newRow("zeros then text") << "00a"
                                     << "0b" << -1;
    // Well past 64 bits: the values are compared digit by digit.
    QTest::newRow("40 digits vs 39") << "n" + QString(40, '1') << "n" + QString(39, '9') << 1;
    QTest::newRow("long runs differ at the end") << "18446744073709551616000000000000000001"
                                                 << "18446744073709551616000000000000000002" << -1;
    QTest::newRow("long runs equal") << "x" + QString(100, '7') + "Y"
                                     << "X" + QString(100, '7') + "y" << 0;
    QTest::newRow("long zeros before small") << QString(50, '0') + "2"
                                             << "10" << -1;
    QTest::newRow("accent folds case")
        << QString::fromUtf8("ÉCOLE") << QString::fromUtf8("école") << 0;
    QTest::newRow("accent sorts with base") << QString::fromUtf8("é") << "f" << -1;
    QTest::newRow("accent after plain") << "e" << QString::fromUtf8("é") << -1;
    QTest::newRow("later digits beat an accent")
        << QString::fromUtf8("résumé2") << "resume10" << -1;
    QTest::newRow("greek case") << QString::fromUtf8("ΑΒΓ") << QString::fromUtf8("αβγ") << 0;
    QTest::newRow("greek after latin") << QString::fromUtf8("α") << "z" << 1;
    QTest::newRow("cyrillic order")
        << QString::fromUtf8("Дом2") << QString::fromUtf8("дом10") << -1;
    QTest::newRow("arabic digits are symbols") << QString::fromUtf8("٣") << "1" << -1;
    QTest::newRow("emoji after letters")
        << QString::fromUtf8("a😀") << QString::fromUtf8("a😁") << -1;
    QTest::newRow("embedded nul") << QString::fromLatin1("a\0b", 3)
                                  << QString::fromLatin1("a\0c", 3) << -1;
}

void TestNaturalCompare::pairs()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, expected);
    QCOMPARE(naturalCompare(a, b), expected);
    QCOMPARE(naturalCompare(b, a), -expected);
    QCOMPARE(naturalCompare(a, a), 0);
}

void TestNaturalCompare::randomStringsFormAStrictWeakOrder()
{
    // Letters in both cases, accented ones, digits (zeros often), symbols and
    // a surrogate pair's halves: the pieces where the token rules meet.
    const QString alphabet
        = QString::fromUtf8("aAbBzZéÉeE00019_ .-αΑ") + QChar(0xD83D) + QChar(0xDE00);
    // Unit by unit: QString's own case mapping pairs up lone surrogates.
    const auto foldUnits = [](QString s) {
        for (QChar &c : s)
            c = c.toCaseFolded();
        return s;
    };
    QRandomGenerator random(20261123);
    QStringList strings;
    for (int i = 0; i < 400; ++i) {
        QString s;
        const int length = random.bounded(8);
        for (int k = 0; k < length; ++k)
            s += alphabet.at(random.bounded(alphabet.size()));
        strings << s;
    }
    for (const QString &a : qAsConst(strings)) {
        QCOMPARE(naturalCompare(a, a), 0);
        QString upper = a;
        for (QChar &c : upper)
            c = c.toUpper();
        QCOMPARE(naturalCompare(a, upper), 0);
        for (const QString &b : qAsConst(strings)) {
            const int ab = naturalCompare(a, b);
            QVERIFY2(ab == -naturalCompare(b, a), qPrintable(a + " | " + b));
            // 0 means equal but for case, and nothing else.
            QCOMPARE(ab == 0, foldUnits(a) == foldUnits(b));
        }
    }
    // Transitivity: after sorting, every earlier string is not after any later one.
    std::sort(strings.begin(), strings.end(),
              [](const QString &x, const QString &y) { return naturalCompare(x, y) < 0; });
    for (int i = 0; i < strings.size(); ++i)
        for (int j = i + 1; j < strings.size(); ++j)
            QVERIFY2(naturalCompare(strings.at(i), strings.at(j)) <= 0,
                     qPrintable(strings.at(i) + " | " + strings.at(j)));
}

void TestNaturalCompare::rawDataStringsNeedNoTerminator()
{
    // A view into a longer buffer: the digits after the view must not count.
    static const QChar buffer[] = { 'a', '1', '9', '9' };
    const QString view = QString::fromRawData(buffer, 2);
    QCOMPARE(naturalCompare(view, "a2"), -1);
    QCOMPARE(naturalCompare(view, "A1"), 0);
}

ZU_TEST_MAIN(TestNaturalCompare)
#include "tst_naturalcompare.moc"
