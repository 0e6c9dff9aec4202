#include "platform/NaturalCompare.h"

#include <QString>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

// The input is two UTF-16 strings split at the first pair of zero bytes (or
// in the middle when there is none). Any input must give a reflexive,
// antisymmetric answer in -1..1 that ignores case (Unicode case folding),
// and sort keys that agree with it wherever they differ; anything else aborts.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const size_t units = size / 2;
    QString all(int(units), Qt::Uninitialized);
    if (units)
        std::memcpy(all.data(), data, units * 2);
    const int split = all.indexOf(QChar(0));
    const QString a = split >= 0 ? all.left(split) : all.left(int(units / 2));
    const QString b = split >= 0 ? all.mid(split + 1) : all.mid(int(units / 2));

    const int ab = ZuPlatform::naturalCompare(a, b);
    const int ba = ZuPlatform::naturalCompare(b, a);
    if (ab < -1 || ab > 1 || ab != -ba)
        abort();
    if (ZuPlatform::naturalCompare(a, a) != 0 || ZuPlatform::naturalCompare(b, b) != 0)
        abort();
    QString folded = a;
    for (QChar &c : folded)
        c = c.toCaseFolded();
    if (ZuPlatform::naturalCompare(a, folded) != 0)
        abort();
    // Wherever the sort keys differ, they order the texts as the comparison does.
    std::string ka;
    std::string kb;
    ZuPlatform::appendNaturalSortKey(a, ka);
    ZuPlatform::appendNaturalSortKey(b, kb);
    if (ka != kb && ab != (ka < kb ? -1 : 1))
        abort();
    return 0;
}
