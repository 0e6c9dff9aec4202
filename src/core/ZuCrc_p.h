#pragma once

// Not API: the CRC-32 kernels behind ZuCrc::crc32, here so that tests can run each one directly,
// not only the one that this CPU picks. Each works on the inner register (before the final XOR).

#include <QVector>
#include <QtEndian>

#include <cstddef>
#include <cstdint>

#if (defined(__x86_64__) || defined(__i386__)) && (defined(__GNUC__) || defined(__clang__))
#define ZU_CRC_HAVE_CLMUL 1
#include <immintrin.h>
#endif

namespace ZuCrcKernels {

// The polynomial in both bit orders: 0x04C11DB7 with x^0 in bit 0 for the folding constants, and
// bit-reflected for the tables, since the CRC reads the lowest bit of a byte first.
constexpr quint32 Polynomial = 0x04C11DB7u;
constexpr quint32 ReflectedPolynomial = 0xEDB88320u;

struct Tables
{
    quint32 t[8][256];
};

// t[0] is the byte-at-a-time table; t[k][b] is the register after byte b followed by k zero
// bytes, so that eight table look-ups consume eight bytes at once.
constexpr Tables makeTables()
{
    Tables tables {};
    for (quint32 b = 0; b < 256; ++b) {
        quint32 r = b;
        for (int i = 0; i < 8; ++i)
            r = (r & 1) ? (r >> 1) ^ ReflectedPolynomial : r >> 1;
        tables.t[0][b] = r;
    }
    for (int k = 1; k < 8; ++k)
        for (int b = 0; b < 256; ++b) {
            const quint32 previous = tables.t[k - 1][b];
            tables.t[k][b] = (previous >> 8) ^ tables.t[0][previous & 0xff];
        }
    return tables;
}

inline constexpr Tables tables = makeTables();

inline quint32 crcBytes(quint32 crc, const uchar *p, size_t n)
{
    for (; n; --n)
        crc = tables.t[0][(crc ^ *p++) & 0xff] ^ (crc >> 8);
    return crc;
}

// Works on the inner register (before the final XOR).
inline quint32 crcSlicing8(quint32 crc, const uchar *p, size_t n)
{
    const auto &t = tables.t;
    for (; n >= 8; p += 8, n -= 8) {
        const quint32 lo = qFromLittleEndian<quint32>(p) ^ crc;
        const quint32 hi = qFromLittleEndian<quint32>(p + 4);
        crc = t[7][lo & 0xff] ^ t[6][(lo >> 8) & 0xff] ^ t[5][(lo >> 16) & 0xff] ^ t[4][lo >> 24]
            ^ t[3][hi & 0xff] ^ t[2][(hi >> 8) & 0xff] ^ t[1][(hi >> 16) & 0xff] ^ t[0][hi >> 24];
    }
    return crcBytes(crc, p, n);
}

#ifdef ZU_CRC_HAVE_CLMUL

// Folding, in the reflected order of the CRC: a 128-bit block holds x^127 in its lowest bit. A
// block A = Ahi x^64 + Alo moved D bits further down the message becomes
// Ahi (x^(D+64) mod P) + Alo (x^D mod P), which has the same remainder and fits in 128 bits
// again. A carry-less product of two reflected 64-bit values comes out one bit short of the
// reflected 128-bit frame, hence the constants x^(D+63) and x^(D-1).
constexpr quint32 xPowModP(int n)
{
    quint32 v = 1;
    for (int i = 0; i < n; ++i)
        v = (v & 0x80000000u) ? (v << 1) ^ Polynomial : v << 1;
    return v;
}

// The remainder in the reflected 64-bit frame: coefficient x^i goes to bit 63 - i.
constexpr quint64 foldConstant(int n)
{
    const quint32 v = xPowModP(n);
    quint64 k = 0;
    for (int i = 0; i < 32; ++i)
        if (v & (1u << i))
            k |= quint64(1) << (63 - i);
    return k;
}

constexpr quint64 Fold2048Lo = foldConstant(2048 + 63);
constexpr quint64 Fold2048Hi = foldConstant(2048 - 1);
constexpr quint64 Fold512Lo = foldConstant(512 + 63);
constexpr quint64 Fold512Hi = foldConstant(512 - 1);
constexpr quint64 Fold128Lo = foldConstant(128 + 63);
constexpr quint64 Fold128Hi = foldConstant(128 - 1);
constexpr quint64 Fold256Lo = foldConstant(256 + 63);
constexpr quint64 Fold256Hi = foldConstant(256 - 1);
constexpr quint64 Fold384Lo = foldConstant(384 + 63);
constexpr quint64 Fold384Hi = foldConstant(384 - 1);

__attribute__((target("pclmul,sse4.1"))) inline __m128i fold(__m128i acc, __m128i k, __m128i data)
{
    const __m128i lo = _mm_clmulepi64_si128(acc, k, 0x00);
    const __m128i hi = _mm_clmulepi64_si128(acc, k, 0x11);
    return _mm_xor_si128(_mm_xor_si128(lo, hi), data);
}

__attribute__((target("pclmul,sse4.1"))) inline __m128i load(const uchar *p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}

// Four independent lanes of 16 bytes hide the latency of the multiplier; they are folded into
// one at the end, and the last 128 bits are reduced by the table: the CRC of 16 bytes from a
// zero register is exactly their remainder times x^32.
__attribute__((target("pclmul,sse4.1"))) inline quint32 crcClmul(quint32 crc, const uchar *p,
                                                                 size_t n)
{
    if (n < 64)
        return crcSlicing8(crc, p, n);
    const __m128i k512 = _mm_set_epi64x(qint64(Fold512Hi), qint64(Fold512Lo));
    const __m128i k128 = _mm_set_epi64x(qint64(Fold128Hi), qint64(Fold128Lo));

    __m128i x0 = _mm_xor_si128(load(p), _mm_cvtsi32_si128(int(crc)));
    __m128i x1 = load(p + 16);
    __m128i x2 = load(p + 32);
    __m128i x3 = load(p + 48);
    p += 64;
    n -= 64;
    for (; n >= 64; p += 64, n -= 64) {
        x0 = fold(x0, k512, load(p));
        x1 = fold(x1, k512, load(p + 16));
        x2 = fold(x2, k512, load(p + 32));
        x3 = fold(x3, k512, load(p + 48));
    }
    x1 = fold(x0, k128, x1);
    x2 = fold(x1, k128, x2);
    x3 = fold(x2, k128, x3);
    for (; n >= 16; p += 16, n -= 16)
        x3 = fold(x3, k128, load(p));

    alignas(16) uchar rest[16];
    _mm_store_si128(reinterpret_cast<__m128i *>(rest), x3);
    return crcSlicing8(crcSlicing8(0, rest, sizeof rest), p, n);
}

#define ZU_CRC_TARGET_512 __attribute__((target("avx512f,vpclmulqdq,pclmul,sse4.1")))

ZU_CRC_TARGET_512 inline __m512i fold512(__m512i acc, __m512i k, __m512i data)
{
    const __m512i lo = _mm512_clmulepi64_epi128(acc, k, 0x00);
    const __m512i hi = _mm512_clmulepi64_epi128(acc, k, 0x11);
    return _mm512_ternarylogic_epi64(lo, hi, data, 0x96); // lo ^ hi ^ data
}

ZU_CRC_TARGET_512 inline __m512i load512(const uchar *p)
{
    return _mm512_loadu_si512(p);
}

ZU_CRC_TARGET_512 inline __m512i constants512(quint64 lo, quint64 hi)
{
    // The masked forms with an explicit source: the plain ones start from an "undefined" register
    // that GCC 12 warns about.
    return _mm512_mask_broadcast_i32x4(_mm512_setzero_si512(), 0xffff,
                                       _mm_set_epi64x(qint64(hi), qint64(lo)));
}

// The same folding, four 128-bit lanes to a register and four registers: 256 bytes a round.
ZU_CRC_TARGET_512 inline quint32 crcClmul512(quint32 crc, const uchar *p, size_t n)
{
    if (n < 256)
        return crcClmul(crc, p, n);
    const __m512i k2048 = constants512(Fold2048Lo, Fold2048Hi);
    const __m512i k512 = constants512(Fold512Lo, Fold512Hi);

    const __m128i first = _mm_cvtsi32_si128(int(crc));
    __m512i x0 = _mm512_xor_si512(load512(p), _mm512_inserti32x4(_mm512_setzero_si512(), first, 0));
    __m512i x1 = load512(p + 64);
    __m512i x2 = load512(p + 128);
    __m512i x3 = load512(p + 192);
    p += 256;
    n -= 256;
    for (; n >= 256; p += 256, n -= 256) {
        x0 = fold512(x0, k2048, load512(p));
        x1 = fold512(x1, k2048, load512(p + 64));
        x2 = fold512(x2, k2048, load512(p + 128));
        x3 = fold512(x3, k2048, load512(p + 192));
    }
    x1 = fold512(x0, k512, x1);
    x2 = fold512(x1, k512, x2);
    x3 = fold512(x2, k512, x3);
    for (; n >= 64; p += 64, n -= 64)
        x3 = fold512(x3, k512, load512(p));

    // The four lanes lie 384, 256, 128 and 0 bits before the end of the register.
    const __m128i k128 = _mm_set_epi64x(qint64(Fold128Hi), qint64(Fold128Lo));
    const __m128i k256 = _mm_set_epi64x(qint64(Fold256Hi), qint64(Fold256Lo));
    const __m128i k384 = _mm_set_epi64x(qint64(Fold384Hi), qint64(Fold384Lo));
    const __m128i zero = _mm_setzero_si128();
    __m128i acc = _mm512_mask_extracti32x4_epi32(zero, 0xf, x3, 3);
    acc = fold(_mm512_mask_extracti32x4_epi32(zero, 0xf, x3, 2), k128, acc);
    acc = fold(_mm512_mask_extracti32x4_epi32(zero, 0xf, x3, 1), k256, acc);
    acc = fold(_mm512_mask_extracti32x4_epi32(zero, 0xf, x3, 0), k384, acc);
    for (; n >= 16; p += 16, n -= 16)
        acc = fold(acc, k128, load(p));

    alignas(16) uchar rest[16];
    _mm_store_si128(reinterpret_cast<__m128i *>(rest), acc);
    return crcSlicing8(crcSlicing8(0, rest, sizeof rest), p, n);
}

using Kernel = quint32 (*)(quint32, const uchar *, size_t);

inline Kernel pickKernel()
{
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("pclmul") || !__builtin_cpu_supports("sse4.1"))
        return crcSlicing8;
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("vpclmulqdq"))
        return crcClmul512;
    return crcClmul;
}

#else

using Kernel = quint32 (*)(quint32, const uchar *, size_t);
inline Kernel pickKernel()
{
    return crcSlicing8;
}

#endif

/// Every kernel of this build with whether this CPU can run it; the first is the portable one.
struct Entry
{
    const char *name;
    Kernel kernel;
    bool supported;
};

inline QVector<Entry> all()
{
    QVector<Entry> kernels { { "slicing-by-8", crcSlicing8, true } };
#ifdef ZU_CRC_HAVE_CLMUL
    __builtin_cpu_init();
    const bool clmul = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
    kernels.append({ "clmul", crcClmul, clmul });
    kernels.append(
        { "clmul-512", crcClmul512,
          clmul && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("vpclmulqdq") });
#endif
    return kernels;
}

} // namespace ZuCrcKernels
