#pragma once

#include <zucore/zucore_export.h>

#include <QByteArray>

/**
 * @namespace ZuCrc
 * @brief The CRC-32 of IEEE 802.3 (the one of zlib, PNG and Ethernet).
 *
 * @code #include <zucore/ZuCrc.h> @endcode
 *
 * Stateless and thread-safe. Large buffers go through a carry-less multiplication kernel when the
 * processor has one (chosen once, at run time); small ones and other processors use a
 * slicing-by-8 table.
 */
namespace ZuCrc {

/**
 * The CRC-32 (polynomial 0x04C11DB7, reflected, initial value and final XOR 0xFFFFFFFF) of the
 * first @p length bytes of @p data.
 * @return 0 when @p length is 0 or less. A @p length beyond data.size() is a caller's error;
 * it is cut to data.size() so that nothing is read out of bounds.
 */
ZUCORE_EXPORT quint32 crc32(const QByteArray &data, int length);

} // namespace ZuCrc
