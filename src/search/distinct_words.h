#pragma once

#include <QStringView>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the index keeps of a document's text: each folded word once, in UTF-8,
// joined by blanks. The index answers which items hold a word, not where, so
// neither order nor repeats are kept.
namespace tl::search {

// The distinct folded words of a text.
std::string distinctSearchWords(QStringView text);

// The same for bytes read as UTF-8, without decoding them, when every byte is
// ASCII (the common case: folding is then lower-casing, and the letters and
// digits are a-z and 0-9); nothing when a byte is not.
std::optional<std::string> distinctASCIISearchWords(std::string_view bytes);

namespace detail {

// Collects words, keeping the first of each.
class DistinctWords
{
public:
    explicit DistinctWords(size_t expected);
    void add(std::string_view word) { add(word, hashOf(word)); }
    // With the word's hash, as hashOf gives it, worked out while the word was read.
    void add(std::string_view word, uint32_t hash);
    std::string take() { return std::move(m_joined); }

    static constexpr uint32_t kHashStart = 2166136261u;
    static uint32_t hashed(uint32_t hash, char c) { return (hash ^ uint8_t(c)) * 16777619u; }
    static uint32_t hashOf(std::string_view word);

private:
    struct Slot
    {
        uint32_t hash;
        uint32_t start;
        // 0 for a free slot.
        uint32_t size;
    };
    void grow();

    std::string m_joined;
    // An open-addressed table of the words kept in m_joined.
    std::vector<Slot> m_slots;
    size_t m_count = 0;
};

} // namespace detail

} // namespace tl::search
