#include "links/reference_scan.h"

#include "convert/html_to_text.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "links/backlinks.h"
#include "store/document_file.h"
#include "store/item_path.h"
#include "store/library_root.h"

#include <QDir>
#include <QSet>
#include <algorithm>

namespace tl::links {

namespace {

const QString &schemePrefix()
{
    static const QString prefix = QStringLiteral("tavelle://");
    return prefix;
}

// The link forms, in the order they are looked for; group 1 is the target.
const QList<Regex> &linkForms()
{
    static const QList<Regex> forms = [] {
        const char *patterns[] = {
            R"re(<[^>]*? src="(.+?)")re",          // HTML source
            R"re(<[^>]*? href="(.+?)")re",         // HTML anchor
            R"re(\[\[([^\[\n]+?)(\||(\]\])))re",   // wiki link, up to "|" or "]]"
            R"re(\]\((.+?)\))re",                  // Markdown inline link or image
            R"re((tavelle://[^\s"]*))re",          // scheme link anywhere
            R"re(\n\s*\[[^\]]+?\]:\s?([^\s]*))re", // Markdown reference definition
        };
        QList<Regex> list;
        for (const char *pattern : patterns)
            list.append(Regex(QString::fromLatin1(pattern), RegexOption::CaseInsensitive));
        return list;
    }();
    return forms;
}

bool counts(QStringView target)
{
    if (target.startsWith(u'#'))
        return false;
    return !target.contains(u"://") || target.startsWith(schemePrefix(), Qt::CaseInsensitive);
}

QString decodedOrEmpty(const QString &text)
{
    return store::percentDecoded(text).value_or(QString());
}

bool existsInLibrary(const QString &rootPath)
{
    return !rootPath.isEmpty() &&
           store::existsInEitherCanonicalForm(store::libraryRoot() + rootPath);
}

// The raw target as a root path or a path relative to the document's
// folder, or nothing when it names no item of the library.
std::optional<QString> verified(QString s, const QString &folder)
{
    if (std::optional<QString> rootPath = schemeLinkAsRootPath(s))
        s = *rootPath;
    else if (s.contains(u"://"))
        return std::nullopt;
    s = QDir::cleanPath(store::tl_pathWithoutAnchor(s.trimmed()));
    if (s == u".")
        s = store::tl_normalizedPath(folder);
    else if (s == u"..")
        s = store::tl_normalizedPath(path::deletingLastComponent(folder));
    if (s.isEmpty() || s == u"/")
        return std::nullopt;

    const QString percent = decodedOrEmpty(s);
    const QString entities = convert::tl_stringByReplacingHTMLEntities(percent);
    for (const QString &spelling : {s, percent, entities}) {
        if (existsInLibrary(spelling))
            return spelling;
    }
    if (s.startsWith(u'/'))
        return std::nullopt;
    for (const QString &spelling : {s, percent, entities}) {
        if (spelling.isEmpty())
            continue;
        const QString full = QDir::cleanPath(path::appendingComponent(folder, spelling));
        if (store::existsInEitherCanonicalForm(full))
            return store::tl_normalizedPath(full);
    }
    return std::nullopt;
}

} // namespace

QString Reference::rangeText() const
{
    return QStringLiteral("{%1, %2}").arg(location).arg(length);
}

QList<Reference> referencesInText(const QString &text)
{
    QList<Reference> found;
    for (const Regex &form : linkForms()) {
        for (const RegexMatch &match : form.allMatches(text)) {
            const QStringView target = match.captured(text, 1);
            if (!counts(target))
                continue;
            const Reference reference{target.toString(), match.groupStart(1), match.groupLength(1)};
            if (!found.contains(reference))
                found.append(reference);
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const Reference &a, const Reference &b) {
        return a.location < b.location;
    });
    return found;
}

QList<Reference> tl_arrayOfAllReferencesInDocumentIncludingRanges(const QString &path)
{
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(path);
    return file ? referencesInText(file->text) : QList<Reference>();
}

QStringList tl_arrayOfAllReferencesInDocument(const QString &path)
{
    QStringList paths;
    for (const Reference &reference : tl_arrayOfAllReferencesInDocumentIncludingRanges(path)) {
        if (!paths.contains(reference.path))
            paths.append(reference.path);
    }
    return paths;
}

std::optional<QString> schemeLinkAsRootPath(const QString &reference)
{
    if (!reference.startsWith(schemePrefix(), Qt::CaseInsensitive) ||
        store::tl_isTavelleURLSchemeAction(reference))
        return std::nullopt;
    QString rest = reference;
    rest.remove(QStringLiteral("tavelle://show/"), Qt::CaseInsensitive);
    rest.remove(schemePrefix(), Qt::CaseInsensitive);
    if (!rest.isEmpty() && !rest.startsWith(u'/'))
        rest.prepend(u'/');
    return rest;
}

QStringList verifiedReferencesInText(const QString &text, const QString &path)
{
    const QString folder = path::deletingLastComponent(path);
    QStringList raw;
    for (const Reference &reference : referencesInText(text)) {
        if (!raw.contains(reference.path))
            raw.append(reference.path);
    }
    QStringList result;
    for (const QString &s : raw) {
        const std::optional<QString> item = verified(s, folder);
        if (item && !result.contains(*item))
            result.append(*item);
    }
    return result;
}

QStringList tl_verifiedArrayOfReferencedDocuments(const QString &path)
{
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(path);
    return file ? verifiedReferencesInText(file->text, path) : QStringList();
}

} // namespace tl::links
