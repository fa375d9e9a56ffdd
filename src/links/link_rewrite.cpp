#include "links/link_rewrite.h"

#include "foundation/compare.h"
#include "foundation/digest.h"
#include "foundation/path_string.h"
#include "links/backlinks.h"
#include "links/path_lock.h"
#include "links/reference_scan.h"
#include "store/document_file.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "store/log.h"

#include <QDir>

namespace tl::links {

namespace {

QString decoded(const QString &text)
{
    return store::percentDecoded(text).value_or(text);
}

QString encoded(const QString &text)
{
    return store::percentEncodedForPath(text);
}

QString withoutDiacritics(const QString &text)
{
    QString plain = decomposed(text);
    plain.removeIf([](QChar c) { return c.isMark(); });
    return plain;
}

bool existsInLibrary(const QString &rootPath)
{
    return store::existsInEitherCanonicalForm(store::libraryRoot() + rootPath);
}

// Everything one document's rewrite needs to know, worked out once.
struct Move
{
    QString from;     // F, root-relative, composed
    QString to;       // T
    QString folder;   // the document's folder, absolute
    QString relFrom;  // R: F relative to the folder
    QString relTo;    // T': T relative to the folder
    bool fromUnderTo; // F begins with T: the guards are lifted
    bool isMovedItself;
};

// Case D: a link of the moved document itself, kept pointing where it did.
QString ownLinkAfterMove(const Move &m, const QString &p)
{
    const QString anchor = store::tl_pathAnchor(p);
    const QString bare = store::tl_pathWithoutAnchor(p);
    const QString here = QDir::cleanPath(path::appendingComponent(m.folder, bare));
    if (store::existsInEitherCanonicalForm(here) ||
        store::existsInEitherCanonicalForm(decoded(here)))
        return {};
    const QString old =
        QDir::cleanPath(path::appendingComponent(path::deletingLastComponent(m.from), bare));
    const QString toFolder = path::deletingLastComponent(m.to);
    QString result;
    if (existsInLibrary(old))
        result = store::tl_makeRelativeToPath(old, toFolder);
    else if (existsInLibrary(decoded(old)))
        result = encoded(store::tl_makeRelativeToPath(decoded(old), toFolder));
    if (result.isEmpty())
        return {};
    return store::tl_pathByAppendingAnchor(result, anchor);
}

bool beginsWithIgnoringDiacritics(const QString &text, const QString &prefix)
{
    return text.startsWith(prefix) || withoutDiacritics(text).startsWith(withoutDiacritics(prefix));
}

// The new text of one reference's range, or nothing to leave it.
std::optional<QString> editedRange(const Move &m, const QString &rangeText)
{
    QString p = rangeText.trimmed();
    if (p.startsWith(QStringLiteral("tavelle://"), Qt::CaseInsensitive)) {
        p.remove(QStringLiteral("tavelle://show/"), Qt::CaseInsensitive);
        p.remove(QStringLiteral("tavelle://"), Qt::CaseInsensitive);
        if (!p.startsWith(u'/'))
            p.prepend(u'/');
    }
    p = precomposed(p);
    const QString range = precomposed(rangeText);
    const bool lifted = m.fromUnderTo;

    // A: an absolute path.
    if (p.startsWith(m.from) && (!p.startsWith(m.to) || lifted))
        return QString(range).replace(m.from, m.to, Qt::CaseInsensitive);
    // B: an absolute path, percent-encoded.
    const QString plain = precomposed(decoded(p));
    if (plain != p && beginsWithIgnoringDiacritics(plain, m.from) &&
        (!beginsWithIgnoringDiacritics(plain, m.to) || lifted)) {
        const QString renamed = encoded(m.to + plain.mid(m.from.size()));
        return QString(range).replace(p, renamed, Qt::CaseInsensitive);
    }
    // C: any other root path is left alone.
    if (p.startsWith(u'/'))
        return std::nullopt;
    // D: the moved document's own relative links.
    if (m.isMovedItself) {
        const QString renamed = ownLinkAfterMove(m, p);
        if (renamed.isEmpty() || localizedCompare(renamed, p) == 0)
            return std::nullopt;
        return renamed;
    }
    // E: a link into a moved book.
    const QString target =
        store::tl_normalizedPath(QDir::cleanPath(path::appendingComponent(m.folder, p)));
    if (target.startsWith(m.from + u'/'))
        return store::tl_makeRelativeToPath(m.to + target.mid(m.from.size()), m.folder);
    // F: the link names the item (a suffix test).
    if (m.from.endsWith(p) || m.relFrom.endsWith(p)) {
        const qsizetype at = range.lastIndexOf(p);
        if (at < 0)
            return std::nullopt;
        return QString(range).replace(at, p.size(), m.relTo);
    }
    // G: a relative prefix.
    if (p.startsWith(m.relFrom) && (!p.startsWith(m.relTo) || lifted) &&
        range.startsWith(m.relFrom))
        return m.relTo + range.mid(m.relFrom.size());
    // H: a relative prefix, percent-encoded.
    const QString encFrom = encoded(m.relFrom);
    const QString encTo = encoded(m.relTo);
    if (p.startsWith(encFrom) && (!p.startsWith(encTo) || lifted) && range.startsWith(encFrom))
        return encTo + range.mid(encFrom.size());
    return std::nullopt;
}

bool overlaps(qsizetype start, qsizetype end, const QList<std::pair<qsizetype, qsizetype>> &done)
{
    return std::any_of(done.begin(), done.end(),
                       [&](const auto &r) { return start < r.second && r.first < end; });
}

} // namespace

QString textWithLinksRenamed(const QString &text, const QString &document, const QString &from,
                             const QString &to)
{
    Move m;
    m.from = precomposed(store::tl_normalizedPath(from));
    m.to = precomposed(store::tl_normalizedPath(to));
    m.folder = path::deletingLastComponent(document);
    m.relFrom = store::tl_makeRelativeToPath(m.from, m.folder);
    m.relTo = store::tl_makeRelativeToPath(m.to, m.folder);
    m.fromUnderTo = m.from.startsWith(m.to);
    m.isMovedItself = samePath(store::tl_normalizedPath(document), m.to);

    QString result = text;
    QList<std::pair<qsizetype, qsizetype>> edited;
    const QList<Reference> references = referencesInText(text);
    for (auto it = references.crbegin(); it != references.crend(); ++it) {
        const qsizetype start = it->location;
        const qsizetype end = start + it->length;
        // A range another form's record shares was edited once already.
        if (overlaps(start, end, edited))
            continue;
        const std::optional<QString> replacement = editedRange(m, text.mid(start, it->length));
        if (!replacement || *replacement == text.mid(start, it->length))
            continue;
        result.replace(start, it->length, *replacement);
        edited.append({start, end});
    }
    return result;
}

bool tl_renameLinksInDocumentFrom(const QString &document, const QString &from, const QString &to)
{
    const auto lock = lockPath(document);
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(document);
    if (!file || from.isEmpty() || to.isEmpty()) {
        logLine(QStringLiteral("have no text for %1").arg(document));
        return false;
    }
    const QString changed = textWithLinksRenamed(file->text, document, from, to);
    const std::optional<QByteArray> before = store::encodedText(file->text, file->encoding);
    const std::optional<QByteArray> after = store::encodedText(changed, file->encoding);
    if (!before || !after || md5Hex(*before, false) == md5Hex(*after, false))
        return false;
    if (!store::tl_writeToFile(changed, document, true, file->encoding)) {
        logLine(QStringLiteral("renaming links failed in %1").arg(document));
        return false;
    }
    logLine(QStringLiteral("renamed Links in %1 from %2 to %3").arg(document, from, to));
    return true;
}

} // namespace tl::links
