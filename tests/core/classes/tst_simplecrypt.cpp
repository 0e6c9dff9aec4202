#include "support/ZuTest.h"

#include <zucore/SimpleCrypt.h>

// Cipher texts are compared with, and built from, the documented layout written out here
// apart from the library: another implementation must read ours, and we must read its texts.
namespace {

const quint64 Key = 0x0123456789ABCDEFull;
const QByteArray Text = "a text, and a text, and a text, and a text, and the same text again";
const QByteArray Digits = "123456789", DigitsCrc = "\x90\x6E"; // ISO 3309 CRC-16 check value
const char *const BadVersion = "Invalid version or not a cyphertext.";

#define sha1(data) QCryptographicHash::hash(data, QCryptographicHash::Sha1)

// Version, flags, then the stream S[i] = P[i] ^ K[i % 8] ^ S[i - 1] of the random byte, the
// block and the payload, K least significant byte first.
QByteArray cipher(int version, int flags, const QByteArray &block, const QByteArray &payload,
                  quint64 key = Key, char random = '\x5c')
{
    QByteArray s = random + block + payload;
    for (int i = 0; i < s.size(); ++i)
        s[i] = char(s[i] ^ char(key >> (8 * (i % 8))) ^ (i ? s[i - 1] : 0));
    return QByteArray(1, char(version)) + char(flags) + s;
}

// modes: the writer's compression mode times 16 plus its protection mode, or -1 for a text
// that is only read. flags: 1 compressed, 2 CRC-16, 4 SHA-1. A null plain text: reading fails.
const QByteArray packed = qCompress(Text, 9), failed;
const int unknown = SimpleCrypt::ErrorUnknownVersion, integrity = SimpleCrypt::ErrorIntegrityFailed;
// clang-format off
const struct { const char *name; int modes, version, flags; QByteArray block, payload, plain; int error; } rows[] = {
    { "never, none", 0x20, 3, 0, "", Text, Text, 0 },
    { "never, checksum", 0x21, 3, 2, DigitsCrc, Digits, Digits, 0 },
    { "auto, too short to compress", 0x01, 3, 2, DigitsCrc, Digits, Digits, 0 },
    { "auto, compressible", 0x02, 3, 5, sha1(packed), packed, Text, 0 },
    { "always, even when longer", 0x12, 3, 5, sha1(qCompress("ab", 9)), qCompress("ab", 9), "ab", 0 },
    { "mode values out of range", 0x79, 3, 0, "", Text, Text, 0 },
    { "both blocks flagged: the checksum counts", -1, 3, 6, DigitsCrc, Digits, Digits, 0 },
    { "compressed flag on plain data", -1, 3, 1, "", Text, "", 0 },
    { "wrong checksum", -1, 3, 2, "\x90\x6F", Digits, failed, integrity },
    { "wrong hash", -1, 3, 4, sha1("?"), Text, failed, integrity },
    { "checksum cut short", -1, 3, 2, "", "x", failed, integrity },
    { "hash cut short", -1, 3, 4, "", sha1(Text).left(19), failed, integrity },
    { "version 2", -1, 2, 0, "", Text, failed, unknown },
    { "version 4", -1, 4, 0, "", Text, failed, unknown },
};
// clang-format on

} // namespace

class tst_SimpleCrypt : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void texts_data() { zutest::addRows(rows); }

    // What we write, byte by byte, and what we read.
    void texts()
    {
        QFETCH(int, row);
        const auto &r = rows[row];
        QByteArray text = cipher(r.version, r.flags, r.block, r.payload);
        SimpleCrypt crypt(Key);
        if (r.modes >= 0) {
            crypt.setCompressionMode(SimpleCrypt::CompressionMode(r.modes >> 4));
            crypt.setIntegrityProtectionMode(SimpleCrypt::IntegrityProtectionMode(r.modes & 15));
            const QByteArray out = crypt.encryptToByteArray(r.plain);
            const char random = char(out.at(2) ^ char(Key)); // S[0] = P[0] ^ K[0]
            text = cipher(r.version, r.flags, r.block, r.payload, Key, random);
            QCOMPARE(out.toHex(), text.toHex());
        }
        crypt.setCompressionMode(SimpleCrypt::CompressionNever); // reading goes by the flags alone
        QTest::ignoreMessage(QtWarningMsg, BadVersion); // lastError: not as the row expects
        crypt.decryptToByteArray(QByteArray("\x09\x00\x00", 3));
        if (r.version != 3)
            QTest::ignoreMessage(QtWarningMsg, BadVersion);
        if (r.flags == 1)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("qUncompress"));
        const QByteArray out = crypt.decryptToByteArray(text);
        QVERIFY(out == r.plain && out.isNull() == r.plain.isNull());
        QCOMPARE(int(crypt.lastError()), r.error);
    }

    void roundTripEveryMode()
    {
        for (int mode = 0; mode < 64; ++mode) {
            SimpleCrypt crypt(quint64(mode) << 58 | 1);
            crypt.setCompressionMode(SimpleCrypt::CompressionMode(mode / 16));
            crypt.setIntegrityProtectionMode(SimpleCrypt::IntegrityProtectionMode(mode / 4 % 4));
            const QByteArray plain = QList<QByteArray> { "", "x", Text, packed }.at(mode % 4);
            const QByteArray back = crypt.decryptToByteArray(crypt.encryptToByteArray(plain));
            QVERIFY(back == plain && !back.isNull() && !crypt.lastError());
        }
    }

    void keysAndStrings()
    {
        const auto checked = [](quint64 key) { return cipher(3, 2, DigitsCrc, Digits, key); };
        // The built-in key stays from build to build; 0 is a key too.
        QCOMPARE(SimpleCrypt().decryptToByteArray(checked(0x9E3779B97F4A7C15)), Digits);
        QCOMPARE(SimpleCrypt(0).decryptToByteArray(checked(0)), Digits);
        SimpleCrypt crypt(~Key); // a wrong key fails the check; setKey counts at once
        QVERIFY(crypt.decryptToByteArray(checked(Key)).isNull()
                && crypt.lastError() == SimpleCrypt::ErrorIntegrityFailed);
        crypt.setKey(Key);
        QCOMPARE(crypt.decryptToByteArray(checked(Key)), Digits);
        QSet<char> randoms; // the random byte differs from one text to the next
        for (int i = 0; i < 64; ++i)
            randoms << crypt.encryptToByteArray(Text).at(2);
        QVERIFY(randoms.size() > 1);

        const QString text = QStringLiteral("Zoë paid 5 € ✓");
        const QString base64 = crypt.encryptToString(text);
        QCOMPARE(QString(QByteArray::fromBase64(base64.toLatin1()).toBase64()), base64);
        QCOMPARE(crypt.decryptToString(base64), text);
        QCOMPARE(crypt.decryptToString(crypt.encryptToByteArray(text)), text);
        QCOMPARE(crypt.decryptToString(crypt.encryptToString(text.toUtf8())), text);
        // Not Base64: meaningless, or too short to look at, which leaves lastError as it was.
        QTest::ignoreMessage(QtWarningMsg, BadVersion);
        QVERIFY(crypt.decryptToString(QStringLiteral("not a cypher text at all!")).isNull());
        QVERIFY(crypt.decryptToString(QStringLiteral("%%")).isNull());
        QCOMPARE(crypt.lastError(), SimpleCrypt::ErrorUnknownVersion);
    }
};

ZU_TEST_MAIN(tst_SimpleCrypt)
#include "tst_simplecrypt.moc"
