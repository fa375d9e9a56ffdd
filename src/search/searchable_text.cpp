#include "search/searchable_text.h"

#include "convert/html_to_text.h"
#include "foundation/plist.h"
#include "search/distinct_words.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/pdf_document.h"
#include "store/text_encoding.h"

#include <QFile>
#include <QVariant>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tl::search {

namespace {

enum class Kind { None, PlainText, HTML, PropertyList, PDF };

Kind kindOf(const QString &path, const QSet<QString> &customPlainText)
{
    const QString extension = store::lowerCasedExtension(path);
    // Property lists also stand in the plain-text list: their values are what counts.
    if (extension == u"plist")
        return Kind::PropertyList;
    if (extension == u"html" || extension == u"htm")
        return Kind::HTML;
    if (extension == u"pdf")
        return Kind::PDF;
    if (store::plainTextExtensions().contains(extension) ||
        store::markdownExtensions().contains(extension) || customPlainText.contains(extension))
        return Kind::PlainText;
    return Kind::None;
}

void collectStrings(const QVariant &value, QStringList &strings)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        strings << value.toString();
        break;
    case QMetaType::QVariantList:
        for (const QVariant &item : value.toList())
            collectStrings(item, strings);
        break;
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            collectStrings(it.value(), strings);
        break;
    }
    default:
        break;
    }
}

std::optional<QString> plainText(const QString &path)
{
    std::optional<store::DecodedText> decoded = store::tl_stringWithContentsOfFile(path);
    if (!decoded)
        return std::nullopt;
    return std::move(decoded->text);
}

// The bytes of an open file found with the given size, in one read when it
// has not grown since.
std::optional<QByteArray> bytesOfOpenFile(int fd, qint64 size)
{
    QByteArray bytes(size + 1, Qt::Uninitialized);
    qsizetype filled = 0;
    for (;;) {
        const ssize_t got = ::read(fd, bytes.data() + filled, size_t(bytes.size() - filled));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return std::nullopt;
        filled += got;
        if (got == 0 || filled < bytes.size())
            break;
        bytes.resize(bytes.size() * 2);
    }
    bytes.truncate(filled);
    return bytes;
}

} // namespace

SearchableText::SearchableText() : m_customPlainTextExtensions(store::customPlaintextExtensions())
{
}

bool SearchableText::hasText(const QString &path) const
{
    return kindOf(path, m_customPlainTextExtensions) != Kind::None;
}

std::optional<QString> SearchableText::textOf(const QString &path) const
{
    switch (kindOf(path, m_customPlainTextExtensions)) {
    case Kind::PlainText:
        return plainText(path);
    case Kind::HTML: {
        std::optional<QString> html = plainText(path);
        if (!html)
            return std::nullopt;
        return convert::tl_htmlToPlainText(*html);
    }
    case Kind::PropertyList: {
        const std::optional<QByteArray> bytes = store::tl_dataWithContentsOfFile(path);
        const std::optional<QVariant> value = bytes ? plist::parse(*bytes) : std::nullopt;
        if (!value)
            return std::nullopt;
        QStringList strings;
        collectStrings(*value, strings);
        return strings.join(u'\n');
    }
    case Kind::PDF:
        return store::pdfText(path);
    case Kind::None:
        break;
    }
    return std::nullopt;
}

bool SearchableText::isPlainText(const QString &path) const
{
    return kindOf(path, m_customPlainTextExtensions) == Kind::PlainText;
}

std::optional<std::string> SearchableText::distinctWordsOf(const QString &path, qint64 size) const
{
    if (!isPlainText(path)) {
        const std::optional<QString> text = textOf(path);
        return text ? std::optional(distinctSearchWords(*text)) : std::nullopt;
    }
    // No wait on a pipe that only looks like a document.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return std::nullopt;
    std::optional<std::string> words = distinctWordsOfPlainText(fd, size);
    ::close(fd);
    return words;
}

std::optional<std::string> SearchableText::distinctWordsOfPlainText(int fd, qint64 size)
{
    const std::optional<QByteArray> bytes = bytesOfOpenFile(fd, size);
    if (!bytes)
        return std::nullopt;
    // Bytes all in ASCII read as UTF-8 as they stand.
    if (std::optional<std::string> words =
            distinctASCIISearchWords(std::string_view(bytes->constData(), size_t(bytes->size()))))
        return words;
    const std::optional<store::DecodedText> decoded = store::decodedTextOfUnknownEncoding(*bytes);
    return decoded ? std::optional(distinctSearchWords(decoded->text)) : std::nullopt;
}

} // namespace tl::search
