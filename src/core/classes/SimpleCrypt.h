#pragma once

#include <zucore/zucore_export.h>

#include <QByteArray>
#include <QFlags>
#include <QString>
#include <QVector>

/**
 * @brief Scrambles byte arrays and strings with a 64-bit key, so that they can be stored or
 * passed around out of casual sight.
 *
 * @code #include <zucore/SimpleCrypt.h> @endcode
 *
 * @warning SimpleCrypt is obfuscation for casual eyes, not encryption. A 64-bit key XORed into
 * a chained stream is no protection against anyone who tries: never protect secrets with it.
 *
 * The cipher text is a byte array (Base64 text from the string operations):
 *
 * | Offset | Size | Content                                              |
 * |--------|------|------------------------------------------------------|
 * | 0      | 1    | the version, 3                                       |
 * | 1      | 1    | CryptoFlags                                          |
 * | 2      | rest | the scrambled stream S                               |
 *
 * Before scrambling, the stream is one random byte (dropped on reading), an integrity block
 * (nothing; the CRC-16 of qChecksum(), ISO 3309, most significant byte first; or the 20 bytes of
 * the SHA-1 hash), then the payload: the plain bytes, or their qCompress() form at level 9 when
 * the compression flag is set. Checksum and hash cover the payload as stored. With K the eight
 * key bytes (least significant first), S[i] = P[i] ^ K[i % 8] ^ S[i - 1], with S[-1] = 0. The
 * random byte makes two scramblings of one text differ throughout.
 *
 * Failures give a null result and leave an Error in lastError(); the two warnings ("No key set.",
 * "Invalid version or not a cyphertext.") also go to Qt's message handler. Integrity failures log
 * nothing. With ProtectionNone a wrong key goes unnoticed and gives garbage with ErrorNoError.
 * Successful results are never null, so an empty text decrypts to an empty, non-null result.
 *
 * An object takes no lock and belongs to one thread at a time. Both constructors reseed the
 * calling thread's random generator (a no-op where Qt has no per-thread generator to seed).
 */
class ZUCORE_EXPORT SimpleCrypt
{
public:
    /// How encryption compresses; reading goes by the flags of the cipher text alone. Based on
    /// int, so that any other value is a valid one (and acts as CompressionNever).
    enum CompressionMode : int {
        CompressionAuto = 0, ///< compress, and keep the result only if it is shorter
        CompressionAlways = 1, ///< always compress and set the flag
        CompressionNever = 2 ///< never compress; so does every value other than 0 and 1
    };

    /// Which integrity block encryption adds. Any other value acts as ProtectionNone.
    enum IntegrityProtectionMode : int {
        ProtectionNone = 0, ///< no block; so does every value other than 1 and 2
        ProtectionChecksum = 1, ///< Qt's CRC-16 of the payload
        ProtectionHash = 2 ///< the SHA-1 hash of the payload
    };

    /// The outcome of the last operation.
    enum Error {
        ErrorNoError = 0, ///< the operation succeeded
        ErrorNoKeySet = 1, ///< no key parts were found
        ErrorUnknownVersion = 2, ///< the version byte is not 3
        ErrorIntegrityFailed = 3 ///< the integrity block is missing or does not match
    };

    /// The bits of the flags byte of a cipher text.
    enum CryptoFlag {
        CryptoFlagNone = 0,
        CryptoFlagCompression = 0x01, ///< the payload is in qCompress() form
        CryptoFlagChecksum = 0x02, ///< the integrity block is a CRC-16
        CryptoFlagHash = 0x04 ///< the integrity block is a SHA-1 hash
    };
    Q_DECLARE_FLAGS(CryptoFlags, CryptoFlag)

    /// @name The built-in key
    /// The key of SimpleCrypt() is 0x9E3779B97F4A7C15, built at run time from these two words.
    /// They must never change: texts scrambled with the built-in key by one build must stay
    /// readable by every later one.
    /// @{

