#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

// The transfer encodings of mail text, everything read as UTF-8.
namespace tl::importers {

// Soft line ends dropped and "=XX" codes decoded as UTF-8 bytes; where those
// are no UTF-8, each code becomes the character of its value.
QString stringWithQuotedPrintableString(const QString &text);

// The bytes of base64 text; characters outside the alphabet are skipped.
QByteArray dataWithBase64Encoding(const QString &text);
// Those bytes read as UTF-8; empty when they are none.
QString stringWithBase64Encoding(const QString &text);

// "=?charset?Q|B?text?=" words of a header decoded, "_" as a blank.
QString stringWithEncodedWordsString(const QString &text);

// Bytes read as UTF-8, or nothing when they are not UTF-8.
std::optional<QString> strictUtf8(const QByteArray &bytes);

} // namespace tl::importers
