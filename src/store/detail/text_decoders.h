#pragma once

#include <QByteArrayView>
#include <QString>
#include <array>
#include <optional>

// The decoders behind the store's text encodings: one pass each over the
// bytes, stopping at the first that does not belong.
namespace tl::store::detail {

// Strict UTF-8; a leading byte-order mark is dropped.
std::optional<QString> decodedUtf8(QByteArrayView bytes);

// A single-byte encoding: the unit of each byte, kUnmapped where it has none.
using ByteTable = std::array<char16_t, 256>;
constexpr char16_t kUnmapped = 0xFFFF;

enum class TableDecoding { Decoded, Unmapped, WindowsLineEnd };

// Decodes `bytes` through `table` into `text`. With `stopAtWindowsLineEnd`,
// decoding ends at the first "\r\n", looked for in the same pass rather than
// in a pass of its own over the whole text.
TableDecoding decodeByTable(QByteArrayView bytes, const ByteTable &table, bool stopAtWindowsLineEnd,
                            QString &text);

} // namespace tl::store::detail
