#include "importers/pasteboard_rtfd.h"

#include "foundation/path_string.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "store/document_file.h"
#include "store/duplicate_as.h"
#include "store/extensions.h"
#include "store/first_line.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/log.h"
#include "store/properties.h"
#include "store/safe_names.h"

#include <QDir>
#include <QtEndian>

namespace tl::importers::detail {

namespace {

const char kTag[] = "rtfd";

// Reads 32-bit numbers one after the other, refusing to run past the end.
class NumberReader
{
public:
    NumberReader(const QByteArray &bytes, qsizetype at) : m_bytes(bytes), m_at(at) {}
    std::optional<quint32> next()
    {
        if (m_at + 4 > m_bytes.size())
            return std::nullopt;
        const quint32 value = qFromLittleEndian<quint32>(m_bytes.constData() + m_at);
        m_at += 4;
        return value;
    }
    qsizetype position() const { return m_at; }

private:
    const QByteArray &m_bytes;
    qsizetype m_at;
};

QString readText(const QString &path)
{
    const std::optional<store::DecodedText> read = store::tl_stringWithContentsOfFile(path);
    return read ? read->text : QString();
}

bool isAttachment(const QString &name)
{
    const QString extension = store::lowerCasedExtension(name);
    return store::imageExtensions().contains(extension) || extension == u"pdf";
}

// The package written as a folder; false when it cannot be.
bool writePackage(const QString &package, const QList<PackageEntry> &entries)
{
    if (QFileInfo::exists(package))
        platform::removeItem(package);
    if (!platform::makeFolder(package))
        return false;
    for (const PackageEntry &entry : entries) {
        // "." holds the package's own attributes; no name leaves the folder.
        const QString name = path::lastComponent(entry.name);
        if (name.isEmpty() || name == u"." || name == u".." || name != entry.name)
            continue;
        if (!store::tl_writeToFile(entry.data, path::appendingComponent(package, name), false))
            return false;
    }
    return true;
}

// The document's text as HTML with its pictures referred to in TLImages,
// and its title; nothing when the conversion fails.
std::optional<std::pair<QString, QString>> convertedWithTitle(const QString &package)
{
    const QString converted = store::tl_duplicateItemAs(package, QStringLiteral("html"));
    if (converted.isEmpty())
        return std::nullopt;
    QString html = readText(converted);
    html.replace(QLatin1String("src=\"file:///"), QLatin1String("src=\"TLImages/"));
    QString title;
    if (store::tl_writeToFile(html, converted, false, store::TextEncoding::UTF8)) {
        const QString plain = store::tl_duplicateItemAs(converted, QStringLiteral("txt"));
        title = store::tl_firstLineOfText(readText(plain));
        platform::removeItem(plain);
    }
    platform::removeItem(converted);
    if (title.isEmpty())
        title = QStringLiteral("Pasted Item");
    return std::make_pair(html, title);
}

} // namespace

std::optional<QList<PackageEntry>> unflattenRTFD(const QByteArray &flat)
{
    if (!flat.startsWith(kTag))
        return std::nullopt;
    NumberReader numbers(flat, qsizetype(qstrlen(kTag)));
    const std::optional<quint32> version = numbers.next();
    const std::optional<quint32> count = numbers.next();
    // Every entry needs at least its two lengths.
    if (!version || !count || *count > quint32(flat.size() / 8))
        return std::nullopt;
    QList<quint32> nameLengths, dataLengths;
    for (QList<quint32> *lengths : {&nameLengths, &dataLengths})
        for (quint32 i = 0; i < *count; ++i) {
            const std::optional<quint32> length = numbers.next();
            if (!length)
                return std::nullopt;
            lengths->append(*length);
        }
    qsizetype at = numbers.position();
    QList<PackageEntry> entries(*count);
    for (quint32 i = 0; i < *count; ++i) {
        if (nameLengths[i] > quint64(flat.size() - at))
            return std::nullopt;
        entries[i].name = QString::fromUtf8(flat.mid(at, nameLengths[i]));
        at += nameLengths[i];
    }
    for (quint32 i = 0; i < *count; ++i) {
        if (dataLengths[i] > quint64(flat.size() - at))
            return std::nullopt;
        entries[i].data = flat.mid(at, dataLengths[i]);
        at += dataLengths[i];
    }
    return entries;
}

QString addFlatRTFD(const QString &book, const QByteArray &flat)
{
    const std::optional<QList<PackageEntry>> entries = unflattenRTFD(flat);
    if (!entries) {
        logLine(QStringLiteral("pasteboard: rich text package cannot be read"));
        return {};
    }
    const QString work = platform::temporaryFolder();
    const QString package = path::appendingComponent(work, QStringLiteral("Temp.rtfd"));
    std::optional<std::pair<QString, QString>> converted;
    if (platform::makeFolder(work) && writePackage(package, *entries))
        converted = convertedWithTitle(package);
    if (!converted) {
        platform::removeItem(package);
        return {};
    }
    auto [html, title] = *converted;
    const QString target = store::tl_uniqueNameForFileatPath(title + QStringLiteral(".html"), book);
    // Attachments move one by one, so each takes a name still free.
    const QString images = store::tl_imagesFolderAtMyPath(target);
    QStringList embedded;
    for (const QString &name : QDir(package).entryList(QDir::Files, QDir::Name)) {
        const QString free = store::tl_uniqueNameForFileatPath(name, images);
        if (!isAttachment(name) ||
            !platform::moveItem(path::appendingComponent(package, name), free))
            continue;
        const QString freeName = path::lastComponent(free);
        if (freeName != name)
            html.replace(QStringLiteral("TLImages/%1\"").arg(name),
                         QStringLiteral("TLImages/%1\"").arg(freeName));
        embedded << freeName;
    }
    const bool written = store::tl_writeToFile(html, target, false, store::TextEncoding::UTF8);
    if (written && !embedded.isEmpty())
        store::tl_setProperty(target, embedded, QLatin1String(keys::property::EmbeddedPhotos));
    platform::removeItem(package);
    return written ? target : QString();
}

} // namespace tl::importers::detail
