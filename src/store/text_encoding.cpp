#include "store/text_encoding.h"

#include "platform/file_ops.h"
#include "store/log.h"

#include <QStringDecoder>
#include <array>
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

// Qt's UTF-8 decoder is strict (it flags malformed, overlong and surrogate
// sequences) and widens ASCII runs with vector instructions: two to three
// times faster than ICU's transforms on ordinary prose. It drops a leading
// byte-order mark.
std::optional<QString> decodedUtf8(const QByteArray &bytes)
{
    // Files in the older encodings fail within their first characters: a
    // look at the head spares them a pass over the whole file.
    constexpr qsizetype kHead = 64 * 1024;
    if (bytes.size() > kHead) {
        qsizetype end = kHead;
        while (end > kHead - 4 && (static_cast<unsigned char>(bytes[end]) & 0xC0) == 0x80)
            --end;
        QStringDecoder head(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString decodedHead = head.decode(QByteArrayView(bytes).first(end));
        if (head.hasError())
            return std::nullopt;
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
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

// Bytes below 0x80 are ASCII in every table: blocks of 16 such bytes are
// widened as they are, which the compiler vectorises; only blocks holding
// another byte are looked up.
std::optional<QString> decodedByTable(const QByteArray &bytes, TextEncoding encoding)
{
    constexpr qsizetype kBlock = 16;
    constexpr quint64 kHighBits = 0x8080808080808080ull;
    const std::array<char16_t, 256> &table = tableOf(encoding);
    const auto *in = reinterpret_cast<const unsigned char *>(bytes.constData());
    const qsizetype size = bytes.size();
    QString text(size, Qt::Uninitialized);
    char16_t *out = reinterpret_cast<char16_t *>(text.data());
    bool unmapped = false;
    const auto lookUp = [&](qsizetype from, qsizetype to) {
        for (qsizetype i = from; i < to; ++i) {
            out[i] = table[in[i]];
            unmapped |= out[i] == kUnmapped;
        }
    };
    qsizetype i = 0;
    for (; i + kBlock <= size; i += kBlock) {
        quint64 first, second;
        std::memcpy(&first, in + i, sizeof first);
        std::memcpy(&second, in + i + sizeof first, sizeof second);
        if (((first | second) & kHighBits) == 0) {
            for (qsizetype k = 0; k < kBlock; ++k)
                out[i + k] = in[i + k];
        } else {
            lookUp(i, i + kBlock);
        }
    }
    lookUp(i, size);
    if (unmapped)
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
