// The e-book run of the document compiler: the package tree in a work
// folder, page by page, then zipped beside the documents.
#include "browser/document_kinds.h"
#include "convert/envelope.h"
#include "convert/fonts_to_include.h"
#include "convert/html_to_markdown.h"
#include "convert/markdown_to_html.h"
#include "convert/style_sheet.h"
#include "foundation/clock.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/folders.h"
#include "publish/compile_selection.h"
#include "publish/document_compiler.h"
#include "publish/epub_archive.h"
#include "publish/epub_markup.h"
#include "publish/epub_navigation.h"
#include "publish/epub_package.h"
#include "publish/mail_parts.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/properties.h"
#include "store/reading_order.h"
#include "store/safe_names.h"
#include "store/style_values.h"
#include "store/text_conversions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>

namespace tl::publish {

namespace {

const QStringList &coverNames()
{
    static const QStringList names{"cover.jpg", "cover.jpeg", "cover.png"};
    return names;
}

bool isEBookEntry(const QString &path)
{
    static const QStringList others{"html", "eml", "webarchive", "webloc", "url", "ncx"};
    const QString extension = store::lowerCasedExtension(path);
    return hasTextExtension(path) || hasImageExtension(path) ||
           store::movieExtensions().contains(extension) || others.contains(extension);
}

bool writeText(const QString &text, const QString &path)
{
    return store::tl_writeToFile(text.toUtf8(), path, false);
}

// The inherited style sheet as plain CSS, with the program's fonts for the
// face where their files are at hand.
struct StyleSheet
{
    QString css;
    QStringList fontFiles;
};

StyleSheet eBookStyleSheet(const QString &source)
{
    constexpr RegexOptions dotAll = RegexOption::DotMatchesNewline;
    static const RegexRule rules[] = {
        {Regex(QStringLiteral("<style .*?>"), dotAll), QString()},
        {Regex(QStringLiteral("</style>"), dotAll), QString()},
        {Regex(QStringLiteral("<!--.*?>\n"), dotAll), QString()},
        {Regex(QStringLiteral("\n\n"), dotAll), QStringLiteral("\n")},
        {Regex(QStringLiteral("<script.*?/script>"), dotAll), QString()},
        {Regex(QStringLiteral("(-webkit-text-size-adjust:.*?;)")), QString()},
    };
    StyleSheet sheet{applyRules(convert::tl_inheritedStyleSheet(source), rules), {}};
    const QStringList fonts =
        convert::tl_fontsToIncludeForFace_forePub(store::tl_fontFaceAtPath(source), true);
    const QString fontsFolder =
        path::appendingComponent(platform::resourcesFolder(), QStringLiteral("Fonts"));
    for (const QString &file : fonts.mid(1))
        if (QFileInfo::exists(path::appendingComponent(fontsFolder, file)))
            sheet.fontFiles << file;
    // Without the files, the rules would name fonts the book does not hold.
    if (sheet.fontFiles.size() != fonts.size() - 1 || sheet.fontFiles.isEmpty()) {
        sheet.fontFiles.clear();
        return sheet;
    }
    static const Regex fontFace(QStringLiteral(R"(@font-face \{.*?\})"), dotAll);
    sheet.css = fonts.first() + fontFace.replaceAll(sheet.css, QString());
    return sheet;
}

class EPubRun
{
public:
    EPubRun(const QString &tree, const QString &identifier)
        : m_ops(tree + QStringLiteral("/OPS")), m_identifier(identifier)
    {
    }

    const QString &ops() const { return m_ops; }
    QString imagesFolder() const { return m_ops + QStringLiteral("/TLImages"); }

    void addStyleSheet(const StyleSheet &sheet)
    {
        if (!sheet.fontFiles.isEmpty()) {
            QDir().mkpath(m_ops + QStringLiteral("/fonts"));
            const QString fonts =
                path::appendingComponent(platform::resourcesFolder(), QStringLiteral("Fonts"));
            for (int i = 0; i < sheet.fontFiles.size(); ++i) {
                const QString &file = sheet.fontFiles.at(i);
                QFile::copy(fonts + u'/' + file, m_ops + QStringLiteral("/fonts/") + file);
                m_manifest += epub::fontItem(i + 1, file);
            }
        }
        writeText(sheet.css + newerElementStyles(), m_ops + QStringLiteral("/css/style.css"));
        m_manifest += epub::styleSheetItem();
    }

    // Page names for all documents before any is written, so links between
    // them can be made; a name in use gets a number.
    void namePages(const QStringList &entries)
    {
        QSet<QString> used;
        for (const QString &entry : entries) {
            if (hasImageExtension(entry) || store::lowerCasedExtension(entry) == u"ncx")
                continue;
            QString name = pageNameForDocument(entry);
            for (int n = 1; used.contains(name); ++n)
                name = path::deletingExtension(pageNameForDocument(entry)) +
                       QStringLiteral(" %1.html").arg(n);
            used.insert(name);
            m_pages.insert(QDir::cleanPath(entry), name);
        }
    }

