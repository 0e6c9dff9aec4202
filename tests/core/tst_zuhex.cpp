#include "support/ZuTest.h"

#include <zucore/ZuHex.h>

class tst_ZuHex : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void numbers()
    {
        QCOMPARE(ZuHex::UintToBuffer(0x12345678u), QByteArray("\x78\x56\x34\x12", 4));
        QCOMPARE(ZuHex::UshortToBuffer(ushort(0xABCD)), QByteArray("\xCD\xAB", 2));
        QCOMPARE(ZuHex::BufferToUint(QByteArray("\x78\x56\x34\x12\xFF", 5)), 0x12345678u);
        QCOMPARE(ZuHex::BufferToUint(QByteArray("\x01\x02\x03", 3)), 0u); // too short: no partial
        QCOMPARE(ZuHex::BufferToUshort(QByteArray("\x01\x02\x03", 3)), ushort(0x0201));
        QCOMPARE(ZuHex::BufferToUshort(QByteArray("\x01", 1)), ushort(0));

        const uchar raw[] = { 0x52, 0x49, 0x00, 0x46, 0x10, 0x00 };
        QCOMPARE(ZuHex::ucharToUint(raw), 0x46004952u);
        QCOMPARE(ZuHex::ucharToQString(raw, 4), QString::fromLatin1("RI\0F", 4)); // zero kept
        QCOMPARE(ZuHex::ucharToQString(raw, -3), QString());

        QCOMPARE(ZuHex::ByteSwap(0x11223344u), 0x44332211u);
        QCOMPARE(ZuHex::NibbleSwap(uchar(0x1F)), uchar(0xF1));
        QCOMPARE(ZuHex::ReverseBytes(QByteArray("\x01\x0F\xF0", 3)), QByteArray("\x80\xF0\x0F", 3));

        QCOMPARE(ZuHex::AsciiVal('f'), 15);
        QCOMPARE(ZuHex::AsciiVal('g'), 0);
        QCOMPARE(ZuHex::AsciiVal('\xE9'), 0);
        QCOMPARE(ZuHex::ByteToString(0x0A), QStringLiteral("0A"));
        uchar buffer[] = { 0x00, 0x7F, 0xFF };
        QCOMPARE(ZuHex::BufferToString(buffer, 3), QStringLiteral("007FFF"));
        QCOMPARE(ZuHex::BufferToString(buffer, -1), QString());
        QCOMPARE(ZuHex::BufferToHexString(QByteArray("\x12\xab", 2)), QStringLiteral("12AB"));
        QCOMPARE(ZuHex::UshortToHexString(ushort(0x000F)), QStringLiteral("000F"));
        QCOMPARE(ZuHex::IntToString(0xF), QStringLiteral("0x0F"));
        QCOMPARE(ZuHex::IntToString(0x100), QStringLiteral("0x100"));
        QCOMPARE(ZuHex::IntToString(0xFFFFFFFFu), QStringLiteral("0xFFFFFFFF"));
        QCOMPARE(ZuHex::LeIntToBeHex(0xABu), QStringLiteral("ab000000"));
        QCOMPARE(ZuHex::LeIntToBeHex(0x01020304u), QStringLiteral("04030201"));

        // Bits run from the top bit of the first byte; a partial last byte has its low bits clear.
        const QByteArray bytes("\x01\xA5", 2);
        QCOMPARE(ZuHex::BitArrayToString(ZuHex::BytesToBits(bytes)),
                 QStringLiteral("0000000110100101"));
        QCOMPARE(ZuHex::BitsToBytes(QBitArray(9, true)), QByteArray("\xFF\x80", 2));
        QCOMPARE(ZuHex::BitArrayToString(QBitArray()), QString());
    }

    void hexDecode_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << "" << QByteArray();
        QTest::newRow("pair") << "aB" << QByteArray("\xAB", 1);
        QTest::newRow("odd pads a trailing 0") << "ABC" << QByteArray("\xAB\xC0", 2);
        QTest::newRow("zero byte kept") << "0041" << QByteArray("\x00\x41", 2);
        QTest::newRow("half bad") << "1z" << QByteArray("\x10", 1);
        QTest::newRow("code 256 and up") << QChar(0x100) + QString("1") << QByteArray("\x01", 1);
        QTest::newRow("Latin-1 letter") << QChar(0xC1) + QString("A") << QByteArray("\x0A", 1);
    }

    void hexDecode()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, bytes);
        QCOMPARE(ZuHex::StringToBuffer(text), bytes);
        QCOMPARE(ZuHex::HexStringToString(text),
                 QString::fromLatin1(bytes.constData(), bytes.size()));
        if (text.size() >= 2)
            QCOMPARE(ZuHex::StringToByte(text.at(0), text.at(1)), uchar(bytes.at(0)));
    }
};

ZU_TEST_MAIN(tst_ZuHex)
#include "tst_zuhex.moc"
