#include "search/distinct_words.h"

#include "search/search_query.h"

#include <array>

namespace tl::search {

namespace {

// Each byte's folded form as a letter or digit of ASCII, 0 for any other.
constexpr std::array<char, 256> kASCIIFolded = [] {
    std::array<char, 256> table{};
    for (char c = '0'; c <= '9'; ++c)
        table[uint8_t(c)] = c;
    for (char c = 'a'; c <= 'z'; ++c) {
        table[uint8_t(c)] = c;
        table[uint8_t(c - 32)] = c;
    }
    return table;
}();

} // namespace

namespace detail {

DistinctWords::DistinctWords(size_t expected)
{
    size_t slots = 64;
    while (slots < 2 * expected)
        slots *= 2;
    m_slots.assign(slots, {0, 0, 0});
    m_joined.reserve(expected * 8);
}

uint32_t DistinctWords::hashOf(std::string_view word)
{
    uint32_t hash = kHashStart;
    for (const char c : word)
        hash = hashed(hash, c);
    return hash;
}

void DistinctWords::add(std::string_view word, uint32_t hash)
{
    if (word.empty())
        return;
    const size_t mask = m_slots.size() - 1;
    size_t slot = hash & mask;
    for (; m_slots[slot].size != 0; slot = (slot + 1) & mask) {
        const Slot &kept = m_slots[slot];
        if (kept.hash == hash && kept.size == word.size() &&
            std::string_view(m_joined).substr(kept.start, kept.size) == word)
            return;
    }
    if (!m_joined.empty())
        m_joined += ' ';
    m_slots[slot] = {hash, uint32_t(m_joined.size()), uint32_t(word.size())};
    m_joined += word;
    if (++m_count * 2 > m_slots.size())
        grow();
}

void DistinctWords::grow()
{
    std::vector<Slot> old(m_slots.size() * 2, {0, 0, 0});
    old.swap(m_slots);
    const size_t mask = m_slots.size() - 1;
    for (const Slot &kept : old) {
        if (kept.size == 0)
            continue;
        size_t slot = kept.hash & mask;
        while (m_slots[slot].size != 0)
            slot = (slot + 1) & mask;
        m_slots[slot] = kept;
    }
}

} // namespace detail

std::string distinctSearchWords(QStringView text)
{
    const std::string joined = joinedSearchWords(text).toStdString();
    detail::DistinctWords words(joined.size() / 8);
    for (size_t start = 0; start < joined.size();) {
        size_t end = joined.find(' ', start);
        if (end == std::string::npos)
            end = joined.size();
        words.add(std::string_view(joined).substr(start, end - start));
        start = end + 1;
    }
    return words.take();
}

std::optional<std::string> distinctASCIISearchWords(std::string_view bytes)
{
    using detail::DistinctWords;
    DistinctWords words(bytes.size() / 5);
    // Each word folded into its own place here, no longer than in the bytes.
    std::string folded(bytes.size(), '\0');
    const char *in = bytes.data();
    const char *const end = in + bytes.size();
    char *out = folded.data();
    while (in < end) {
        for (; in < end && kASCIIFolded[uint8_t(*in)] == 0; ++in)
            if (uint8_t(*in) >= 0x80)
                return std::nullopt;
        char *const start = out;
        uint32_t hash = DistinctWords::kHashStart;
        for (char c; in < end && (c = kASCIIFolded[uint8_t(*in)]) != 0; ++in) {
            *out++ = c;
            hash = DistinctWords::hashed(hash, c);
        }
        words.add(std::string_view(start, size_t(out - start)), hash);
    }
    return words.take();
}

} // namespace tl::search