    void addEntry(const QString &path)
    {
        const QString extension = store::lowerCasedExtension(path);
        if (extension == u"ncx") {
            m_ownNavigation = path::lastComponent(path);
            QFile::copy(path, m_ops + u'/' + m_ownNavigation);
        } else if (hasImageExtension(path)) {
            addImageEntry(path);
        } else if (!store::movieExtensions().contains(extension)) {
            addDocument(path);
        }
    }

    void addCover(const QString &image)
    {
        const QString name = path::lastComponent(image);
        QFile::copy(image, imagesFolder() + u'/' + name);
        writeText(epub::coverPage(hrefForFileName(name)), m_ops + QStringLiteral("/cover.html"));
        m_manifest += epub::coverItems(hrefForFileName(name));
        m_hasCover = true;
    }

    bool hasCover() const { return m_hasCover; }

    // Writes the navigation and answers the package's manifest and spine.
    std::pair<QString, QString> finish(const QString &title)
    {
        const QString ncx =
            epub::ncxHead(m_identifier, title) + m_navigation.closedNavMap() + epub::ncxTail();
        if (m_ownNavigation.isEmpty())
            writeText(ncx, m_ops + QStringLiteral("/toc.ncx"));
        else
            logLine(QStringLiteral("skipping my TOC %1").arg(m_ownNavigation));
        const QString navigation = m_ownNavigation.isEmpty() ? QStringLiteral("toc.ncx")
                                                             : hrefForFileName(m_ownNavigation);
        return {QStringLiteral("<manifest>\n") + m_manifest + epub::navigationItem(navigation) +
                    QStringLiteral("</manifest>\n"),
                QStringLiteral("<spine toc=\"ncx\">\n") +
                    (m_hasCover ? epub::coverSpineItem() : QString()) + m_spine +
                    QStringLiteral("</spine>\n")};
    }

private:
    QString body(const QString &path) const
    {
        const QString extension = store::lowerCasedExtension(path);
        if (extension == u"html") {
            const std::optional<store::DecodedText> text = store::tl_stringWithContentsOfFile(path);
            if (text && text->text.contains(u"<html"))
                return convert::tl_getInnerHTML(text->text);
        }
        if (extension == u"eml")
            return mailBody(path).value_or(QString());
        if (extension == u"webarchive")
            return convert::tl_getInnerHTML(store::tl_webarchiveToHTML(path));
        if (extension == u"webloc" || extension == u"url")
            return QStringLiteral("<p><a href=\"%1\">%2</a></p>")
                .arg(epub::escaped(browser::tl_embeddedURL(path)),
                     epub::escaped(path::deletingExtension(path::lastComponent(path))));
        return convert::tl_getInnerHTML(convert::tl_markdownToHTML(path))
            .remove(QStringLiteral("<TOC>"));
    }

    // Images of a page copied into the package under numbered names.
    QString withPackagedImages(const QString &page, const QString &folder)
    {
        static const Regex source(QStringLiteral(R"re( src="(.*?)")re"),
                                  RegexOption::CaseInsensitive);
        static const QString scheme = QStringLiteral("tavelle://show/");
        return source.replaceMatches(page, [&](const RegexMatch &m, QStringView t) {
            QString value = m.capturedString(t, 1).remove(u'"');
            value = store::percentDecoded(value).value_or(value);
            const bool fromRoot = value.startsWith(scheme) || value.startsWith(u'/');
            if (value.startsWith(scheme))
                value = value.mid(scheme.size());
            if (value.isEmpty() || value.startsWith(u"TLImages/\"") || value.contains(u"://"))
                return std::optional<QString>();
            const QString file = QDir::cleanPath(
                path::appendingComponent(fromRoot ? store::libraryRoot() : folder, value));
            if (!QFileInfo(file).isFile())
                return std::optional<QString>();
            const QString name =
                QStringLiteral("item%1.%2").arg(m_counter).arg(path::extension(file));
            QFile::copy(file, imagesFolder() + u'/' + name);
            m_manifest += epub::imageItem(m_counter++, name);
            return std::optional(QStringLiteral(" src=\"TLImages/%1\"").arg(name));
        });
    }

    void addPage(const QString &name, const QString &content)
    {
        writeText(content, m_ops + u'/' + name);
        m_manifest += epub::documentItem(m_counter, hrefForFileName(name));
        m_spine += epub::spineItem(m_counter++);
    }

