#include "store/text_encoding.h"

#include "platform/file_ops.h"
#include "store/log.h"

#include <QtEndian>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <string_view>
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

// Every encoding read here has ASCII as its first half, and most text is
// ASCII: blocks of bytes are widened whole, a loop the compiler turns into
// vector code, and only their other bytes are then decoded one by one. No
// encoding here makes more UTF-16 units than it has bytes, so the text is
// made once at the bytes' size and decoded into in place.
constexpr qsizetype kBlock = 16;

void widenBlock(const uchar *in, char16_t *out)
{
    // Loaded first so that the compiler sees the stores cannot change it.
    std::array<uchar, kBlock> block;
    std::memcpy(block.data(), in, kBlock);
    for (qsizetype k = 0; k < kBlock; ++k)
        out[k] = block[k];
}

// The top bits of the eight bytes at `in`, byte k's at bit 8k + 7.
quint64 highBitsOf(const uchar *in)
{
    return qFromLittleEndian<quint64>(in) & 0x8080808080808080ull;
}

// The number of ASCII bytes the block at `in` starts with, up to kBlock.
qsizetype leadingAscii(const uchar *in)
{
    for (qsizetype half = 0; half < kBlock; half += 8)
        if (const quint64 high = highBitsOf(in + half))
            return half + std::countr_zero(high) / 8;
    return kBlock;
}

// Strict UTF-8 as Unicode defines it well formed: no overlong forms, no
// surrogates, nothing past U+10FFFF, no sequence cut short. The lead byte
// fixes how many bytes follow and the range of the first of them.
bool decodeUtf8Character(const uchar *&in, const uchar *end, char16_t *&out)
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
        return false;
    }
    if (end - in <= following || in[1] < low || in[1] > high)
        return false;
    char32_t c = lead & (0x3F >> following);
    for (qsizetype k = 1; k <= following; ++k) {
        if ((in[k] & 0xC0) != 0x80)
            return false;
        c = c << 6 | (in[k] & 0x3F);
    }
    in += following + 1;
    if (QChar::requiresSurrogates(c)) {
        *out++ = QChar::highSurrogate(c);
        *out++ = QChar::lowSurrogate(c);
    } else {
        *out++ = char16_t(c);
    }
    return true;
}

// One pass that stops at the first malformed sequence. A character's bytes
// vary in number, so after one that is not ASCII the next block starts
// right behind it. A leading byte-order mark is dropped.
std::optional<QString> decodedUtf8(QByteArrayView bytes)
{
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    QString text(bytes.size(), Qt::Uninitialized);
    char16_t *const start = reinterpret_cast<char16_t *>(text.data());
    char16_t *out = start;
    const auto *in = reinterpret_cast<const uchar *>(bytes.data());
    const uchar *const end = in + bytes.size();
    while (in < end) {
        if (end - in >= kBlock) {
            widenBlock(in, out);
            const qsizetype ascii = leadingAscii(in);
            in += ascii;
            out += ascii;
            if (ascii == kBlock)
                continue;
        } else if (*in < 0x80) {
            *out++ = *in++;
            continue;
        }
        if (!decodeUtf8Character(in, end, out))
            return std::nullopt;
    }
    text.truncate(out - start);
    return text;
}

// The single-byte encodings decode through a table of all 256 bytes, filled
// once from the ICU converter; a byte it cannot map has no entry.
constexpr char16_t kUnmapped = 0xFFFF;

std::array<char16_t, 256> byteTable(TextEncoding encoding)
{
    std::array<char16_t, 256> table;
    table.fill(kUnmapped);
    for (int byte = 0; byte < 256; ++byte) {
        const QByteArray one(1, char(byte));
        if (encoding == TextEncoding::WindowsLatin1 && hasBytesUndefinedInWindowsLatin1(one))
            continue;
        if (const std::optional<QString> c = decodedByConverter(one, encoding); c && c->size() == 1)
            table[byte] = c->at(0).unicode();
    }
    return table;
}

const std::array<char16_t, 256> &tableOf(TextEncoding encoding)
{
    static const std::array<char16_t, 256> ascii = byteTable(TextEncoding::ASCII);
    static const std::array<char16_t, 256> windows = byteTable(TextEncoding::WindowsLatin1);
    static const std::array<char16_t, 256> mac = byteTable(TextEncoding::MacRoman);
    switch (encoding) {
    case TextEncoding::WindowsLatin1:
        return windows;
    case TextEncoding::MacRoman:
        return mac;
    default:
        return ascii;
    }
}

// Each byte stays where it is, so a block is widened whole and then only
// its bytes of 0x80 or above are looked up.
std::optional<QString> decodedByTable(QByteArrayView bytes, TextEncoding encoding)
{
    const std::array<char16_t, 256> &table = tableOf(encoding);
    QString text(bytes.size(), Qt::Uninitialized);
    char16_t *const out = reinterpret_cast<char16_t *>(text.data());
    const auto *in = reinterpret_cast<const uchar *>(bytes.data());
    const auto lookUp = [&](qsizetype i) {
        out[i] = table[in[i]];
        return out[i] != kUnmapped;
    };
    qsizetype i = 0;
    for (; bytes.size() - i >= kBlock; i += kBlock) {
        widenBlock(in + i, out + i);
        bool mapped = true;
        for (qsizetype half = i; half < i + kBlock; half += 8)
            for (quint64 high = highBitsOf(in + half); high; high &= high - 1)
                mapped &= lookUp(half + std::countr_zero(high) / 8);
        if (!mapped)
            return std::nullopt;
    }
    for (; i < bytes.size(); ++i)
        if (!lookUp(i))
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
        return decodedUtf8(bytes);
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

    // A Windows line end suggests Windows-1252, anything else Mac Roman.
    const bool windowsLineEnds =
        std::string_view(bytes.constData(), size_t(bytes.size())).find("\r\n") !=
        std::string_view::npos;
    const TextEncoding windowsFirst[] = {TextEncoding::WindowsLatin1, TextEncoding::MacRoman,
                                         TextEncoding::UTF8};
    const TextEncoding macFirst[] = {TextEncoding::MacRoman, TextEncoding::WindowsLatin1,
                                     TextEncoding::UTF8};
    for (const TextEncoding encoding : windowsLineEnds ? windowsFirst : macFirst)
        if (std::optional<QString> text = decodedText(bytes, encoding))
            return DecodedText{*text, encoding};
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
