#include <zucore/SimpleCrypt.h>

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdlib>

namespace {

const quint64 Key = 0x0123456789ABCDEFull;

void dropMessages(QtMsgType, const QMessageLogContext &, const QString &) { }

// The stream undone byte by byte, as documented: P[i] = S[i] ^ K[i % 8] ^ S[i - 1].
QByteArray unscramble(const QByteArray &s)
{
    QByteArray p = s;
    for (int i = 0; i < s.size(); ++i)
        p[i] = char(s[i] ^ char(Key >> (8 * (i % 8))) ^ (i ? s[i - 1] : 0));
    return p;
}

} // namespace

// Any bytes as a cipher text (shared and unshared, so both ways of writing the result run) and
// as Base64 text; and as plain text, which must come back through every mode. The first byte
// picks the modes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool quiet = [] {
        qInstallMessageHandler(dropMessages); // the two warnings and qUncompress's complaints
        return true;
    }();
    Q_UNUSED(quiet)

    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    SimpleCrypt crypt(Key);
    const QByteArray shared = crypt.decryptToByteArray(bytes);
    const SimpleCrypt::Error sharedError = crypt.lastError();
    const QByteArray unshared = crypt.decryptToByteArray(QByteArray(bytes));
    if (shared != unshared || shared.isNull() != unshared.isNull()
        || crypt.lastError() != sharedError)
        abort();
    // Without compression or a block, a version-3 text always decrypts, to the plain stream.
    if (bytes.size() >= 3 && bytes[0] == 3 && (bytes[1] & 7) == 0
        && shared != unscramble(bytes.mid(2)).mid(1))
        abort();
    crypt.decryptToString(QString::fromLatin1(bytes));

    if (size > 0) {
        crypt.setCompressionMode(SimpleCrypt::CompressionMode(data[0] & 3));
        crypt.setIntegrityProtectionMode(SimpleCrypt::IntegrityProtectionMode((data[0] >> 2) & 3));
    }
    const QByteArray back = crypt.decryptToByteArray(crypt.encryptToByteArray(bytes));
    if (back != bytes || back.isNull() || crypt.lastError() != SimpleCrypt::ErrorNoError)
        abort();
    return 0;
}