    /// The low 32 bits of the built-in key. Never to be changed.
    static constexpr quint32 DefaultKeyLow = 0x7F4A7C15u;
    /// The high 32 bits of the built-in key. Never to be changed.
    static constexpr quint32 DefaultKeyHigh = 0x9E3779B9u;
    /// @}

    /// An object with the built-in key; otherwise as SimpleCrypt(quint64).
    SimpleCrypt();

    /**
     * An object with @p key, CompressionAuto, ProtectionChecksum and ErrorNoError. Seeds the
     * calling thread's random generator from the low 16 bits of the current time in ms.
     */
    explicit SimpleCrypt(quint64 key);

    /// Takes @p key for the next operations; the modes and lastError() stay.
    void setKey(quint64 key);

    /// Splits the key into its eight bytes, least significant first. A key of 0 is valid.
    void splitKey();

    /// @name Encryption
    /// Each sets ErrorNoError on success and returns a null result, with ErrorNoKeySet and the
    /// warning "No key set.", when no key parts are set.
    /// @{

    /// Scrambles @p plaintext into a cipher text. @return the cipher text, or a null array.
    QByteArray encryptToByteArray(QByteArray plaintext);
    /// Scrambles the UTF-8 form of @p plaintext. @return the cipher text, or a null array.
    QByteArray encryptToByteArray(const QString &plaintext);
    /// Scrambles @p plaintext. @return the cipher text in Base64, or a null string.
    QString encryptToString(QByteArray plaintext);
    /// Scrambles the UTF-8 form of @p plaintext. @return the cipher text in Base64, or a null
    /// string.
    QString encryptToString(const QString &plaintext);
    /// @}

    /**
     * @name Decryption
     * Reading goes by the flags of the cipher text alone, whatever the modes of this object. A
     * compressed payload that qUncompress() rejects gives an empty result with ErrorNoError (Qt
     * warns by itself). Each fails with a null result:
     * - with ErrorNoKeySet and the warning "No key set." when no key parts are set;
     * - with lastError() untouched when the cipher text has fewer than 3 bytes;
     * - with ErrorUnknownVersion and the warning "Invalid version or not a cyphertext." when
     *   the first byte is not 3;
     * - with ErrorIntegrityFailed when the checksum (tested first, if flagged) or the hash is
     *   missing or doesn't match.
     */
    /// @{

    /// Restores the plain bytes of @p cypher. @return the plain bytes, or a null array.
    QByteArray decryptToByteArray(QByteArray cypher);
    /// Restores the plain bytes of @p cyphertext, read as Latin-1 Base64. @return the plain
    /// bytes, or a null array.
    QByteArray decryptToByteArray(const QString &cyphertext);
    /// Restores @p cypher and reads the plain bytes as UTF-8. @return the text, or a null
    /// string.
    QString decryptToString(QByteArray cypher);
    /// Restores @p cyphertext (Latin-1 Base64) and reads the plain bytes as UTF-8.
    /// @return the text, or a null string.
    QString decryptToString(const QString &cyphertext);
    /// @}

    /// @name Modes and state
    /// @{

    /// Sets how the next encryptions compress.
    void setCompressionMode(CompressionMode mode) { m_compressionMode = mode; }
    /// How encryption compresses; CompressionAuto at first.
    CompressionMode compressionMode() const { return m_compressionMode; }
    /// Sets which integrity block the next encryptions add.
    void setIntegrityProtectionMode(IntegrityProtectionMode mode) { m_protectionMode = mode; }
    /// Which integrity block encryption adds; ProtectionChecksum at first.
    IntegrityProtectionMode integrityProtectionMode() const { return m_protectionMode; }
    /// The outcome of the last operation that set one; ErrorNoError at first.
    Error lastError() const { return m_lastError; }
    /// @}

private:
    quint64 m_key;
    QVector<char> m_keyParts;
    CompressionMode m_compressionMode;
    IntegrityProtectionMode m_protectionMode;
    Error m_lastError;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(SimpleCrypt::CryptoFlags)
