#include "store/detail/text_decoders.h"

#include <bit>
#include <cstring>
#include <tuple>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tl::store::detail {

namespace {

// Every encoding read here has ASCII as its first half, and most text is
// ASCII: blocks of bytes are widened whole, and only their other bytes are
// then decoded. No encoding here makes more UTF-16 units than it has bytes,
// so the text is made once at the bytes' size and decoded into in place.
constexpr qsizetype kBlock = 16;

void widenBlock(const uchar *in, char16_t *out)
{
#ifdef __SSE2__
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in));
    const __m128i zero = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm_unpacklo_epi8(bytes, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 8), _mm_unpackhi_epi8(bytes, zero));
#else
    // Loaded first so that the compiler sees the stores cannot change it.
    std::array<uchar, kBlock> block;
    std::memcpy(block.data(), in, kBlock);
    for (qsizetype k = 0; k < kBlock; ++k)
        out[k] = block[k];
#endif
}

// Bit k set when byte k of the block at `in` is 0x80 or above.
unsigned highBytes(const uchar *in)
{
#ifdef __SSE2__
    return unsigned(_mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(in))));
#else
    unsigned mask = 0;
    for (qsizetype k = 0; k < kBlock; ++k)
        mask |= unsigned(in[k] >> 7) << k;
    return mask;
#endif
}

// Whether a "\r\n" starts in the block at `in`; reads one byte past it.
bool hasWindowsLineEnd(const uchar *in)
{
#ifdef __SSE2__
    const __m128i returns =
        _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(in)), _mm_set1_epi8('\r'));
    const __m128i newlines = _mm_cmpeq_epi8(
        _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + 1)), _mm_set1_epi8('\n'));
    return _mm_movemask_epi8(_mm_and_si128(returns, newlines)) != 0;
#else
    bool found = false;
    for (qsizetype k = 0; k < kBlock; ++k)
        found |= in[k] == '\r' && in[k + 1] == '\n';
    return found;
#endif
}

// Strict UTF-8 as Unicode defines it well formed: no overlong forms, no
// surrogates, nothing past U+10FFFF, no sequence cut short. The lead byte
// fixes how many bytes follow and the range of the first of them. Answers the
// number of bytes read, none when malformed; four bytes make two units.
qsizetype decodeUtf8Character(const uchar *in, const uchar *end, char16_t *out)
{
    const uchar lead = *in;
    qsizetype following;
    uchar low = 0x80;
    uchar high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        following = 1;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        following = 2;
        low = lead == 0xE0 ? 0xA0 : low;
        high = lead == 0xED ? 0x9F : high;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        following = 3;
        low = lead == 0xF0 ? 0x90 : low;
        high = lead == 0xF4 ? 0x8F : high;
    } else {
        return 0;
    }
    if (end - in <= following || in[1] < low || in[1] > high)
        return 0;
    char32_t c = lead & (0x3F >> following);
    for (qsizetype k = 1; k <= following; ++k) {
        if ((in[k] & 0xC0) != 0x80)
            return 0;
        c = c << 6 | (in[k] & 0x3F);
    }
    if (QChar::requiresSurrogates(c)) {
        out[0] = QChar::highSurrogate(c);
        out[1] = QChar::lowSurrogate(c);
    } else {
        out[0] = char16_t(c);
    }
    return following + 1;
}

// A lead of 0xC2 to 0xDF and a continuation byte behind it.
bool isTwoByteCharacter(const uchar *in)
{
    return uchar(in[0] - 0xC2) <= 0xDF - 0xC2 && (in[1] & 0xC0) == 0x80;
}

char16_t twoByteCharacter(const uchar *in)
{
    return char16_t((in[0] & 0x1F) << 6 | (in[1] & 0x3F));
}

// Where decoding stands: the next byte and the next unit.
struct Utf8Position
{
    const uchar *in;
    char16_t *out;
};

