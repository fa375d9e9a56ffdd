// libFuzzer target: the "Range" header reader. The first eight bytes give
// the body length; every range given must lie inside it, sorted, apart.
#include "server/core/http_range.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    uint64_t length = 0;
    if (size >= 8) {
        std::memcpy(&length, data, 8);
        data += 8;
        size -= 8;
    }
    if (length % 4 != 0)
        length %= 100000; // mostly small bodies, sometimes huge ones
    const QString header = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto ranges = server::parseRangeRequest(header, length);
    if (!ranges)
        return 0;
    if (ranges->empty())
        __builtin_trap();
    for (size_t i = 0; i < ranges->size(); ++i) {
        const server::ByteRange &r = (*ranges)[i];
        if (r.length == 0 || r.location >= length || r.length > length - r.location)
            __builtin_trap();
        if (i > 0 && r.location <= (*ranges)[i - 1].last())
            __builtin_trap();
    }
    return 0;
}
