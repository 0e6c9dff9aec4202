#include "platform/NaturalCompare.h"

#ifdef Q_OS_WIN
#include <qt_windows.h>

#include <shlwapi.h>
#ifdef _MSC_VER
#pragma comment(lib, "shlwapi.lib")
#endif
#endif

namespace ZuPlatform {

#ifdef Q_OS_WIN

int naturalCompare(const QString &a, const QString &b)
{
    // utf16() is terminated, which the system call needs.
    const int r = StrCmpLogicalW(reinterpret_cast<const wchar_t *>(a.utf16()),
                                 reinterpret_cast<const wchar_t *>(b.utf16()));
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

bool appendNaturalSortKey(const QString &, std::string &)
{
    return false;
}

#else

namespace {

// A token's rank sits above the 16 bits of its code unit, so one unsigned
// comparison orders by class first and by character second.
constexpr uint SymbolClass = 0;
constexpr uint DigitClass = 1u << 16;
constexpr uint LetterClass = 2u << 16;

constexpr ushort FirstAccented = 0x00C0;
constexpr ushort LastAccented = 0x024F;

inline bool isDigit(ushort c)
{
    return ushort(c - '0') < 10u;
}

// Base letters of the case-folded Latin-1 Supplement and Latin Extended-A/B,
// so that accented letters sort beside their base letter. Built once, on the
// first non-ASCII letter compared.
struct AccentTable
{
    ushort base[LastAccented - FirstAccented + 1];

    AccentTable()
    {
        for (uint c = FirstAccented; c <= LastAccented; ++c) {
            uint b = QChar::toCaseFolded(c);
            while (QChar::decompositionTag(b) == QChar::Canonical) {
                const QString parts = QChar::decomposition(b);
                if (parts.isEmpty() || parts.at(0).unicode() == b)
                    break;
                b = parts.at(0).unicode();
            }
            base[c - FirstAccented] = ushort(QChar::toCaseFolded(b));
        }
    }
};

const AccentTable &accentTable()
{
    static const AccentTable table;
    return table;
}

struct Key
{
    uint primary; // class and base character: decides the order
    uint secondary; // class and folded character: breaks ties (accents)
};

inline Key keyOf(ushort c)
{
    if (c < 0x80) {
        if (isDigit(c))
            return { DigitClass, DigitClass };
        const uint lower = c | 0x20u;
        const uint k = (lower - 'a' < 26u) ? (LetterClass | lower) : (SymbolClass | c);
        return { k, k };
    }
    const uint folded = QChar::toCaseFolded(uint(c));
    // Some symbols have case too (circled letters, Roman numerals).
    if (!QChar::isLetter(folded))
        return { SymbolClass | folded, SymbolClass | folded };
    uint base = folded;
    if (folded >= FirstAccented && folded <= LastAccented)
        base = accentTable().base[folded - FirstAccented];
    return { LetterClass | base, LetterClass | folded };
}

// Compares the digit runs that start at pa and pb and moves both past them.
// Returns the order of their values; on equal values records the first
// leading-zero difference in tie (fewer zeros first) and returns 0.
inline int compareDigitRuns(const ushort *&pa, const ushort *ea, const ushort *&pb,
                            const ushort *eb, int &tie)
{
    const ushort *startA = pa;
    while (pa < ea && *pa == '0')
        ++pa;
    const ushort *startB = pb;
    while (pb < eb && *pb == '0')
        ++pb;
    const qptrdiff zerosA = pa - startA;
    const qptrdiff zerosB = pb - startB;

    // Walk the significant digits side by side: the longer run is the larger
    // value, and among runs of one length the first differing digit decides.
    // (Branch-free where the data decides: these branches mispredict.)
    int firstDifference = 0;
    while (pa < ea && pb < eb && isDigit(*pa) && isDigit(*pb)) {
        const int order = (*pa > *pb) - (*pa < *pb);
        firstDifference = firstDifference ? firstDifference : order;
        ++pa;
        ++pb;
    }
    const int longer = int(pa < ea && isDigit(*pa)) - int(pb < eb && isDigit(*pb));
    if (longer | firstDifference)
        return longer ? longer : firstDifference;
    if (!tie && zerosA != zerosB)
        tie = zerosA < zerosB ? -1 : 1;
    return 0;
}

int compareUtf16(const ushort *pa, const ushort *ea, const ushort *pb, const ushort *eb)
{
    int tie = 0;
    while (pa < ea && pb < eb) {
        const ushort ca = *pa;
        const ushort cb = *pb;
        if (ca == cb && !isDigit(ca)) {
            ++pa;
            ++pb;
            continue;
        }
        if (isDigit(ca) && isDigit(cb)) {
            if (const int r = compareDigitRuns(pa, ea, pb, eb, tie))
                return r;
            continue;
        }
        const Key ka = keyOf(ca);
        const Key kb = keyOf(cb);
        if (ka.primary != kb.primary)
            return ka.primary < kb.primary ? -1 : 1;
        if (!tie && ka.secondary != kb.secondary)
            tie = ka.secondary < kb.secondary ? -1 : 1;
        ++pa;
        ++pb;
    }
    if (pa < ea)
        return 1;
    if (pb < eb)
        return -1;
    return tie;
}

} // namespace

// The primary key of every code unit, three bytes big-endian (18 bits), in order; a digit run
// instead writes the digit class, its length without leading zeros (four bytes) and those
// digits. Byte order then follows compareUtf16() up to its tie: a run longer by value is longer,
// and runs of one length compare digit by digit.
bool appendNaturalSortKey(const QString &text, std::string &keys)
{
    const ushort *p = reinterpret_cast<const ushort *>(text.constData());
    const ushort *const end = p + text.size();
    const auto putUnit = [&keys](uint unit) {
        const char bytes[3] = { char(unit >> 16), char(unit >> 8), char(unit) };
        keys.append(bytes, 3);
    };
    while (p < end) {
        if (!isDigit(*p)) {
            putUnit(keyOf(*p).primary);
            ++p;
            continue;
        }
        while (p < end && *p == '0')
            ++p;
        const ushort *const digits = p;
        while (p < end && isDigit(*p))
            ++p;
        const quint32 length = quint32(p - digits);
        putUnit(DigitClass);
        const char size[4]
            = { char(length >> 24), char(length >> 16), char(length >> 8), char(length) };
        keys.append(size, 4);
        for (const ushort *d = digits; d < p; ++d)
            keys += char(*d);
    }
    return true;
}

int naturalCompare(const QString &a, const QString &b)
{
    // constData(), unlike utf16(), never copies a string made by fromRawData().
    const ushort *pa = reinterpret_cast<const ushort *>(a.constData());
    const ushort *pb = reinterpret_cast<const ushort *>(b.constData());
    return compareUtf16(pa, pa + a.size(), pb, pb + b.size());
}

#endif

} // namespace ZuPlatform
