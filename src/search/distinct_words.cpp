#include "search/distinct_words.h"

#include "search/search_query.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tl::search {

namespace {

constexpr uint64_t kMix = 0x9E3779B97F4A7C15ull;
// A text is read in blocks of this many bytes, one bit of a mask each.
constexpr size_t kBlock = 64;
// Readable bytes kept after every word.
constexpr size_t kSlack = 8;
// Tables and buffers above these sizes, left by a long text, are given back.
constexpr size_t kSlotsKept = 4096;
constexpr size_t kBytesKept = 256 * 1024;

uint64_t load8(const char *at)
{
    uint64_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

// The first n bytes of eight, on a little-endian machine.
uint64_t firstBytes(size_t n)
{
    return n >= 8 ? ~uint64_t(0) : (uint64_t(1) << (8 * n)) - 1;
}

uint64_t hashOf(const char *word, uint32_t size, uint64_t head)
{
    uint64_t hash = (head ^ size) * kMix;
    for (uint32_t at = 8; at < size; at += 8)
        hash = (hash ^ (load8(word + at) & firstBytes(size - at))) * kMix;
    return hash ^ (hash >> 29);
}

detail::DistinctWords &threadsWords()
{
    thread_local detail::DistinctWords words;
    return words;
}

// A copy of the text with a whole number of blocks and the slack after it,
// zeros past the text's end.
std::string &paddedCopy(std::string_view text)
{
    thread_local std::string copy;
    if (copy.capacity() > kBytesKept && text.size() <= kBytesKept)
        copy = std::string();
    copy.assign(text);
    copy.resize((text.size() + kBlock - 1) / kBlock * kBlock + kSlack, '\0');
    return copy;
}

#if defined(__SSE2__)
// Bit i set when byte i of the block is an ASCII letter or digit; the block
// is folded in place (for letters and digits that is setting 0x20). Nothing
// when a byte is outside ASCII.
std::optional<uint64_t> foldBlock(char *block)
{
    uint64_t letterOrDigit = 0;
    int outside = 0;
    for (size_t at = 0; at < kBlock; at += 16) {
        auto *const place = reinterpret_cast<__m128i *>(block + at);
        const __m128i bytes = _mm_loadu_si128(place);
        const __m128i folded = _mm_or_si128(bytes, _mm_set1_epi8(0x20));
        // Signed compares: bytes outside ASCII are negative and match neither.
        const __m128i letter = _mm_and_si128(_mm_cmpgt_epi8(folded, _mm_set1_epi8('a' - 1)),
                                             _mm_cmplt_epi8(folded, _mm_set1_epi8('z' + 1)));
        const __m128i digit = _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8('0' - 1)),
                                            _mm_cmplt_epi8(bytes, _mm_set1_epi8('9' + 1)));
        letterOrDigit |= uint64_t(uint32_t(_mm_movemask_epi8(_mm_or_si128(letter, digit)))) << at;
        outside |= _mm_movemask_epi8(bytes);
        _mm_storeu_si128(place, folded);
    }
    if (outside != 0)
        return std::nullopt;
    return letterOrDigit;
}
#else
std::optional<uint64_t> foldBlock(char *block)
{
    static constexpr std::array<uint8_t, 256> kLetterOrDigit = [] {
        std::array<uint8_t, 256> table{};
        for (int c = '0'; c <= '9'; ++c)
            table[c] = 1;
        for (int c = 'a'; c <= 'z'; ++c)
            table[c] = table[c - 32] = 1;
        return table;
    }();
    uint64_t letterOrDigit = 0;
    uint8_t any = 0;
    for (size_t at = 0; at < kBlock; ++at) {
        const uint8_t byte = uint8_t(block[at]);
        letterOrDigit |= uint64_t(kLetterOrDigit[byte]) << at;
        any |= byte;
        block[at] = char(byte | 0x20);
    }
    if (any & 0x80)
        return std::nullopt;
    return letterOrDigit;
}
#endif

} // namespace