// Decodes one character at a time up to `until` or just past it, the last
// character maybe ending behind it; nothing at a malformed sequence.
std::optional<Utf8Position> decodeCharacters(Utf8Position at, const uchar *until, const uchar *end)
{
    while (at.in < until) {
        if (*at.in < 0x80) {
            *at.out++ = *at.in++;
            continue;
        }
        const qsizetype read = decodeUtf8Character(at.in, end, at.out);
        if (!read)
            return std::nullopt;
        at.in += read;
        at.out += 1 + (read == 4);
    }
    return at;
}

} // namespace

// A block of ASCII is widened whole; otherwise its ASCII run is kept and the
// character behind it decoded, inline when it has two bytes (the Latin,
// Greek, Cyrillic, Hebrew and Arabic letters: a test that goes the same way
// all through a text in one language), and the next block starts right
// behind it. A block of ASCII but for one such letter is done whole: where
// the next block starts then depends on no byte, so the processor need not
// wait for this block's bytes to begin the next one. (Doing the same for two
// letters measured slower.)
std::optional<QString> decodedUtf8(QByteArrayView bytes)
{
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    QString text(bytes.size(), Qt::Uninitialized);
    char16_t *const start = reinterpret_cast<char16_t *>(text.data());
    char16_t *out = start;
    const auto *in = reinterpret_cast<const uchar *>(bytes.data());
    const uchar *const end = in + bytes.size();
    // Up to two blocks from the start of a block may be read.
    while (end - in > 2 * kBlock) {
        widenBlock(in, out);
        const unsigned high = highBytes(in);
        if (!high) {
            in += kBlock;
            out += kBlock;
            continue;
        }
        const int ascii = std::countr_zero(high);
        const bool pair = isTwoByteCharacter(in + ascii);
        if (pair && high >> ascii == 0b11) {
            // The block's one letter beyond ASCII: the rest of the block is
            // widened again one place further left, and the next block starts
            // where this one ends, wherever the letter stands.
            out[ascii] = twoByteCharacter(in + ascii);
            widenBlock(in + ascii + 2, out + ascii + 1);
            in += kBlock;
            out += kBlock - 1;
            continue;
        }
        in += ascii;
        out += ascii;
        if (pair) {
            *out++ = twoByteCharacter(in);
            in += 2;
            continue;
        }
        const std::optional<Utf8Position> at = decodeCharacters({in, out}, in + 1, end);
        if (!at)
            return std::nullopt;
        std::tie(in, out) = std::tie(at->in, at->out);
    }
    const std::optional<Utf8Position> at = decodeCharacters({in, out}, end, end);
    if (!at)
        return std::nullopt;
    text.truncate(at->out - start);
    return text;
}

// Each byte stays where it is, so a block is widened whole and then only its
// bytes of 0x80 or above are looked up.
TableDecoding decodeByTable(QByteArrayView bytes, const ByteTable &table, bool stopAtWindowsLineEnd,
                            QString &text)
{
    text = QString(bytes.size(), Qt::Uninitialized);
    char16_t *const out = reinterpret_cast<char16_t *>(text.data());
    const auto *in = reinterpret_cast<const uchar *>(bytes.data());
    bool mapped = true;
    const auto lookUp = [&](qsizetype i) {
        out[i] = table[in[i]];
        return out[i] != kUnmapped;
    };
    qsizetype i = 0;
    // The byte after a block is read for a "\r\n" across its end.
    for (; bytes.size() - i > kBlock; i += kBlock) {
        if (stopAtWindowsLineEnd && hasWindowsLineEnd(in + i))
            return TableDecoding::WindowsLineEnd;
        widenBlock(in + i, out + i);
        for (unsigned high = highBytes(in + i); high; high &= high - 1)
            mapped &= lookUp(i + std::countr_zero(high));
        if (!mapped)
            return TableDecoding::Unmapped;
    }
    for (; i < bytes.size(); ++i) {
        if (stopAtWindowsLineEnd && in[i] == '\r' && i + 1 < bytes.size() && in[i + 1] == '\n')
            return TableDecoding::WindowsLineEnd;
        if (!lookUp(i))
            return TableDecoding::Unmapped;
    }
    return TableDecoding::Decoded;
}

} // namespace tl::store::detail
