#include "compat/ZuChecksum.h"
#include "compat/ZuRandom.h"

#include <zucore/SimpleCrypt.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QtEndian>

#include <cstring>

namespace {

constexpr char Version = 3;
constexpr int HeaderSize = 2; // version and flags
constexpr int ChecksumSize = 2;
constexpr int HashSize = 20;

// The eight key bytes as seen from stream position p, packed little-endian: byte j of the word
// is K[(p + j) % 8].
inline quint64 keyWordAt(quint64 key, qsizetype position)
{
    const int shift = int(position & 7) * 8;
    return shift == 0 ? key : (key >> shift) | (key << (64 - shift));
}

// Byte j becomes the XOR of bytes 0 to j of the little-endian word.
inline quint64 prefixXor(quint64 x)
{
    x ^= x << 8;
    x ^= x << 16;
    x ^= x << 32;
    return x;
}

inline quint64 load64(const uchar *p)
{
    quint64 v;
    std::memcpy(&v, p, 8);
    return qFromLittleEndian(v);
}

inline void store64(uchar *p, quint64 v)
{
    v = qToLittleEndian(v);
    std::memcpy(p, &v, 8);
}

// Scrambles n plain bytes at stream position `position` into dst, chained to the cipher byte
// before them. The chain is a running XOR, so eight bytes at a time take a prefix XOR within
// the word and the broadcast of the previous cipher byte. Returns the last cipher byte.
uchar scramble(uchar *dst, const uchar *src, qsizetype n, quint64 key, qsizetype position,
               uchar previous)
{
    const quint64 keyWord = keyWordAt(key, position);
    quint64 carry = previous;
    qsizetype i = 0;
    for (; i + 8 <= n; i += 8) {
        const quint64 word = prefixXor(load64(src + i) ^ keyWord) ^ (carry * 0x0101010101010101ull);
        store64(dst + i, word);
        carry = word >> 56;
    }
    for (; i < n; ++i) {
        carry ^= src[i] ^ uchar(keyWord >> (8 * (i & 7)));
        dst[i] = uchar(carry);
    }
    return uchar(carry);
}

// Undoes scramble() for n bytes at stream position `position` of the stream `s`; the byte
// before them (0 at position 0) comes from s[position - 1]. Each plain byte needs only its
// cipher byte and the one before, so the words are independent.
void unscramble(uchar *dst, const uchar *s, qsizetype n, quint64 key, qsizetype position)
{
    const quint64 keyWord = keyWordAt(key, position);
    const uchar *cur = s + position;
    qsizetype i = 0;
    if (position == 0 && n > 0) {
        dst[0] = cur[0] ^ uchar(key);
        i = 1;
    }
    for (; i < n && ((i & 7) != 0); ++i)
        dst[i] = cur[i] ^ cur[i - 1] ^ uchar(keyWord >> (8 * (i & 7)));
    for (; i + 8 <= n; i += 8)
        store64(dst + i, load64(cur + i) ^ load64(cur + i - 1) ^ keyWord);
    for (; i < n; ++i)
        dst[i] = cur[i] ^ cur[i - 1] ^ uchar(keyWord >> (8 * (i & 7)));
}

QByteArray checksumBlock(const QByteArray &data)
{
    // QDataStream's default order: most significant byte first.
    const quint16 sum = ZuCompat::checksum16(data);
    QByteArray block(ChecksumSize, Qt::Uninitialized);
    qToBigEndian(sum, block.data());
    return block;
}

} // namespace

SimpleCrypt::SimpleCrypt()
    : SimpleCrypt((quint64(DefaultKeyHigh) << 32) | DefaultKeyLow)
{ }

SimpleCrypt::SimpleCrypt(quint64 key)
    : m_key(key)
    , m_compressionMode(CompressionAuto)
    , m_protectionMode(ProtectionChecksum)
    , m_lastError(ErrorNoError)
{
    ZuCompat::qsrandSeed(uint(QDateTime::currentMSecsSinceEpoch() & 0xFFFF));
    splitKey();
}

void SimpleCrypt::setKey(quint64 key)
{
    m_key = key;
    splitKey();
}

void SimpleCrypt::splitKey()
{
    m_keyParts.clear();
    m_keyParts.resize(8);
    for (int i = 0; i < 8; ++i)
        m_keyParts[i] = char(m_key >> (8 * i));
}

