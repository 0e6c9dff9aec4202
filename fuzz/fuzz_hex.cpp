#include <zucore/ZuCrc.h>
#include <zucore/ZuHex.h>

#include <cstdint>
#include <cstdlib>

// Hex text and bytes from outside: no read out of bounds, and the documented round trips hold.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    const QString text = QString::fromUtf8(bytes);

    const QByteArray decoded = ZuHex::StringToBuffer(text);
    if (decoded.size() != (text.size() + 1) / 2
        || ZuHex::HexStringToString(text).size() != decoded.size())
        abort();
    if (ZuHex::StringToBuffer(ZuHex::BufferToHexString(bytes)) != bytes)
        abort();
    if (ZuHex::BitsToBytes(ZuHex::BytesToBits(bytes)) != bytes)
        abort();
    ZuHex::BufferToUint(bytes);
    ZuHex::BufferToUshort(bytes);

    // The CRC doesn't depend on where the bytes lie, and a length past the end reads nothing more.
    const QByteArray shifted = QByteArray(1, 'x') + bytes;
    const QByteArray view = QByteArray::fromRawData(shifted.constData() + 1, bytes.size());
    if (ZuCrc::crc32(bytes, bytes.size()) != ZuCrc::crc32(view, view.size())
        || ZuCrc::crc32(bytes, bytes.size() + 64) != ZuCrc::crc32(bytes, bytes.size()))
        abort();
    return 0;
}
