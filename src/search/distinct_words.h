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

// Collects folded words, keeping the first of each. Words are read eight
// bytes at a time, so each must be followed by eight readable bytes. One
// collection serves a thread's texts one after the other, so its table is
// not made and cleared for each.
class DistinctWords
{
public:
    // Ready for the words of a text of this many bytes.
    void start(size_t textBytes);
    void add(const char *word, uint32_t size);
    std::string take();

private:
    struct Slot
    {
        uint64_t hash = 0;
        // The word's first eight bytes, zeros past its end.
        uint64_t head = 0;
        uint32_t start = 0;
        uint32_t size = 0;
        // A slot of an earlier text counts as free.
        uint32_t generation = 0;
    };
    bool sameAfterHead(const Slot &kept, const char *word) const;
    void place(Slot &slot, const char *word, uint32_t size, uint64_t head, uint64_t hash);
    void grow();

    std::vector<Slot> m_slots;
    size_t m_count = 0;
    uint32_t m_generation = 0;
    // Each word followed by a blank, the last one cut by take(); room for
    // the whole text.
    std::string m_joined;
    size_t m_length = 0;
};

} // namespace detail

} // namespace tl::search
