#include "foundation/literal_finder.h"

#include <algorithm>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tl {

namespace {

// How common a character is in prose and markup, lower for rarer: blanks,
// line ends, letters and digits are everywhere, the characters of tags
// and attributes in every page.
int commonness(QChar c)
{
    if (c == u' ')
        return 4;
    if (c == u'\n' || c.isLetterOrNumber())
        return 3;
    if (c == u'<' || c == u'>' || c == u'"' || c == u'=' || c == u'/')
        return 2;
    return 1;
}

} // namespace

LiteralFinder::LiteralFinder(const QString &literal) : literal_(literal)
{
    for (qsizetype k = 1; k < literal_.size(); ++k) {
        if (commonness(literal_[k]) < commonness(literal_[anchor_]))
            anchor_ = k;
    }
}

namespace {

// The first position at or after `from` where `first` stands with `second`
// right behind it, or -1. Eight places at a time where the processor has
// the vector instructions every x86-64 one has: markup is full of the
// single characters that literals begin with, and a search for one of them
// would stop every few characters.
qsizetype indexOfPair(QStringView text, qsizetype from, char16_t first, char16_t second)
{
    const char16_t *d = text.utf16();
    const qsizetype n = text.size();
    qsizetype at = from;
#if defined(__SSE2__)
    const __m128i firsts = _mm_set1_epi16(short(first));
    const __m128i seconds = _mm_set1_epi16(short(second));
    for (; at + 9 <= n; at += 8) {
        const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i *>(d + at));
        const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i *>(d + at + 1));
        const int mask = _mm_movemask_epi8(
            _mm_and_si128(_mm_cmpeq_epi16(here, firsts), _mm_cmpeq_epi16(next, seconds)));
        if (mask != 0)
            return at + (__builtin_ctz(unsigned(mask)) >> 1);
    }
#endif
    for (; at + 1 < n; ++at) {
        if (d[at] == first && d[at + 1] == second)
            return at;
    }
    return -1;
}

} // namespace

qsizetype indexOfCaselessPair(QStringView text, qsizetype from, char16_t first, char16_t second)
{
    const char16_t upper = second >= u'a' && second <= u'z' ? char16_t(second - 0x20) : second;
    const char16_t *d = text.utf16();
    const qsizetype n = text.size();
    auto accepted = [&](char16_t c) { return c == second || c == upper || c > 0x7f; };
    qsizetype at = std::max<qsizetype>(from, 0);
#if defined(__SSE2__)
    const __m128i firsts = _mm_set1_epi16(short(first));
    const __m128i seconds = _mm_set1_epi16(short(second));
    const __m128i uppers = _mm_set1_epi16(short(upper));
    const __m128i ascii = _mm_set1_epi16(short(0xff80));
    const __m128i zero = _mm_setzero_si128();
    for (; at + 9 <= n; at += 8) {
        const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i *>(d + at));
        const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i *>(d + at + 1));
        const __m128i beyondAscii =
            _mm_andnot_si128(_mm_cmpeq_epi16(_mm_and_si128(next, ascii), zero), _mm_set1_epi16(-1));
        const __m128i nextAccepted = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi16(next, seconds), _mm_cmpeq_epi16(next, uppers)),
            beyondAscii);
        const int mask =
            _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi16(here, firsts), nextAccepted));
        if (mask != 0)
            return at + (__builtin_ctz(unsigned(mask)) >> 1);
    }
#endif
    for (; at + 1 < n; ++at) {
        if (d[at] == first && accepted(d[at + 1]))
            return at;
    }
    return -1;
}

qsizetype LiteralFinder::indexIn(QStringView text, qsizetype from) const
{
    if (literal_.isEmpty())
        return from <= text.size() ? from : -1;
    const qsizetype size = literal_.size();
    const qsizetype last = text.size() - size; // the last possible start
    if (from < 0 || from > last)
        return -1;
    if (size == 1)
        return text.indexOf(literal_[0], from);
    // The anchor and the character behind it, or before it at the end.
    const qsizetype pair = std::min(anchor_, size - 2);
    const char16_t first = literal_[pair].unicode();
    const char16_t second = literal_[pair + 1].unicode();
    for (qsizetype at = indexOfPair(text, from + pair, first, second); at >= 0;
         at = indexOfPair(text, at + 1, first, second)) {
        const qsizetype start = at - pair;
        if (start > last)
            return -1;
        if (std::equal(literal_.begin(), literal_.end(), text.begin() + start))
            return start;
    }
    return -1;
}

} // namespace tl
