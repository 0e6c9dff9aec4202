#pragma once
// Equality of two QVariants by Qt 5's rule: values of different types are compared after
// converting one to the other's type ("1" equals 1). Qt 6 calls such values different; an
// edit that changes only a cell's type must be refused the same way in both builds.

#include <QVariant>

namespace ZuCompat {

inline bool variantEqual(const QVariant &a, const QVariant &b)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    const QMetaType typeA = a.metaType();
    const QMetaType typeB = b.metaType();
    // Same types, and numbers of any types, compare alike in both.
    if (typeA == typeB || !a.isValid() || !b.isValid() || a == b)
        return a == b;
    QVariant converted = b;
    if (b.canConvert(typeA))
        return converted.convert(typeA) && a == converted;
    converted = a;
    return converted.convert(typeB) && converted == b;
#else
    return a == b;
#endif
}

} // namespace ZuCompat
