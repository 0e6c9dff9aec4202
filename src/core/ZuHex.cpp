#include <zucore/ZuHex.h>

#include <QtEndian>

namespace {

const char upperDigits[] = "0123456789ABCDEF";

// Decodes pairs of hex digits; an odd last digit is the high nibble of a last byte (the pad is
// a trailing "0").
QByteArray decodeHex(const QString &text)
{
    const int count = (text.size() + 1) / 2;
    QByteArray bytes(count, Qt::Uninitialized);
    const QChar *in = text.constData();
    for (int i = 0; i < count; ++i) {
        const int at = 2 * i;
        const QChar low = at + 1 < text.size() ? in[at + 1] : QLatin1Char('0');
        bytes[i] = static_cast<char>(ZuHex::StringToByte(in[at], low));
    }
    return bytes;
}

void appendByte(QChar *&out, uchar value)
{
    *out++ = QLatin1Char(upperDigits[value >> 4]);
    *out++ = QLatin1Char(upperDigits[value & 15]);
}

QString bytesToHex(const uchar *data, int size)
{
    if (size < 1)
        return QString();
    QString text(2 * size, Qt::Uninitialized);
    QChar *out = text.data();
    for (int i = 0; i < size; ++i)
        appendByte(out, data[i]);
    return text;
}

} // namespace

namespace ZuHex {

QByteArray UintToBuffer(const uint &value)
{
    QByteArray bytes(4, Qt::Uninitialized);
    qToLittleEndian<quint32>(value, bytes.data());
    return bytes;
}

QByteArray UshortToBuffer(const ushort &value)
{
    QByteArray bytes(2, Qt::Uninitialized);
    qToLittleEndian<quint16>(value, bytes.data());
    return bytes;
}

uint BufferToUint(const QByteArray &buffer)
{
    return buffer.size() < 4 ? 0 : qFromLittleEndian<quint32>(buffer.constData());
}

ushort BufferToUshort(const QByteArray &buffer)
{
    return buffer.size() < 2 ? 0 : qFromLittleEndian<quint16>(buffer.constData());
}

uint ucharToUint(const uchar *data)
{
    return qFromLittleEndian<quint32>(data);
}

ushort ucharToUshort(const uchar *data)
{
    return qFromLittleEndian<quint16>(data);
}

QString ucharToQString(const uchar *data, const int &length)
{
    if (length < 1)
        return QString();
    return QString::fromLatin1(reinterpret_cast<const char *>(data), length);
}

uint ByteSwap(uint value)
{
    return qbswap<quint32>(value);
}

ushort UshortByteSwap(ushort value)
{
    return qbswap<quint16>(value);
}

uchar NibbleSwap(const uchar &value)
{
    return static_cast<uchar>((value << 4) | (value >> 4));
}

uchar ReverseByte(const uchar &value)
{
    uint v = value;
    v = ((v & 0xf0) >> 4) | ((v & 0x0f) << 4);
    v = ((v & 0xcc) >> 2) | ((v & 0x33) << 2);
    v = ((v & 0xaa) >> 1) | ((v & 0x55) << 1);
    return static_cast<uchar>(v);
}

QByteArray ReverseBytes(const QByteArray &buffer)
{
    QByteArray reversed(buffer.size(), Qt::Uninitialized);
    for (int i = 0; i < buffer.size(); ++i)
        reversed[i] = static_cast<char>(ReverseByte(static_cast<uchar>(buffer.at(i))));
    return reversed;
}

int AsciiVal(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return 0;
}

uchar StringToByte(const QChar &high, const QChar &low)
{
    const auto nibble = [](const QChar &c) {
        return c.unicode() < 256 ? AsciiVal(static_cast<char>(c.unicode())) : 0;
    };
    return static_cast<uchar>((nibble(high) << 4) | nibble(low));
}

QByteArray StringToBuffer(const QString &text)
{
    return decodeHex(text);
}

QString HexStringToString(QString text)
{
    // With the size: QString::fromLatin1(QByteArray) would stop at the first zero byte.
    const QByteArray bytes = decodeHex(text);
    return QString::fromLatin1(bytes.constData(), bytes.size());
}

QString ByteToString(uchar value)
{
    return bytesToHex(&value, 1);
}

QString BufferToString(uchar *buffer, int size)
{
    return bytesToHex(buffer, size);
}

QString BufferToHexString(const QByteArray &buffer)
{
    return bytesToHex(reinterpret_cast<const uchar *>(buffer.constData()), buffer.size());
}

QString UshortToHexString(const ushort &value)
{
    const uchar bytes[2] = { static_cast<uchar>(value >> 8), static_cast<uchar>(value) };
    return bytesToHex(bytes, 2);
}

QString IntToString(uint value)
{
    const QString digits = QString::number(value, 16).toUpper();
    return (value <= 15 ? QLatin1String("0x0") : QLatin1String("0x")) + digits;
}

QString LeIntToBeHex(uint value)
{
    return QString::number(ByteSwap(value), 16).rightJustified(8, QLatin1Char('0'));
}

QBitArray BytesToBits(const QByteArray &bytes)
{
    QBitArray bits(bytes.size() * 8);
    for (int i = 0; i < bytes.size(); ++i) {
        const uchar byte = static_cast<uchar>(bytes.at(i));
        for (int b = 0; b < 8; ++b)
            bits.setBit(8 * i + b, byte & (0x80 >> b));
    }
    return bits;
}

QByteArray BitsToBytes(const QBitArray &bits)
{
    QByteArray bytes((bits.size() + 7) / 8, '\0');
    for (int i = 0; i < bits.size(); ++i) {
        if (bits.testBit(i))
            bytes[i / 8] = static_cast<char>(bytes.at(i / 8) | (0x80 >> (i % 8)));
    }
    return bytes;
}

QString BitArrayToString(const QBitArray &bits)
{
    QString text(bits.size(), Qt::Uninitialized);
    QChar *out = text.data();
    for (int i = 0; i < bits.size(); ++i)
        out[i] = QLatin1Char(bits.testBit(i) ? '1' : '0');
    return text;
}

} // namespace ZuHex
