#include "links/rewrite_batch.h"

#include "foundation/concurrently.h"
#include "links/link_rewrite.h"
#include "links/path_lock.h"
#include "platform/file_ops.h"
#include "store/log.h"

#include <QFileInfo>
#include <mutex>

namespace tl::links {

namespace {

constexpr int kConcurrentRenames = 4;

void logMoves(const QString &document, const QList<std::pair<QString, QString>> &moves)
{
    for (const auto &[from, to] : moves)
        logLine(QStringLiteral("renamed Links in %1 from %2 to %3").arg(document, from, to));
}

} // namespace

RewriteBatch::RewriteBatch(const QByteArray &tag) : writes_(tag)
{
}

RewriteBatch::Document *RewriteBatch::documentAt(const QString &path)
{
    // One entry for each file, however its path was spelt.
    const QString canonical = QFileInfo(path).canonicalFilePath();
    const QString key = canonical.isEmpty() ? path : canonical;
    auto found = documents_.find(key);
    if (found == documents_.end()) {
        std::optional<Document> document;
        const auto lock = lockPath(path);
        const std::optional<QByteArray> bytes = platform::readFile(path);
        const std::optional<store::DecodedText> decoded =
            bytes ? store::decodedTextOfUnknownEncoding(*bytes) : std::nullopt;
        const std::optional<QByteArray> encoded =
            decoded ? store::encodedText(decoded->text, decoded->encoding) : std::nullopt;
        if (encoded)
            document = Document{path, *bytes, decoded->encoding, decoded->text, *encoded, {}};
        found = documents_.insert(key, document);
        order_.append(key);
    }
    return found->has_value() ? &**found : nullptr;
}

bool RewriteBatch::renameLinks(const QString &path, const QString &from, const QString &to)
{
    Document *document = documentAt(path);
    if (!document || from.isEmpty() || to.isEmpty()) {
        logLine(QStringLiteral("have no text for %1").arg(path));
        return false;
    }
    const QString changed = textWithLinksRenamed(document->text, document->path, from, to);
    const std::optional<QByteArray> bytes = store::encodedText(changed, document->encoding);
    if (!bytes || *bytes == document->bytes)
        return false;
    document->text = changed;
    document->bytes = *bytes;
    document->moves.append({from, to});
    return true;
}

bool RewriteBatch::replaceIfUnchanged(const Document &document)
{
    const auto lock = lockPath(document.path);
    if (platform::readFile(document.path) != document.original) {
        writes_.discard(document.path);
        return false;
    }
    if (writes_.replace(document.path))
        logMoves(document.path, document.moves);
    else if (!writes_.interrupted())
        logLine(QStringLiteral("renaming links failed in %1").arg(document.path));
    return true;
}

bool RewriteBatch::commit()
{
    QList<const Document *> staged;
    for (const QString &key : std::as_const(order_)) {
        const std::optional<Document> &document = *documents_.constFind(key);
        if (!document)
            continue;
        if (document->moves.isEmpty())
            writes_.discardLeftover(document->path);
        else if (writes_.stage(document->path, document->bytes))
            staged.append(&*document);
        else if (writes_.interrupted())
            return false;
        else
            logLine(QStringLiteral("renaming links failed in %1").arg(document->path));
    }
    if (!writes_.sync())
        return false;
    // Each rename frees the replaced file's blocks, a wait on the disk: a few
    // at a time, those waits overlap.
    QList<const Document *> changedMeanwhile;
    std::mutex changedMutex;
    forEachConcurrently(staged.size(), kConcurrentRenames, [&](qsizetype i) {
        if (!replaceIfUnchanged(*staged[i])) {
            const std::lock_guard lock(changedMutex);
            changedMeanwhile.append(staged[i]);
        }
    });
    if (writes_.interrupted())
        return false;
    if (!writes_.syncReplacements())
        return false;
    // Someone else's text wins; the links in it still follow the move.
    for (const Document *document : std::as_const(changedMeanwhile)) {
        logLine(QStringLiteral("%1 changed while its links were rewritten; rewriting them again")
                    .arg(document->path));
        for (const auto &[from, to] : document->moves)
            tl_renameLinksInDocumentFrom(document->path, from, to);
    }
    return true;
}

} // namespace tl::links
