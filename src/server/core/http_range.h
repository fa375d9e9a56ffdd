#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace server {

struct ByteRange
{
    uint64_t location = 0;
    uint64_t length = 0;
    uint64_t last() const { return location + length - 1; }
    bool operator==(const ByteRange &) const = default;
};

// Reads a "Range" header against a body of contentLength bytes. Gives the
// ranges sorted by their start, or nothing when the header is unusable: any
// element outside the body or of no known form, an empty "-0" range, or two
// ranges that overlap. Nothing means the whole body is sent.
std::optional<std::vector<ByteRange>> parseRangeRequest(const QString &header, uint64_t contentLength);

// Reads a whole string of decimal digits into an unsigned 64-bit number.
std::optional<uint64_t> parseUInt64(QStringView text);
// Reads a whole string of 1 to 16 hexadecimal digits.
std::optional<uint64_t> parseHex64(QStringView text);

} // namespace server
