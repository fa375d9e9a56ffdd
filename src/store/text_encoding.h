#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

// The encodings documents are kept in, by the platform's numbers, and the
// strict converters between them and text.
namespace tl::store {

enum class TextEncoding : int {
    ASCII = 1,
    UTF8 = 4,
    // UTF-16 with a byte-order mark; only ever found by the mark.
    Unicode = 10,
    WindowsLatin1 = 12,
    MacRoman = 30,
};

// Nothing for a number that is none of the above.
std::optional<TextEncoding> textEncodingFromNumber(int number);
QString textEncodingName(TextEncoding encoding);

// Strict conversions: nothing when a byte has no character in the encoding
// (Windows-1252 leaves 0x81, 0x8D, 0x8F, 0x90 and 0x9D undefined) or a
// character has no bytes. A UTF-8 byte-order mark is dropped on reading.
std::optional<QString> decodedText(const QByteArray &bytes, TextEncoding encoding);
std::optional<QByteArray> encodedText(const QString &text, TextEncoding encoding);

struct DecodedText
{
    QString text;
    TextEncoding encoding;
};
// Reads bytes whose encoding is unknown: a byte-order mark or valid UTF-8
// decide at once; otherwise Windows-1252 and Mac Roman are tried, the first
// when the text has Windows line ends. Nothing when no encoding reads them.
std::optional<DecodedText> decodedTextOfUnknownEncoding(const QByteArray &bytes);

// The encoding a file's text is read in; ASCII, logged, when the file can't
// be read at all.
TextEncoding tl_textEncodingOfFile(const QString &path);

} // namespace tl::store