QByteArray SimpleCrypt::encryptToByteArray(QByteArray plaintext)
{
    if (m_keyParts.isEmpty()) {
        qWarning("No key set.");
        m_lastError = ErrorNoKeySet;
        return QByteArray();
    }

    CryptoFlags flags = CryptoFlagNone;
    if (m_compressionMode == CompressionAlways) {
        plaintext = qCompress(plaintext, 9);
        flags |= CryptoFlagCompression;
    } else if (m_compressionMode == CompressionAuto) {
        QByteArray compressed = qCompress(plaintext, 9);
        if (compressed.size() < plaintext.size()) {
            plaintext = compressed;
            flags |= CryptoFlagCompression;
        }
    }

    QByteArray block;
    if (m_protectionMode == ProtectionChecksum) {
        flags |= CryptoFlagChecksum;
        block = checksumBlock(plaintext);
    } else if (m_protectionMode == ProtectionHash) {
        flags |= CryptoFlagHash;
        block = QCryptographicHash::hash(plaintext, QCryptographicHash::Sha1);
    }

    // The stream is scrambled straight into the result, piece by piece, without building the
    // plain sequence first.
    const quint64 key = qFromLittleEndian<quint64>(m_keyParts.constData());
    QByteArray result(HeaderSize + 1 + block.size() + plaintext.size(), Qt::Uninitialized);
    uchar *out = reinterpret_cast<uchar *>(result.data());
    out[0] = uchar(Version);
    out[1] = uchar(int(flags));
    uchar *stream = out + HeaderSize;
    const uchar randomByte = uchar(ZuCompat::qrandValue() & 0xFF);
    uchar previous = scramble(stream, &randomByte, 1, key, 0, 0);
    previous = scramble(stream + 1, reinterpret_cast<const uchar *>(block.constData()),
                        block.size(), key, 1, previous);
    scramble(stream + 1 + block.size(), reinterpret_cast<const uchar *>(plaintext.constData()),
             plaintext.size(), key, 1 + block.size(), previous);

    m_lastError = ErrorNoError;
    return result;
}

QByteArray SimpleCrypt::encryptToByteArray(const QString &plaintext)
{
    return encryptToByteArray(plaintext.toUtf8());
}

QString SimpleCrypt::encryptToString(QByteArray plaintext)
{
    const QByteArray cypher = encryptToByteArray(std::move(plaintext));
    return cypher.isNull() ? QString() : QString::fromLatin1(cypher.toBase64());
}

QString SimpleCrypt::encryptToString(const QString &plaintext)
{
    return encryptToString(plaintext.toUtf8());
}

QByteArray SimpleCrypt::decryptToByteArray(QByteArray cypher)
{
    if (m_keyParts.isEmpty()) {
        qWarning("No key set.");
        m_lastError = ErrorNoKeySet;
        return QByteArray();
    }
    if (cypher.size() < HeaderSize + 1)
        return QByteArray();
    if (cypher.at(0) != Version) {
        m_lastError = ErrorUnknownVersion;
        qWarning("Invalid version or not a cyphertext.");
        return QByteArray();
    }

    const CryptoFlags flags(int(uchar(cypher.at(1))));
    const uchar *stream = reinterpret_cast<const uchar *>(cypher.constData()) + HeaderSize;
    const qsizetype streamSize = cypher.size() - HeaderSize;
    const quint64 key = qFromLittleEndian<quint64>(m_keyParts.constData());

    // Position 0 is the random byte; the integrity block, if any, follows it.
    qsizetype blockSize = 0;
    if (flags & CryptoFlagChecksum)
        blockSize = ChecksumSize;
    else if (flags & CryptoFlagHash)
        blockSize = HashSize;
    if (streamSize - 1 < blockSize) {
        m_lastError = ErrorIntegrityFailed;
        return QByteArray();
    }

    uchar block[HashSize];
    unscramble(block, stream, blockSize, key, 1);
    const qsizetype payloadStart = 1 + blockSize;
    const qsizetype payloadSize = streamSize - payloadStart;
    QByteArray data;
    if (cypher.isDetached()) {
        // Nobody else holds the cipher text (a temporary, say): the payload is written over it
        // from its front. Output byte j needs stream bytes from j + 2 on, so nothing is
        // overwritten before it is read, and a large buffer isn't allocated and faulted in again.
        uchar *front = reinterpret_cast<uchar *>(cypher.data());
        unscramble(front, front + HeaderSize, payloadSize, key, payloadStart);
        cypher.resize(int(payloadSize));
        data = std::move(cypher);
    } else {
        data = QByteArray(int(payloadSize), Qt::Uninitialized);
        unscramble(reinterpret_cast<uchar *>(data.data()), stream, payloadSize, key, payloadStart);
    }

    bool intact = true;
    if (flags & CryptoFlagChecksum)
        intact = qFromBigEndian<quint16>(block) == ZuCompat::checksum16(data);
    else if (flags & CryptoFlagHash)
        intact = QCryptographicHash::hash(data, QCryptographicHash::Sha1)
            == QByteArray::fromRawData(reinterpret_cast<const char *>(block), HashSize);
    if (!intact) {
        m_lastError = ErrorIntegrityFailed;
        return QByteArray();
    }

    if (flags & CryptoFlagCompression) {
        data = qUncompress(data);
        if (data.isNull()) // success is never null, even when nothing came out
            data = QByteArray("");
    }
    m_lastError = ErrorNoError;
    return data;
}

QByteArray SimpleCrypt::decryptToByteArray(const QString &cyphertext)
{
    return decryptToByteArray(QByteArray::fromBase64(cyphertext.toLatin1()));
}

QString SimpleCrypt::decryptToString(QByteArray cypher)
{
    const QByteArray plain = decryptToByteArray(std::move(cypher));
    return plain.isNull() ? QString() : QString::fromUtf8(plain);
}

QString SimpleCrypt::decryptToString(const QString &cyphertext)
{
    const QByteArray plain = decryptToByteArray(cyphertext);
    return plain.isNull() ? QString() : QString::fromUtf8(plain);
}
