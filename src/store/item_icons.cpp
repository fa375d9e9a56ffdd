#include "store/item_icons.h"

#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/itmz_preview.h"
#include "store/keys.h"
#include "store/properties.h"
#include "store/thumbnails.h"

#include <QFileInfo>
#include <QMimeDatabase>

namespace tl::store {

namespace {

namespace P = keys::property;

struct IconRow
{
    QStringList extensions;
    const char *icon;
};

// Documents by extension, the first row that holds it deciding.
const QList<IconRow> &documentIcons()
{
    static const QList<IconRow> rows{
        {{"epub"}, "icon-doc-epub"},
        {{"eml"}, "icon-doc-eml"},
        {{"csv"}, "icon-doc-csv"},
        {{"xls", "xlsx"}, "icon-doc-xls"},
        {{"doc", "docx"}, "icon-doc-doc"},
        {{"ppt", "pptx"}, "icon-doc-ppt"},
        {{"htm"}, "icon-doc-html"},
        {{"zip"}, "icon-doc-zip"},
        {{"webarchive"}, "icon-doc-webarchive"},
        {{"txt"}, "icon-doc-txt"},
        {{"css"}, "icon-doc-css"},
        {{"fountain"}, "icon-doc-fountain"},
        {{"pages"}, "icon-doc-pages"},
        {{"numbers"}, "icon-doc-numbers"},
        {{"key"}, "icon-doc-key"},
        {{"rtf", "rtfd"}, "icon-doc-rtf"},
        {{"webloc", "url"}, "icon-doc-url"},
        {{"opml"}, "icon-doc-opml"},
        {{"fdx"}, "icon-doc-fdx"},
        {{"tex"}, "icon-doc-tex"},
        {{"bike"}, "icon-doc-html"},
        {markdownExtensions(), "icon-doc-md"},
        {plainTextExtensions(), "icon-doc-txt"},
        {audioExtensions(), "icon-doc-audio"},
        {movieExtensions(), "icon-doc-movie"},
    };
    return rows;
}

ItemIcon named(const QString &name)
{
    const bool dark = platform::settings().boolValue(keys::setting::DarkTheme);
    return {ItemIcon::Kind::Named, dark ? name + QStringLiteral("-dark") : name};
}

ItemIcon picture(const QString &path)
{
    return {ItemIcon::Kind::Picture, path};
}

ItemIcon bookIcon(const QString &path)
{
    if (tl_bookIsTasklist(path))
        return named(QStringLiteral("icon-book-tasks"));
    const QString colour = tl_inheritedPropertyForKey(path, QLatin1String(P::CellColor)).toString();
    if (colour.isEmpty() || colour == u"white")
        return named(QStringLiteral("icon-book-default"));
    return named(QStringLiteral("icon-book-%1").arg(colour));
}

// The first attachment, when it is an image that exists.
std::optional<QString> imageAttachment(const QString &path)
{
    const QVariantList photos = tl_propertyForKey(path, QLatin1String(P::EmbeddedPhotos)).toList();
    if (photos.isEmpty())
        return std::nullopt;
    const QString name = photos.first().toString();
    const QString image =
        name.startsWith(u'/')
            ? name
            : path::appendingComponent(
                  path::appendingComponent(path::deletingLastComponent(path), names::TLImages),
                  name);
    if (!imageExtensions().contains(lowerCasedExtension(image)) || !QFileInfo::exists(image))
        return std::nullopt;
    return image;
}

// Formatted documents are told by their properties, or, the first time one
// made on another device is seen, by the comments in the file.
ItemIcon htmlIcon(const QString &path)
{
    if (!propertyValueIsEmpty(tl_propertyForKey(path, QLatin1String(P::Markdown)))) {
        const bool readOnly =
            !propertyValueIsEmpty(tl_propertyForKey(path, QLatin1String(P::ReadOnly)));
        return named(readOnly ? QStringLiteral("icon-doc-formatted")
                              : QStringLiteral("icon-doc-formatted-md"));
    }
    const QString html = tl_stringWithContentsOfFile(path, TextEncoding::UTF8).value_or(QString());
    if (html.contains(QLatin1String("<!-- Plain Text Representation:\n"))) {
        tl_setProperty(path, QStringLiteral("EDITING"), QLatin1String(P::Markdown));
        return named(QStringLiteral("icon-doc-formatted-md"));
    }
    if (html.contains(QLatin1String("<!-- Generator: Tavelle ")))
        return named(QStringLiteral("icon-doc-formatted"));
    return named(QStringLiteral("icon-doc-html"));
}

ItemIcon platformIcon(const QString &path)
{
    if (QFileInfo::exists(path)) {
        const QMimeType type = QMimeDatabase().mimeTypeForFile(path);
        if (type.isValid() && !type.isDefault())
            return {ItemIcon::Kind::Platform, type.iconName()};
    }
    return named(QStringLiteral("icon-doc-generic"));
}

} // namespace

ItemIcon tl_iconForPath_HQ(const QString &path, bool previews, int displayScale)
{
    const QString extension = lowerCasedExtension(path);
    if (QFileInfo(path).isDir() && !packageExtensions().contains(extension))
        return bookIcon(path);
    if (previews)
        if (const std::optional<QString> image = imageAttachment(path))
            return tl_iconForPath_HQ(*image, true, displayScale);
    for (const IconRow &row : documentIcons())
        if (row.extensions.contains(extension))
            return named(QLatin1String(row.icon));
    if (extension == u"html")
        return htmlIcon(path);
    const bool isImage = imageExtensions().contains(extension);
    if (extension == u"pdf" || isImage) {
        if (previews)
            if (const std::optional<QString> thumbnail = tl_thumbnailForPath(path, displayScale))
                return picture(*thumbnail);
        return named(isImage ? QStringLiteral("icon-doc-photo") : QStringLiteral("icon-doc-pdf"));
    }
    if (extension == u"itmz") {
        if (previews)
            if (const std::optional<QString> preview = tl_pathToPreviewOfITMZ(path))
                return picture(*preview);
        return named(QStringLiteral("icon-doc-itmz"));
    }
    return platformIcon(path);
}

ItemIcon tl_iconForPath(const QString &path)
{
    return tl_iconForPath_HQ(path, true);
}

ItemIcon tl_iconForPathLQ(const QString &path)
{
    return tl_iconForPath_HQ(path, false);
}

} // namespace tl::store
