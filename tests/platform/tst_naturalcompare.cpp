#include "platform/NaturalCompare.h"
#include "support/ZuTest.h"

#include <QRandomGenerator>

#include <algorithm>

using ZuPlatform::naturalCompare;

class TestNaturalCompare : public QObject
{
    Q_OBJECT

private slots:
    void pairs_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<int>("expected");
        auto row = [](const char *name, const QString &a, const QString &b, int expected) {
            QTest::newRow(name) << a << b << expected;
        };
        row("empty first", QString(), "0", -1);
        row("a2 before a10", "a2", "a10", -1);
        row("digits before letters", "Z", "9", 1);
        row("symbols before digits", "a b", "a1", -1);
        row("leading zeros keep value", "a007", "a10", -1);
        row("tie: fewer zeros first", "a1", "a01", -1);
        row("tie loses to later value", "a01b2", "a1b1", 1);
        row("beyond 64 bits", "n" + QString(40, '1'), "n" + QString(39, '9'), 1);
        row("accents fold case", QString::fromUtf8("ÉCOLE"), QString::fromUtf8("école"), 0);
        row("arabic digits are symbols", QString::fromUtf8("٣"), "1", -1);
        row("view of a longer buffer, the rest unread",
            QString::fromRawData(reinterpret_cast<const QChar *>(u"a199"), 2), "a2", -1);
    }

    void pairs()
    {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QFETCH(int, expected);
        QCOMPARE(naturalCompare(a, b), expected);
        QCOMPARE(naturalCompare(b, a), -expected);
        QCOMPARE(naturalCompare(a, a), 0);
    }

    void randomStringsFormAStrictWeakOrder()
    {
        // Where the token rules meet: both cases, accents, zeros, symbols, a surrogate pair.
        const QString alphabet = QString::fromUtf8("aAbBzZéÉeE00019_ .-αΑ😀") + QChar(0);
        QRandomGenerator random(20261123);
        QStringList strings;
        for (int i = 0; i < 400; ++i) {
            QString s;
            for (int k = random.bounded(8); k > 0; --k)
                s += alphabet.at(random.bounded(alphabet.size()));
            strings << s;
        }
        std::sort(strings.begin(), strings.end(),
                  [](const QString &x, const QString &y) { return naturalCompare(x, y) < 0; });
        for (int i = 0; i < strings.size(); ++i) {
            for (int j = 0; j < strings.size(); ++j) {
                const QString &a = strings.at(i), &b = strings.at(j);
                const int ab = naturalCompare(a, b);
                QVERIFY2(ab == -naturalCompare(b, a), qPrintable(a + " | " + b));
                // 0 means equal but for case, nothing else; sorted means transitive.
                QCOMPARE(ab == 0, a.compare(b, Qt::CaseInsensitive) == 0);
                QVERIFY2(j < i || ab <= 0, qPrintable(a + " | " + b));
                // A sort may let the keys decide wherever they differ.
                std::string ka, kb;
                ZuPlatform::appendNaturalSortKey(a, ka);
                ZuPlatform::appendNaturalSortKey(b, kb);
                QVERIFY2(ka == kb || ab == (ka < kb ? -1 : 1), qPrintable(a + " | " + b));
            }
        }
    }
};

ZU_TEST_MAIN(TestNaturalCompare)
#include "tst_naturalcompare.moc"
