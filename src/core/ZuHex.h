#pragma once

#include <zucore/zucore_export.h>

#include <QBitArray>
#include <QByteArray>
#include <QChar>
#include <QString>

/**
 * @namespace ZuHex
 * @brief Conversions between numbers, raw bytes, hexadecimal text and bit arrays.
 *
 * @code #include <zucore/ZuHex.h> @endcode
 *
 * Multi-byte values are little-endian, least significant byte first. Hexadecimal input reads
 * either case; output is upper case without separators unless said otherwise. Nothing here
 * reports a failure: a bad digit reads as 0, and a QByteArray that is too short reads as 0. The
 * functions that take a raw pointer trust the caller for the bytes they read.
 */
namespace ZuHex {

/// @name Numbers and raw bytes
/// @{

/// 4 bytes, least significant first.
ZUCORE_EXPORT QByteArray UintToBuffer(const uint &value);
/// 2 bytes, least significant first.
ZUCORE_EXPORT QByteArray UshortToBuffer(const ushort &value);
/// The first 4 bytes as a little-endian value; 0 for an array shorter than 4 bytes.
ZUCORE_EXPORT uint BufferToUint(const QByteArray &buffer);
/// The first 2 bytes as a little-endian value; 0 for an array shorter than 2 bytes.
ZUCORE_EXPORT ushort BufferToUshort(const QByteArray &buffer);
/// The 4 bytes at @p data as a little-endian value.
ZUCORE_EXPORT uint ucharToUint(const uchar *data);
/// The 2 bytes at @p data as a little-endian value.
ZUCORE_EXPORT ushort ucharToUshort(const uchar *data);
/// One Latin-1 character per byte, zero bytes included; empty when @p length is below 1.
ZUCORE_EXPORT QString ucharToQString(const uchar *data, const int &length);
/// The 4 bytes of @p value in reverse order.
ZUCORE_EXPORT uint ByteSwap(uint value);
/// The 2 bytes of @p value in reverse order.
ZUCORE_EXPORT ushort UshortByteSwap(ushort value);
/// The high and low 4 bits exchanged.
ZUCORE_EXPORT uchar NibbleSwap(const uchar &value);
/// The 8 bits in reverse order.
ZUCORE_EXPORT uchar ReverseByte(const uchar &value);
/// Every byte bit-reversed; the order of the bytes stays.
ZUCORE_EXPORT QByteArray ReverseBytes(const QByteArray &buffer);
/// @}

/// @name Hexadecimal text
/// @{

/// The value of one hex digit (either case); 0 for anything else.
ZUCORE_EXPORT int AsciiVal(char digit);
/// @p high as the upper and @p low as the lower 4 bits; a non-digit (or code >= 256) counts 0.
ZUCORE_EXPORT uchar StringToByte(const QChar &high, const QChar &low);
/// The bytes written in @p text, two digits a byte; odd-length text gets a "0" appended (ABC
/// gives 0xAB 0xC0). Empty for empty text.
ZUCORE_EXPORT QByteArray StringToBuffer(const QString &text);
/// As StringToBuffer(), one Latin-1 character per byte. Empty for empty text.
ZUCORE_EXPORT QString HexStringToString(QString text);
/// Two upper-case digits ("%02X").
ZUCORE_EXPORT QString ByteToString(uchar value);
/// ByteToString() of each of the @p size bytes, joined; empty when @p size is below 1.
ZUCORE_EXPORT QString BufferToString(uchar *buffer, int size);
/// ByteToString() of each byte, joined; empty for an empty array.
ZUCORE_EXPORT QString BufferToHexString(const QByteArray &buffer);
/// Four digits, most significant first (0x000F gives 000F).
ZUCORE_EXPORT QString UshortToHexString(const ushort &value);
/// Upper-case hex with "0x", padded to two digits only: 0x00, 0x0A, 0xFF, 0x100.
ZUCORE_EXPORT QString IntToString(uint value);
/// The byte-swapped value as eight lower-case digits ("%08x"): 0xAB gives ab000000.
ZUCORE_EXPORT QString LeIntToBeHex(uint value);
/// @}

/// @name Bits (most significant bit of each byte first)
/// @{

/// 8 bits per byte; bit 8n is the top bit of byte n. Empty for an empty array.
ZUCORE_EXPORT QBitArray BytesToBits(const QByteArray &bytes);
/// The reverse of BytesToBits(); a last partial byte has its remaining low bits clear.
ZUCORE_EXPORT QByteArray BitsToBytes(const QBitArray &bits);
/// "1" for a set and "0" for a clear bit, from index 0 up.
ZUCORE_EXPORT QString BitArrayToString(const QBitArray &bits);
/// @}

} // namespace ZuHex