    void addDocument(const QString &path)
    {
        const QString name = m_pages.value(QDir::cleanPath(path));
        const QString title = path::deletingExtension(path::lastComponent(path));
        QString page = epub::page(epub::pageHead(m_identifier, title), body(path));
        page = epub::xhtmlDeclaration() +
               tl_stringByMakingHTMLePubCompliant(convert::tl_htmlWithoutInlineStyles(page));
        page = m_navigation.addHeadings(page, hrefForFileName(name));
        page = withPackagedImages(page, path::deletingLastComponent(path));
        page = withFlattenedLinks(page, path::deletingLastComponent(path), m_pages);
        addPage(name, withValidIds(withWellFormedBody(page)));
    }

    void addImageEntry(const QString &path)
    {
        if (path.contains(u"TLImages/"))
            return;
        const QString name = path::lastComponent(path);
        if (coverNames().contains(name.toLower())) {
            if (!m_hasCover)
                addCover(path);
            return;
        }
        QFile::copy(path, imagesFolder() + u'/' + name);
        m_manifest += epub::imageItem(m_counter++, hrefForFileName(name));
        const QString page = path::lastComponent(store::tl_uniqueNameForFileatPath(
            path::deletingExtension(name) + QStringLiteral(".html"), m_ops));
        const QString caption = path::deletingExtension(name);
        addPage(page,
                epub::xhtmlDeclaration() + epub::captionPage(epub::pageHead(m_identifier, caption),
                                                             hrefForFileName(name), caption));
    }

    QString m_ops;
    QString m_identifier;
    int m_counter = 1;
    EPubNavigation m_navigation{m_counter};
    QString m_manifest;
    QString m_spine;
    QString m_ownNavigation;
    bool m_hasCover = false;
    QHash<QString, QString> m_pages;
};

} // namespace

std::optional<QString> TLKSDocumentCompiler::tl_makeePubWithAttributes(const EBookAttributes &given,
                                                                       const QStringList &paths)
{
    creatingeBook = true;
    showSheet();
    const QString base = effectiveBasePath();
    EBookAttributes attributes = given;
    if (attributes.title.isEmpty())
        attributes.title = path::lastComponent(base);
    if (attributes.author.isEmpty())
        attributes.author = QStringLiteral(" ");

    const QString tree = path::appendingComponent(
        platform::temporaryFolder(), store::tl_escapeIllegalCharacters(attributes.title));
    QDir(tree).removeRecursively();
    for (const char *folder : {"META-INF", "OPS/css", "OPS/TLImages"})
        QDir().mkpath(tree + u'/' + QLatin1String(folder));

    QString styleSource = base;
    for (const QString &path : paths)
        if (hasTextExtension(path) || store::lowerCasedExtension(path) == u"html") {
            styleSource = path;
            break;
        }
    writeText(epub::mimetype(), tree + QStringLiteral("/mimetype"));
    writeText(epub::containerXML(), tree + QStringLiteral("/META-INF/container.xml"));
    writeText(epub::displayOptionsXML(),
              tree + QStringLiteral("/META-INF/com.apple.ibooks.display-options.xml"));

    const QDateTime now = clock().now().toLocalTime();
    const QString identifier = QStringLiteral("544C-%1").arg(now.toMSecsSinceEpoch());
    EPubRun run(tree, identifier);
    run.addStyleSheet(eBookStyleSheet(styleSource));

    QStringList entries;
    for (const QString &path : paths.isEmpty() ? store::tl_sortedListOfAllItemsInHierarchy(base)
                                               : listOfDocumentsByExpandingBooksInArray(paths))
        if (isEBookEntry(path))
            entries << path;
    run.namePages(entries);
    if (!attributes.cover.isEmpty() && QFileInfo(attributes.cover).isFile())
        run.addCover(attributes.cover);

    int done = 0;
    for (const QString &path : std::as_const(entries)) {
        if (stopProcess)
            break;
        run.addEntry(path);
        updateProgress(100.0 / entries.size() * ++done);
    }
    if (stopProcess) {
        QDir(tree).removeRecursively();
        hideSheet();
        creatingeBook = false;
        return std::nullopt;
    }

    const QString target =
        store::tl_uniqueNameForFileatPath(attributes.title + QStringLiteral(".epub"), base);
    const auto [manifest, spine] = run.finish(attributes.title);
    epub::PackageMetadata metadata{attributes, identifier,
                                   now.toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'")),
                                   run.hasCover()};
    writeText(epub::packageDocument(metadata, manifest, spine), run.ops() + "/content.opf");

    const QString archive = tree + QStringLiteral(".epub");
    const bool written = writeEPubArchive(tree, archive) && QFile::rename(archive, target);
    QDir(tree).removeRecursively();
    QFile::remove(archive);
    hideSheet();
    creatingeBook = false;
    if (!written)
        return std::nullopt;
    store::tl_setCreationDate(target);
    return target;
}

} // namespace tl::publish
