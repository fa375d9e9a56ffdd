#include "importers/pasteboard.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "foundation/plist.h"
#include "importers/pasteboard_rtfd.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/first_line.h"
#include "store/item_operations.h"
#include "store/keys.h"
#include "store/log.h"
#include "store/properties.h"
#include "store/safe_names.h"

#include <QFileInfo>
#include <QUrl>

namespace tl::importers {

void Pasteboard::add(const QString &type, const QByteArray &data)
{
    if (!hasType(type))
        m_entries.append({type, data});
}

QStringList Pasteboard::types() const
{
    QStringList list;
    for (const auto &entry : m_entries)
        list << entry.first;
    return list;
}

bool Pasteboard::hasType(const QString &type) const
{
    return types().contains(type);
}

QByteArray Pasteboard::dataForType(const QString &type) const
{
    for (const auto &entry : m_entries)
        if (entry.first == type)
            return entry.second;
    return {};
}

QString Pasteboard::stringForType(const QString &type) const
{
    return QString::fromUtf8(dataForType(type));
}

QString Pasteboard::nameText() const
{
    return m_name.isEmpty() ? stringForType(QLatin1String(pasteboard_type::PlainText)) : m_name;
}

namespace {

namespace T = pasteboard_type;

const char kFallbackName[] = "Pasteboard";

// The types the import takes, in no order of preference: the source's
// order decides.
bool isKnownType(const QString &type)
{
    static const QStringList known{T::WebArchive, T::HTML, T::PlainText, T::FlatRTFD, T::FileURL,
                                   T::PNG,        T::TIFF, T::JPEG,      T::RTF};
    return known.contains(type);
}

bool isImageType(const QString &type)
{
    return type == QLatin1String(T::PNG) || type == QLatin1String(T::JPEG) ||
           type == QLatin1String(T::TIFF);
}

// Each word's first letter upper case, the rest lower case.
QString capitalized(const QString &text)
{
    QString result = text.toLower();
    bool wordStart = true;
    for (QChar &c : result) {
        if (c.isSpace()) {
            wordStart = true;
        } else if (wordStart) {
            c = c.toUpper();
            wordStart = false;
        }
    }
    return result;
}

// A free path in the book for the stem and extension; the fallback name
// stands in for an empty stem.
QString freePath(const QString &book, const QString &stem, const QString &extension)
{
    const QString name = stem.isEmpty() ? QLatin1String(kFallbackName) : stem;
    return store::tl_uniqueNameForFileatPath(path::appendingExtension(name, extension), book);
}

QString writtenOrEmpty(bool written, const QString &path)
{
    return written ? path : QString();
}

QString addImage(const QString &book, const Pasteboard &pasteboard, const QString &type)
{
    const QString extension = path::extension(type);
    const QString firstLine = pasteboard.nameText().trimmed().section(u'\n', 0, 0);
    QString name = path::lastComponent(firstLine);
    if (name.isEmpty())
        name = path::appendingExtension(QLatin1String(kFallbackName), extension);
    else if (store::lowerCasedExtension(name) != extension)
        name = path::appendingExtension(name, extension);
    const QString target = store::tl_uniqueNameForFileatPath(name, book);
    return writtenOrEmpty(store::tl_writeToFile(pasteboard.dataForType(type), target, false),
                          target);
}

PastedDocument addWebArchive(const QString &book, const Pasteboard &pasteboard)
{
    const QByteArray data = pasteboard.dataForType(QLatin1String(T::WebArchive));
    const QVariantMap archive = plist::parse(data).value_or(QVariant()).toMap();
    PastedDocument pasted;
    pasted.address = archive.value(QStringLiteral("WebMainResource"))
                         .toMap()
                         .value(QStringLiteral("WebResourceURL"))
                         .toString();
    const QString target =
        freePath(book, capitalized(store::tl_firstLineOfText(pasteboard.nameText())),
                 QStringLiteral("webarchive"));
    store::tl_writeToFile(data, target, false);
    if (QFileInfo::exists(target))
        pasted.path = target;
    return pasted;
}

QString addText(const QString &target, const QString &text)
{
    return writtenOrEmpty(store::tl_writeToFile(text, target, false, store::TextEncoding::UTF8),
                          target);
}

// Plain text is never formatted on the way in: a Markdown document when
// Markdown is the kind of new documents, else a text document.
QString plainTextExtension()
{
    const QString type =
        platform::settings().string(QLatin1String(keys::setting::DefaultDocumentType));
    return type == u"md" ? QStringLiteral("md") : QStringLiteral("txt");
}

// A file behind its address, or the raw bytes of any other type, under the
// name of the plain text; a name without a known extension takes the
// type's (for a file, its own).
QString addOther(const QString &book, const Pasteboard &pasteboard, const QString &type)
{
    const bool isFile = type == QLatin1String(T::FileURL);
    const QString source =
        isFile ? QUrl(pasteboard.stringForType(type).trimmed()).toLocalFile() : QString();
    if (isFile && !QFileInfo::exists(source)) {
        logLine(QStringLiteral("pasteboard: no file at %1").arg(pasteboard.stringForType(type)));
        return {};
    }
    QString name = store::tl_firstLineOfText(pasteboard.nameText());
    if (name.isEmpty())
        name = QLatin1String(kFallbackName);
    const QString extension = isFile ? path::extension(source) : path::extension(type);
    const QString named = store::lowerCasedExtension(name);
    if (!store::knownExtensions().contains(named) && named != extension.toLower())
        name = path::appendingExtension(name, extension);
    const QString target = store::tl_uniqueNameForFileatPath(name, book);
    if (isFile)
        return writtenOrEmpty(store::tl_copyItemToPath(source, target), target);
    return writtenOrEmpty(store::tl_writeToFile(pasteboard.dataForType(type), target, false),
                          target);
}

PastedDocument addOfType(const QString &book, const Pasteboard &pasteboard, const QString &type)
{
    if (isImageType(type))
        return {addImage(book, pasteboard, type), {}};
    if (type == QLatin1String(T::WebArchive))
        return addWebArchive(book, pasteboard);
    if (type == QLatin1String(T::HTML))
        return {addText(freePath(book, store::tl_firstLineOfText(pasteboard.nameText()),
                                 QStringLiteral("html")),
                        pasteboard.stringForType(type)),
                {}};
    if (type == QLatin1String(T::PlainText)) {
        const QString text = pasteboard.stringForType(type);
        return {
            addText(freePath(book, store::tl_firstLineOfText(text), plainTextExtension()), text),
            {}};
    }
    if (type == QLatin1String(T::FlatRTFD))
        return {detail::addFlatRTFD(book, pasteboard.dataForType(type)), {}};
    return {addOther(book, pasteboard, type), {}};
}

} // namespace

QString importableType(const Pasteboard &pasteboard)
{
    for (const QString &type : pasteboard.types())
        if (isKnownType(type))
            return type;
    return {};
}

PastedDocument tl_addDocumentFromPasteboard(const QString &book, const Pasteboard &pasteboard,
                                            const QString &requested)
{
    const QString type = requested.isEmpty() ? importableType(pasteboard) : requested;
    if (type.isEmpty() || !pasteboard.hasType(type))
        return {};
    logLine(QStringLiteral("doc from pasteboard, using type %1").arg(type));
    PastedDocument pasted = addOfType(book, pasteboard, type);
    if (pasted.path.isEmpty())
        return pasted;
    NotificationCenter::defaultCenter().post(events::FileModifiedOnDisk, {{"path", pasted.path}});
    if (pasted.address.isEmpty()) {
        QString address = pasteboard.stringForType(QLatin1String(T::URL)).trimmed();
        if (!address.isEmpty()) {
            // A page saved from a reader view keeps an address that opens
            // in any browser.
            address.replace(QLatin1String("safari-reader"), QLatin1String("http"));
            store::tl_setProperty(pasted.path, address, QLatin1String(keys::property::URL));
            pasted.address = address;
        }
    }
    return pasted;
}

} // namespace tl::importers
