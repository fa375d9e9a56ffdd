#include "completion.h"

#include "convert/html_to_text.h"
#include "foundation/compare.h"
#include "foundation/regex.h"
#include "links/tree_walk.h"
#include "store/item_path.h"
#include "store/library_root.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QUrl>
#include <algorithm>
#include <array>

namespace tl::editing {

namespace {

struct Construct
{
    qsizetype innerStart; // after the opening mark
    qsizetype innerEnd;   // before the closing mark
};

// The "[[…]]", "](…)" or "{{…}}" of the caret's paragraph that holds the selection.
std::optional<Construct> constructAroundCaret(const EditorBuffer &buffer)
{
    static const std::array<Regex, 3> constructs{Regex(QStringLiteral(R"((\[\[).*?(\]\]))")),
                                                 Regex(QStringLiteral(R"((\]\().*?(\)))")),
                                                 Regex(QStringLiteral(R"((\{\{).*?(\}\}))"))};
    const TextRange selection = buffer.selection();
    const TextRange paragraph = buffer.paragraphRangeTrimmed({selection.location, 0});
    const QStringView text = buffer.textIn(paragraph);
    for (const Regex &construct : constructs)
        for (const RegexMatch &m : construct.allMatches(text)) {
            const qsizetype start = paragraph.location + m.start();
            const qsizetype end = paragraph.location + m.end();
            if (start > selection.location || end < selection.end())
                continue;
            const Construct found{paragraph.location + m.groupEnd(1),
                                  paragraph.location + m.groupStart(2)};
            if (selection.location >= found.innerStart && selection.end() <= found.innerEnd)
                return found;
            return std::nullopt;
        }
    return std::nullopt;
}

QString parentOf(const QString &path)
{
    return QFileInfo(path).path();
}

QString lastComponent(const QString &path)
{
    const QString trimmed = path.endsWith(u'/') ? path.chopped(1) : path;
    return trimmed.mid(trimmed.lastIndexOf(u'/') + 1);
}

bool isBook(const QString &path)
{
    return QFileInfo(path).isDir() &&
           !links::isPackageExtension(QFileInfo(path).suffix().toLower());
}

// A candidate as the list shows it: root-relative, books with a final "/".
QString candidateFor(const QString &path, const QString &root, bool leadSlash)
{
    QString normalized = path.mid(root.size());
    if (normalized.startsWith(u'/') && !leadSlash)
        normalized.remove(0, 1);
    if (isBook(path))
        normalized += u'/';
    return normalized;
}

QStringList folderCandidates(const QString &folder, const QString &word, bool oneLevel,
                             const QString &documentPath, const QString &root, bool leadSlash)
{
    QStringList found;
    links::walkTree(folder, [&](const links::WalkEntry &entry) {
        const QString name = lastComponent(entry.path);
        const bool attachments = name == u"TLImages";
        if ((store::tl_pathIsExcludedFromDisplay(entry.path) && !attachments) ||
            name.startsWith(u'.') || entry.path.contains(u"TLResources"))
            return false;
        if (entry.path != documentPath &&
            (word.isEmpty() ||
             (name.contains(word, Qt::CaseInsensitive) && name.compare(word) != 0)))
            found.append(candidateFor(entry.path, root, leadSlash));
        return entry.isFolder && !oneLevel;
    });
    return found;
}

// The typed components in order anywhere in the path, the last one in the name.
QStringList fuzzyCandidates(const QString &typed, const QString &root)
{
    QStringList components = typed.split(u'/', Qt::SkipEmptyParts);
    if (components.isEmpty())
        return {};
    QString top = root;
    while (components.size() > 1 && QFileInfo(top + u'/' + components.first()).isDir())
        top += u'/' + components.takeFirst();
    const QString last = components.takeLast().toLower();
    QStringList found;
    links::walkTree(top, [&](const links::WalkEntry &entry) {
        const QString name = lastComponent(entry.path);
        if (name.startsWith(u'.') || name == u"TLResources" || name == u"TLImages")
            return false;
        if (name.endsWith(u".plist"))
            return false;
        const QString relative = entry.path.mid(root.size());
        if (name.toLower().contains(last)) {
            qsizetype at = 0;
            const bool inOrder =
                std::all_of(components.begin(), components.end(), [&](const QString &c) {
                    at = relative.indexOf(c, at, Qt::CaseInsensitive);
                    return at >= 0 && (at += c.size(), true);
                });
            if (inOrder)
                found.append(candidateFor(entry.path, root, true));
        }
        return entry.isFolder;
    });
    return found;
}

void sortCandidates(QStringList &candidates, const QString &word, bool numericOrder)
{
    const QSet<QString> unique(candidates.begin(), candidates.end());
    candidates = QStringList(unique.begin(), unique.end());
    std::sort(candidates.begin(), candidates.end()); // a fixed start for the stable sort
    std::stable_sort(candidates.begin(), candidates.end(), [&](const QString &a, const QString &b) {
        return completionLess(a, b, word, numericOrder);
    });
}

} // namespace

bool pasteLinkIntoConstruct(EditorBuffer &buffer, const QString &pasted, const QString &root)
{
    const QString link = pasted.trimmed();
    const QUrl url(link, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty() || link.contains(u' '))
        return false;
    const std::optional<Construct> construct = constructAroundCaret(buffer);
    if (!construct)
        return false;
    QString path = link;
    if (url.scheme() == u"tavelle" && !store::tl_isTavelleURLSchemeAction(link))
        path = store::tl_pathFromTavelleURLScheme(link);
    else if (url.isLocalFile())
        path = url.toLocalFile();
    if (!root.isEmpty() && path.startsWith(root + u'/'))
        path = path.mid(root.size());
    const TextRange inner{construct->innerStart, construct->innerEnd - construct->innerStart};
    if (buffer.tl_replaceCharactersInRange(inner, path))
        buffer.setSelection({inner.location + path.size(), 0});
    return true;
}

bool completionLess(const QString &a, const QString &b, const QString &word, bool numericOrder)
{
    const bool aBook = a.endsWith(u'/'), bBook = b.endsWith(u'/');
    if (aBook != bBook)
        return bBook;
    const QString aName = lastComponent(a), bName = lastComponent(b);
    const bool aBegins = aName.startsWith(word, Qt::CaseInsensitive);
    const bool bBegins = bName.startsWith(word, Qt::CaseInsensitive);
    if (aBegins != bBegins)
        return aBegins;
    const int byName = numericOrder ? localizedStandardCompare(aName, bName)
                                    : localizedCaseInsensitiveCompare(aName, bName);
    if (byName != 0)
        return byName < 0;
    return localizedStandardCompare(parentOf(a), parentOf(b)) < 0;
}

std::optional<Completions> wikiPathCompletions(const EditorBuffer &buffer,
                                               const QString &documentPath, const QString &root,
                                               const EditorSettings &settings)
{
    const std::optional<Construct> construct = constructAroundCaret(buffer);
    if (!construct || root.isEmpty())
        return std::nullopt;
    const qsizetype caret = buffer.selection().location;
    const QString typed = buffer.text().mid(construct->innerStart, caret - construct->innerStart);
    const QString documentFolder = parentOf(documentPath);
    Completions result{{construct->innerStart, typed.size()}, {}, documentPath};

    if (const qsizetype hash = typed.indexOf(u'#'); hash >= 0) {
        const QString file = typed.left(hash);
        const QString target =
            file.isEmpty() ? documentPath
                           : store::resolvingSymlinks(
                                 (file.startsWith(u'/') ? root : documentFolder) + u'/' + file);
        const QString anchorTyped = typed.mid(hash + 1);
        for (const QString &anchor : convert::tl_listOfAnchorsInHTML(target))
            if (anchor.startsWith(anchorTyped))
                result.suggestions.append(anchor);
        result.prefixRange = {construct->innerStart + hash + 1, anchorTyped.size()};
        result.documentPath.clear(); // anchors go in as they are
        sortCandidates(result.suggestions, anchorTyped, settings.numericOrder);
        return result;
    }

    QString full = typed.isEmpty()
                       ? documentFolder
                       : store::resolvingSymlinks((typed.startsWith(u'/') ? root : documentFolder) +
                                                  u'/' + typed);
    if (typed.isEmpty() || typed.endsWith(u'/'))
        full += u'/';
    const bool leadSlash =
        (!typed.isEmpty() && !typed.endsWith(u'/')) || QDir::cleanPath(full) == root;
    QString folder = full, word;
    if (!(full.endsWith(u'/') && QFileInfo(full).isDir())) {
        folder = parentOf(full);
        word = lastComponent(full);
    }
    const bool oneLevel = QDir::cleanPath(folder) == root || full.endsWith(u'/');
    result.suggestions =
        folderCandidates(QDir::cleanPath(folder), word, oneLevel, documentPath, root, leadSlash);
    if (result.suggestions.isEmpty() && !QFileInfo::exists(full))
        result.suggestions = fuzzyCandidates(full.mid(root.size()), root);
    sortCandidates(result.suggestions, word, settings.numericOrder);
    return result;
}

std::optional<Completions> contextTagCompletions(const EditorBuffer &buffer,
                                                 const QStringList &availableTags,
                                                 const EditorSettings &settings)
{
    const qsizetype caret = buffer.selection().location;
    if (!settings.contextsEnabled || !settings.extractContextsAutomatically || caret == 0)
        return std::nullopt;
    const QString markers = Regex::escapePattern(settings.contextMarkers);
    const Regex typedTag(QStringLiteral(R"((?<!\S)([%1](?![%1])\S*?)$)").arg(markers),
                         RegexOption::AnchorsMatchLines);
    const TextRange paragraph = buffer.paragraphRange(caret);
    const QStringView before =
        QStringView(buffer.text()).mid(paragraph.location, caret - paragraph.location);
    const QList<RegexMatch> matches = typedTag.allMatches(before);
    if (matches.isEmpty())
        return std::nullopt;
    const RegexMatch &last = matches.last();
    const QString word = last.capturedString(before, 1);
    Completions result{{paragraph.location + last.groupStart(1), word.size()}, {}, QString()};
    for (const QString &tag : availableTags)
        if (tag.startsWith(word, Qt::CaseInsensitive))
            result.suggestions.append(tag);
    std::sort(result.suggestions.begin(), result.suggestions.end(), LocalizedLess());
    return result;
}

void tl_insertCompletion(EditorBuffer &buffer, const Completions &completions, qsizetype index,
                         const QString &root)
{
    if (index < 0 || index >= completions.suggestions.size())
        return;
    QString chosen = completions.suggestions.at(index);
    if (!completions.documentPath.isEmpty()) {
        const QString full = root + u'/' + (chosen.startsWith(u'/') ? chosen.mid(1) : chosen);
        const QString folder = parentOf(completions.documentPath) + u'/';
        const QString above = parentOf(parentOf(completions.documentPath)) + u'/';
        if (full.startsWith(folder))
            chosen = full.mid(folder.size());
        else if (full.startsWith(above))
            chosen = QStringLiteral("../") + full.mid(above.size());
    }
    if (buffer.tl_replaceCharactersInRange(completions.prefixRange, chosen))
        buffer.setSelection({completions.prefixRange.location + chosen.size(), 0});
}

bool tryToAutoExpandWikiPath(EditorBuffer &buffer, const QString &documentPath, const QString &root,
                             const EditorSettings &settings, std::optional<Completions> &shown)
{
    std::optional<Completions> completions =
        wikiPathCompletions(buffer, documentPath, root, settings);
    if (!completions || completions->suggestions.isEmpty())
        return false;
    if (completions->suggestions.size() == 1)
        tl_insertCompletion(buffer, *completions, 0, root);
    else
        shown = std::move(completions);
    return true;
}

bool tryToSuggestContextTags(const EditorBuffer &buffer, const QStringList &availableTags,
                             const EditorSettings &settings, std::optional<Completions> &shown)
{
    std::optional<Completions> completions = contextTagCompletions(buffer, availableTags, settings);
    if (!completions || completions->suggestions.isEmpty())
        return false;
    shown = std::move(completions);
    return true;
}

} // namespace tl::editing
