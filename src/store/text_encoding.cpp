#include "store/text_encoding.h"

#include "platform/file_ops.h"
#include "store/detail/text_decoders.h"
#include "store/log.h"

#include <array>
#include <memory>
#include <span>
#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

namespace tl::store {

namespace {

struct EncodingRow
{
    TextEncoding encoding;
    const char *converter; // ICU converter name
    const char *name;      // what the user is shown
};

constexpr EncodingRow kEncodings[] = {
    {TextEncoding::ASCII, "US-ASCII", "ASCII"},
    {TextEncoding::UTF8, "UTF-8", "UTF-8"},
    {TextEncoding::Unicode, "UTF-16", "UTF-16"},
    {TextEncoding::WindowsLatin1, "windows-1252", "Windows-1252"},
    {TextEncoding::MacRoman, "macintosh", "Mac Roman"},
};

const EncodingRow &rowOf(TextEncoding encoding)
{
    for (const EncodingRow &row : kEncodings)
        if (row.encoding == encoding)
            return row;
    return kEncodings[0];
}

// ICU maps these five to C1 controls; the platform's Windows-1252 has no
// character for them, which is what lets Mac Roman take such files.
bool hasBytesUndefinedInWindowsLatin1(const QByteArray &bytes)
{
    for (const char c : bytes) {
        switch (static_cast<unsigned char>(c)) {
        case 0x81:
        case 0x8D:
        case 0x8F:
        case 0x90:
        case 0x9D:
            return true;
        default:
            break;
        }
    }
    return false;
}

struct ConverterCloser
{
    void operator()(UConverter *c) const { ucnv_close(c); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

// A converter that stops at the first byte or character it cannot map.
Converter strictConverter(TextEncoding encoding)
{
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(rowOf(encoding).converter, &status));
    if (U_FAILURE(status))
        return nullptr;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &status);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &status);
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

bool startsWithUtf16ByteOrderMark(const QByteArray &bytes)
{
    return bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF");
}

std::optional<QString> decodedByConverter(const QByteArray &bytes, TextEncoding encoding)
{
    Converter converter = strictConverter(encoding);
    if (!converter)
        return std::nullopt;
    // No encoding here makes more UTF-16 units than it has bytes.
    QString text(bytes.size(), Qt::Uninitialized);
    UChar *target = reinterpret_cast<UChar *>(text.data());
    const char *source = bytes.constData();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(converter.get(), &target, target + text.size(), &source, source + bytes.size(),
                   nullptr, true, &status);
    if (U_FAILURE(status))
        return std::nullopt;
    text.truncate(target - reinterpret_cast<UChar *>(text.data()));
    return text;
}

// The single-byte encodings decode through a table of all 256 bytes, filled
// once from the ICU converter; a byte it cannot map has no entry.
detail::ByteTable byteTable(TextEncoding encoding)
{
    detail::ByteTable table;
    table.fill(detail::kUnmapped);
    for (int byte = 0; byte < 256; ++byte) {
        const QByteArray one(1, char(byte));
        if (encoding == TextEncoding::WindowsLatin1 && hasBytesUndefinedInWindowsLatin1(one))
            continue;
        if (const std::optional<QString> c = decodedByConverter(one, encoding); c && c->size() == 1)
            table[byte] = c->at(0).unicode();
    }
    return table;
}

const detail::ByteTable &tableOf(TextEncoding encoding)
{
    static const detail::ByteTable ascii = byteTable(TextEncoding::ASCII);
    static const detail::ByteTable windows = byteTable(TextEncoding::WindowsLatin1);
    static const detail::ByteTable mac = byteTable(TextEncoding::MacRoman);
    switch (encoding) {
    case TextEncoding::WindowsLatin1:
        return windows;
    case TextEncoding::MacRoman:
        return mac;
    default:
        return ascii;
    }
}

std::optional<QString> decodedByTable(QByteArrayView bytes, TextEncoding encoding)
{
    QString text;
    if (detail::decodeByTable(bytes, tableOf(encoding), false, text) !=
        detail::TableDecoding::Decoded)
        return std::nullopt;
    return text;
}

} // namespace

std::optional<TextEncoding> textEncodingFromNumber(int number)
{
    for (const EncodingRow &row : kEncodings)
        if (int(row.encoding) == number)
            return row.encoding;
    return std::nullopt;
}

QString textEncodingName(TextEncoding encoding)
{
    return QString::fromLatin1(rowOf(encoding).name);
}

std::optional<QString> decodedText(const QByteArray &bytes, TextEncoding encoding)
{
    switch (encoding) {
    case TextEncoding::UTF8:
        return detail::decodedUtf8(bytes);
    case TextEncoding::Unicode:
        return startsWithUtf16ByteOrderMark(bytes) ? decodedByConverter(bytes, encoding)
                                                   : std::nullopt;
    case TextEncoding::ASCII:
    case TextEncoding::WindowsLatin1:
    case TextEncoding::MacRoman:
        return decodedByTable(bytes, encoding);
    }
    return std::nullopt;
}

std::optional<QByteArray> encodedText(const QString &text, TextEncoding encoding)
{
    Converter converter = strictConverter(encoding);
    if (!converter)
        return std::nullopt;
    // Room for the byte-order mark and three bytes per UTF-16 unit.
    QByteArray bytes(text.size() * 3 + 4, Qt::Uninitialized);
    char *target = bytes.data();
    const UChar *source = reinterpret_cast<const UChar *>(text.constData());
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(converter.get(), &target, target + bytes.size(), &source, source + text.size(),
                     nullptr, true, &status);
    if (U_FAILURE(status))
        return std::nullopt;
    bytes.truncate(target - bytes.data());
    if (encoding == TextEncoding::WindowsLatin1 && hasBytesUndefinedInWindowsLatin1(bytes))
        return std::nullopt;
    return bytes;
}

std::optional<DecodedText> decodedTextOfUnknownEncoding(const QByteArray &bytes)
{
    // What the platform's reader tells by itself: a byte-order mark, or UTF-8.
    const TextEncoding detected =
        startsWithUtf16ByteOrderMark(bytes) ? TextEncoding::Unicode : TextEncoding::UTF8;
    if (std::optional<QString> text = decodedText(bytes, detected))
        return DecodedText{*text, detected};

    // A Windows line end suggests Windows-1252, anything else Mac Roman. Mac
    // Roman is tried while the line ends are looked for, in the same pass.
    QString text;
    const detail::TableDecoding mac =
        detail::decodeByTable(bytes, tableOf(TextEncoding::MacRoman), true, text);
    if (mac == detail::TableDecoding::Decoded)
        return DecodedText{text, TextEncoding::MacRoman};
    const TextEncoding windowsFirst[] = {TextEncoding::WindowsLatin1, TextEncoding::MacRoman,
                                         TextEncoding::UTF8};
    const TextEncoding macFailed[] = {TextEncoding::WindowsLatin1, TextEncoding::UTF8};
    for (const TextEncoding encoding : mac == detail::TableDecoding::WindowsLineEnd
                                           ? std::span<const TextEncoding>(windowsFirst)
                                           : std::span<const TextEncoding>(macFailed))
        if (std::optional<QString> decoded = decodedText(bytes, encoding))
            return DecodedText{*decoded, encoding};
    return std::nullopt;
}

TextEncoding tl_textEncodingOfFile(const QString &path)
{
    const std::optional<QByteArray> bytes = platform::readFile(path);
    if (bytes)
        if (std::optional<DecodedText> decoded = decodedTextOfUnknownEncoding(*bytes))
            return decoded->encoding;
    logLine(QStringLiteral("** textEncodingOfFile error: %1").arg(path));
    return TextEncoding::ASCII;
}

} // namespace tl::store
