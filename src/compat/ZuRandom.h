#pragma once
// qrand() is gone from Qt 6; its replacement draws from the same kind of range.

#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QRandomGenerator>

#include <cstdlib>
#endif

namespace ZuCompat {

/// A value as qrand() gives it: 0 to RAND_MAX.
inline int qrandValue()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return int(QRandomGenerator::global()->bounded(quint32(RAND_MAX) + 1));
#else
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return qrand();
    QT_WARNING_POP
#endif
}

/// Seeds the calling thread's generator as qsrand() did. Qt 6 draws from its global generator,
/// which the system seeds and nobody can reseed, so there this does nothing.
inline void qsrandSeed(uint seed)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    Q_UNUSED(seed);
#else
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    qsrand(seed);
    QT_WARNING_POP
#endif
}

} // namespace ZuCompat
