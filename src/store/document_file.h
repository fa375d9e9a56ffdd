#pragma once

#include "store/text_encoding.h"

#include <QByteArray>
#include <QString>
#include <QVariantMap>
#include <optional>

// Reading and writing document files. Writers keep the file's permission
// bits and user extended attributes; an atomic write goes through a
// temporary file and leaves the modification date at now.
namespace tl::store {

enum class WriteError {
    None,
    // A character of the text has no bytes in the encoding; nothing was written.
    Unencodable,
    FileSystem,
};

bool tl_writeToFile(const QString &text, const QString &path, bool atomically,
                    TextEncoding encoding, WriteError *error = nullptr);
bool tl_writeToFile(const QByteArray &data, const QString &path, bool atomically);
bool tl_writeToFile(const QVariantMap &dictionary, const QString &path, bool atomically);

// Nothing when the file can't be read or its bytes are not in the encoding.
std::optional<QString> tl_stringWithContentsOfFile(const QString &path, TextEncoding encoding);
// The text in the encoding the file is found to be in, and that encoding.
std::optional<DecodedText> tl_stringWithContentsOfFile(const QString &path);
std::optional<QByteArray> tl_dataWithContentsOfFile(const QString &path);
// Empty for an absent or unreadable file, or one that holds no dictionary.
QVariantMap tl_dictionaryWithContentsOfFile(const QString &path);

} // namespace tl::store
