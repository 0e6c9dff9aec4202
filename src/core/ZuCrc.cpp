#include "core/ZuCrc_p.h"

#include <zucore/ZuCrc.h>

namespace ZuCrc {

quint32 crc32(const QByteArray &data, int length)
{
    if (length <= 0)
        return 0;
    const size_t n = size_t(qMin(length, data.size()));
    const auto *p = reinterpret_cast<const uchar *>(data.constData());
    static const ZuCrcKernels::Kernel kernel = ZuCrcKernels::pickKernel();
    return kernel(0xFFFFFFFFu, p, n) ^ 0xFFFFFFFFu;
}

} // namespace ZuCrc
