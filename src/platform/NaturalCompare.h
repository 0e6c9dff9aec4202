#pragma once

#include <QString>

#include <string>

namespace ZuPlatform {

/**
 * Compares two strings in natural order, the way a file manager sorts names:
 * "file2" comes before "file10", and "Readme" equals "readme".
 *
 * On Windows this is the system's logical string comparison. Elsewhere the
 * library brings its own, with these rules:
 *
 * - The strings are read as a sequence of tokens: a run of ASCII digits
 *   '0'..'9' is one token, every other UTF-16 code unit is a token of its own.
 *   Tokens are compared pairwise from the left; the first difference decides.
 *   A string that is a proper prefix of the other comes first, so "" comes
 *   before everything.
 * - Two digit runs compare by numeric value, at any length (no overflow; the
 *   runs are compared digit by digit) and regardless of leading zeros.
 * - Token classes rank symbols (space, punctuation, marks and every code unit
 *   that is neither a letter nor an ASCII digit, non-ASCII digits included)
 *   before digit runs, and digit runs before letters: "_a" < "1a" < "aa".
 * - Letters compare case-insensitively by their Unicode case folding
 *   (QChar::toCaseFolded). Latin letters with diacritics up to U+024F compare
 *   as their base letter first, so "é" sorts among the "e"s, not after "z".
 *   Other letters (Greek, Cyrillic, CJK, "ß", "ø", ...) compare by their
 *   folded UTF-16 code unit and so come after the Latin ones. Symbols compare
 *   by folded code unit too (circled and Roman-numeral letters have case).
 *   Surrogate halves are compared as symbols, unit by unit, so letters
 *   outside the Basic Multilingual Plane compare with regard to case.
 * - Ties: when the strings agree on all of the above, the first accent
 *   difference or leading-zero difference from the left decides, so that the
 *   order is total and repeatable: "e" < "é", and fewer leading zeros come
 *   first ("a1" < "a01" < "a001"). Strings that differ only in case compare
 *   as 0, and so do only they.
 *
 * The comparison is a strict weak order (antisymmetric and transitive), so it
 * is safe for sorting. It allocates nothing; ASCII text takes a fast path.
 *
 * @return -1 if @p a sorts before @p b, 1 if after, 0 if they are equal but
 *         for case. There is no failure result: any two strings compare.
 */
int naturalCompare(const QString &a, const QString &b);

/**
 * Appends a sort key of @p text to @p keys, for sorting many texts. Two keys compare as byte
 * strings (memcmp, a key that is the start of another first); where they differ, naturalCompare()
 * orders the texts as their keys are ordered. Texts with equal keys differ at most in case,
 * accents or leading zeros, which only naturalCompare() tells apart. Returns false and appends
 * nothing where the comparison is the system's own (Windows).
 */
bool appendNaturalSortKey(const QString &text, std::string &keys);

} // namespace ZuPlatform
