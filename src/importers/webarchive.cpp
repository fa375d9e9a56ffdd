#include "importers/webarchive.h"

#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "importers/webarchive_reader.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "store/document_file.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/properties.h"
#include "store/safe_names.h"

#include <QSet>
#include <QUrl>
#include <spdlog/spdlog.h>

namespace tl::importers {

namespace {

namespace P = keys::property;

constexpr char kStyleSheet[] = "CSS/Minimalist Theme.css";
constexpr char kHeadlessPage[] =
    "<!DOCTYPE html>\n<html>\n<head>\n<meta name= \"viewport\" content = "
    "\"initial-scale=1.0\">\n<meta http-equiv=\"Content-Type\" content=\"text/html; "
    "charset=UTF-8\" />\n</head>\n<body>\n%1\n</body>\n</html>";
constexpr char kGeneratorHead[] = "<!-- Generator: Tavelle -->\n<style ></style>\n</head>";

// Where an archive's pictures and style sheets go, and how its page links to
// a file written there.
struct Destination
{
    QString folder;
    bool uniqueNames;
    QString (*link)(const QString &name, const QString &path);
    // What a relative reference left in front of the link ("./", "../")
    // becomes.
    const Regex &leftovers;
    QString leftoversTemplate;
};

// Where a subresource's address points: the path, and its last component
// as the file name.
struct Location
{
    QString path;
    QString name;
};

// The address is escaped as a fragment would be, so its own escapes stay in
// the name ("a%20b.png"). Only a hierarchical address names a file; a name
// that could leave the folder is refused.
std::optional<Location> locationOf(const QString &address)
{
    static const QByteArray fragmentCharacters("!$&'()*+,/:;=?@");
    const QUrl url(QString::fromLatin1(QUrl::toPercentEncoding(address, fragmentCharacters)));
    if (!url.isValid())
        return std::nullopt;
    Location location{url.path(QUrl::FullyDecoded), url.fileName(QUrl::FullyDecoded)};
    if (!location.path.startsWith(u'/') || location.name.isEmpty() || location.name == u"." ||
        location.name == u".." || location.name.contains(u'/'))
        return std::nullopt;
    return location;
}

bool isExtracted(const WebResource &resource)
{
    return resource.mimeType.contains(u"image") || resource.mimeType.contains(u"text/css");
}

// Every way the page may refer to the resource now refers to the file.
void linkResource(QString &page, const WebResource &resource, const Location &location,
                  const QString &name, const QString &link, const Destination &to)
{
    page.replace(QStringLiteral("src=\"") + location.path, QStringLiteral("src=\"") + link);
    page.replace(QStringLiteral("href=\"") + location.path, QStringLiteral("href=\"") + link);
    // The name stands in the pattern as it is: a name with expression
    // characters matches otherwise, and one that does not compile changes
    // nothing.
    const Regex named(QStringLiteral("src=\"[^\"]*") + name + QStringLiteral("\""),
                      RegexOption::TimeLimited);
    if (named.isValid())
        page = named.replaceAll(page, QStringLiteral("src=\"") + Regex::escapeTemplate(link) +
                                          QStringLiteral("\""));
    page.replace(resource.url, link);
    page = to.leftovers.replaceAll(page, to.leftoversTemplate);
}

// The page as UTF-8 text with its pictures and style sheets written to the
// destination, each address once; nothing when the page is not UTF-8.
std::optional<QString> extractedPage(const WebArchive &archive, const Destination &to)
{
    std::optional<QString> page =
        store::decodedText(archive.mainResource.data, store::TextEncoding::UTF8);
    if (!page)
        return std::nullopt;
    QSet<QString> seen;
    for (const WebResource &resource : archive.subresources) {
        if (seen.contains(resource.url))
            continue;
        seen.insert(resource.url);
        const std::optional<Location> location = locationOf(resource.url);
        if (!isExtracted(resource) || !location)
            continue;
        const QString file = to.uniqueNames
                                 ? store::tl_uniqueNameForFileatPath(location->name, to.folder)
                                 : path::appendingComponent(to.folder, location->name);
        if (!store::tl_writeToFile(resource.data, file, false)) {
            spdlog::warn("web archive: cannot write {}", file.toStdString());
            continue;
        }
        const QString name = path::lastComponent(file);
        linkResource(*page, resource, *location, name, to.link(name, file), to);
    }
    return page;
}

std::optional<WebArchive> archiveAt(const QString &path)
{
    const std::optional<QByteArray> bytes = store::tl_dataWithContentsOfFile(path);
    std::optional<WebArchive> archive = bytes ? parseWebArchive(*bytes) : std::nullopt;
    if (!archive)
        spdlog::warn("web archive: {} does not read as one", path.toStdString());
    return archive;
}

// The saved page made a document of the program's own.
QString documentOfPage(QString page)
{
    if (!page.contains(u"<head>"))
        page =
            QString::fromLatin1(kHeadlessPage).arg(page.remove(QStringLiteral("<!DOCTYPE html>")));
    page.replace(QStringLiteral("</head>"), QLatin1String(kGeneratorHead));
    // Style attributes of the page's body go.
    static const Regex body(QStringLiteral("<body.*?>"), RegexOption::DotMatchesNewline);
    return body.replaceAll(page, QStringLiteral("<body>"));
}

} // namespace

QString webarchiveExtractFolder()
{
    return path::appendingComponent(platform::temporaryFolder(),
                                    QStringLiteral("webarchiveExtract"));
}

QString tl_webarchiveToHTML(const QString &path)
{
    const QString folder = webarchiveExtractFolder();
    platform::makeFolder(folder);
    const std::optional<WebArchive> archive = archiveAt(path);
    if (!archive)
        return {};
    static const Regex leftovers(QStringLiteral(R"(src="[\./]*file://)"),
                                 RegexOption::CaseInsensitive);
    const Destination to{
        folder, false,
        [](const QString &, const QString &file) { return QStringLiteral("file://") + file; },
        leftovers, QStringLiteral("src=\"file://")};
    return extractedPage(*archive, to).value_or(QString());
}

QString tl_saveWebarchiveAsHTML(const QString &path)
{
    const std::optional<WebArchive> archive = archiveAt(path);
    if (!archive)
        return {};
    static const Regex leftovers(QStringLiteral(R"(src="[\./]*TLImages)"),
                                 RegexOption::CaseInsensitive);
    const Destination to{store::tl_imagesFolderAtMyPath(path), true,
                         [](const QString &name, const QString &) {
                             return QLatin1String(names::TLImages) + u'/' + name;
                         },
                         leftovers, QStringLiteral("src=\"TLImages")};
    const std::optional<QString> page = extractedPage(*archive, to);
    if (!page)
        return {};
    const QString target = store::tl_uniqueNameForFileatPath(
        path::appendingExtension(path::deletingExtension(path::lastComponent(path)),
                                 QStringLiteral("html")),
        path::deletingLastComponent(path));
    if (!store::tl_writeToFile(documentOfPage(*page), target, false, store::TextEncoding::UTF8))
        return {};
    store::tl_setCreationDate(target);
    store::tl_setProperty(target, QLatin1String(kStyleSheet), QLatin1String(P::CSS));
    const QString &url = archive->mainResource.url;
    if (!url.isEmpty() && !url.startsWith(u"file:///"))
        store::tl_setProperty(target, url, QLatin1String(P::URL));
    return target;
}

} // namespace tl::importers
