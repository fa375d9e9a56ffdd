#include "store/document_file.h"

#include "platform/file_ops.h"
#include "store/log.h"
#include "store/plist_file.h"

namespace tl::store {

bool tl_writeToFile(const QString &text, const QString &path, bool atomically,
                    TextEncoding encoding, WriteError *error)
{
    const std::optional<QByteArray> bytes = encodedText(text, encoding);
    if (!bytes) {
        logLine(QStringLiteral("cannot encode text for %1 in %2")
                    .arg(path, textEncodingName(encoding)));
        if (error)
            *error = WriteError::Unencodable;
        return false;
    }
    const bool written = tl_writeToFile(*bytes, path, atomically);
    if (error)
        *error = written ? WriteError::None : WriteError::FileSystem;
    return written;
}

bool tl_writeToFile(const QByteArray &data, const QString &path, bool atomically)
{
    return atomically ? platform::writeFileAtomically(path, data)
                      : platform::writeFileInPlace(path, data);
}

bool tl_writeToFile(const QVariantMap &dictionary, const QString &path, bool atomically)
{
    return writePlistFile(path, dictionary, atomically);
}

std::optional<QString> tl_stringWithContentsOfFile(const QString &path, TextEncoding encoding)
{
    const std::optional<QByteArray> bytes = platform::readFile(path);
    return bytes ? decodedText(*bytes, encoding) : std::nullopt;
}

std::optional<DecodedText> tl_stringWithContentsOfFile(const QString &path)
{
    const std::optional<QByteArray> bytes = platform::readFile(path);
    return bytes ? decodedTextOfUnknownEncoding(*bytes) : std::nullopt;
}

std::optional<QByteArray> tl_dataWithContentsOfFile(const QString &path)
{
    return platform::readFile(path);
}

QVariantMap tl_dictionaryWithContentsOfFile(const QString &path)
{
    return readPlistDictionary(path);
}

} // namespace tl::store