namespace detail {

void DistinctWords::start(size_t textBytes)
{
    size_t wanted = 256;
    while (wanted < textBytes / 3 && wanted < 16384)
        wanted *= 2;
    if (m_slots.size() < wanted || m_slots.size() > std::max(wanted, kSlotsKept)) {
        m_slots.assign(wanted, Slot{});
        m_generation = 0;
    }
    if (++m_generation == 0) {
        std::fill(m_slots.begin(), m_slots.end(), Slot{});
        m_generation = 1;
    }
    m_count = 0;
    // A text of n bytes holds at most n bytes of words, each with a blank.
    m_joined = std::string(textBytes + 1, '\0');
    m_length = 0;
}

void DistinctWords::add(const char *word, uint32_t size)
{
    if (size == 0)
        return;
    const uint64_t head = load8(word) & firstBytes(size);
    const uint64_t hash = hashOf(word, size, head);
    const size_t mask = m_slots.size() - 1;
    for (size_t at = hash & mask;; at = (at + 1) & mask) {
        Slot &slot = m_slots[at];
        if (slot.generation != m_generation) {
            place(slot, word, size, head, hash);
            return;
        }
        if (slot.hash == hash && slot.head == head && slot.size == size &&
            sameAfterHead(slot, word))
            return;
    }
}

bool DistinctWords::sameAfterHead(const Slot &kept, const char *word) const
{
    return kept.size <= 8 ||
           std::memcmp(m_joined.data() + kept.start + 8, word + 8, kept.size - 8) == 0;
}

void DistinctWords::place(Slot &slot, const char *word, uint32_t size, uint64_t head, uint64_t hash)
{
    char *const out = m_joined.data() + m_length;
    std::memcpy(out, word, size);
    out[size] = ' ';
    slot = Slot{hash, head, uint32_t(m_length), size, m_generation};
    m_length += size + 1;
    if (++m_count * 2 > m_slots.size())
        grow();
}

void DistinctWords::grow()
{
    std::vector<Slot> old(m_slots.size() * 2);
    old.swap(m_slots);
    const size_t mask = m_slots.size() - 1;
    for (const Slot &kept : old) {
        if (kept.generation != m_generation)
            continue;
        size_t at = kept.hash & mask;
        while (m_slots[at].generation == m_generation)
            at = (at + 1) & mask;
        m_slots[at] = kept;
    }
}

std::string DistinctWords::take()
{
    m_joined.resize(m_length > 0 ? m_length - 1 : 0);
    // A long text with few words should not keep its whole size.
    if (m_joined.capacity() > 4 * m_joined.size() + 4096)
        m_joined.shrink_to_fit();
    return std::move(m_joined);
}

} // namespace detail

std::string distinctSearchWords(QStringView text)
{
    const QByteArray joined = joinedSearchWords(text).toUtf8();
    std::string &padded = paddedCopy(std::string_view(joined.constData(), size_t(joined.size())));
    detail::DistinctWords &words = threadsWords();
    words.start(size_t(joined.size()));
    const char *const base = padded.data();
    const auto size = size_t(joined.size());
    for (size_t start = 0; start < size;) {
        const void *const blank = std::memchr(base + start, ' ', size - start);
        const size_t end = blank ? size_t(static_cast<const char *>(blank) - base) : size;
        words.add(base + start, uint32_t(end - start));
        start = end + 1;
    }
    return words.take();
}

std::optional<std::string> distinctASCIISearchWords(std::string_view bytes)
{
    std::string &padded = paddedCopy(bytes);
    detail::DistinctWords &words = threadsWords();
    words.start(bytes.size());
    const char *const base = padded.data();
    const size_t blocks = (bytes.size() + kBlock - 1) / kBlock;
    // Whether the last byte of the block before was a letter or digit, so
    // inside a word that began at `start`.
    uint64_t carried = 0;
    bool inWord = false;
    size_t start = 0;
    for (size_t block = 0; block < blocks; ++block) {
        const std::optional<uint64_t> letterOrDigit = foldBlock(padded.data() + block * kBlock);
        if (!letterOrDigit)
            return std::nullopt;
        // Each set bit is where a word starts or where the one begun ends.
        for (uint64_t edges = *letterOrDigit ^ ((*letterOrDigit << 1) | carried); edges != 0;
             edges &= edges - 1) {
            const size_t at = block * kBlock + size_t(std::countr_zero(edges));
            if (inWord)
                words.add(base + start, uint32_t(at - start));
            else
                start = at;
            inWord = !inWord;
        }
        carried = *letterOrDigit >> 63;
    }
    // The zeros after the text end a word that runs to its last byte.
    if (inWord)
        words.add(base + start, uint32_t(bytes.size() - start));
    return words.take();
}

} // namespace tl::search
