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

RewriteBatch::RewriteBatch(const QByteArray &tag, qsizetype heldLimit)
    : tag_(tag.isEmpty() ? platform::StagedWrites::newTag() : tag), heldLimit_(heldLimit)
{
}

std::optional<RewriteBatch::Document> RewriteBatch::read(const QString &path)
{
    const auto lock = lockPath(path);
    const std::optional<QByteArray> bytes = platform::readFile(path);
    const std::optional<store::DecodedText> decoded =
        bytes ? store::decodedTextOfUnknownEncoding(*bytes) : std::nullopt;
    const std::optional<QByteArray> encoded =
        decoded ? store::encodedText(decoded->text, decoded->encoding) : std::nullopt;
    if (!encoded)
        return std::nullopt;
    return Document{path, *bytes, decoded->encoding, decoded->text, *encoded, {}};
}

bool RewriteBatch::renameLinks(const QString &path, const QString &from, const QString &to)
{
    if (failed_)
        return false;
    // One entry for each file, however its path was spelt.
    const QString canonical = QFileInfo(path).canonicalFilePath();
    const QString key = canonical.isEmpty() ? path : canonical;
    const auto held = changed_.find(key);
    std::optional<Document> fresh = held == changed_.end() ? read(path) : std::nullopt;
    Document *document = held != changed_.end() ? &*held : fresh ? &*fresh : nullptr;
    if (!document || from.isEmpty() || to.isEmpty()) {
        logLine(QStringLiteral("have no text for %1").arg(path));
        return false;
    }
    const QString changed = textWithLinksRenamed(document->text, document->path, from, to);
    const std::optional<QByteArray> bytes = store::encodedText(changed, document->encoding);
    if (!bytes || *bytes == document->bytes) {
        if (fresh)
            unchanged_.insert(path);
        return false;
    }
    held_ += bytes->size() - document->bytes.size() + (changed.size() - document->text.size()) * 2;
    document->text = changed;
    document->bytes = *bytes;
    document->moves.append({from, to});
    if (fresh) {
        held_ += fresh->original.size() + fresh->bytes.size() + fresh->text.size() * 2;
        changed_.insert(key, std::move(*fresh));
        order_.append(key);
    }
    if (held_ > heldLimit_)
        failed_ = !commitHeld();
    return true;
}

bool RewriteBatch::replaceIfUnchanged(platform::StagedWrites &writes, const Document &document)
{
    const auto lock = lockPath(document.path);
    if (platform::readFile(document.path) != document.original) {
        writes.discard(document.path);
        return false;
    }
    if (writes.replace(document.path))
        logMoves(document.path, document.moves);
    else if (!writes.interrupted())
        logLine(QStringLiteral("renaming links failed in %1").arg(document.path));
    return true;
}

bool RewriteBatch::commit()
{
    return !failed_ && commitHeld();
}

bool RewriteBatch::commitHeld()
{
    platform::StagedWrites writes(tag_);
    // What an interrupted run left beside a document that needs no change now.
    for (const QString &path : std::as_const(unchanged_))
        writes.discardLeftover(path);
    QList<const Document *> staged;
    for (const QString &key : std::as_const(order_)) {
        const Document &document = *changed_.constFind(key);
        if (writes.stage(document.path, document.bytes))
            staged.append(&document);
        else if (writes.interrupted())
            return false;
        else
            logLine(QStringLiteral("renaming links failed in %1").arg(document.path));
    }
    if (!writes.sync())
        return false;
    // Each rename frees the replaced file's blocks, a wait on the disk: a few
    // at a time, those waits overlap.
    QList<const Document *> changedMeanwhile;
    std::mutex changedMutex;
    forEachConcurrently(staged.size(), kConcurrentRenames, [&](qsizetype i) {
        if (!replaceIfUnchanged(writes, *staged[i])) {
            const std::lock_guard lock(changedMutex);
            changedMeanwhile.append(staged[i]);
        }
    });
    if (writes.interrupted() || !writes.syncReplacements())
        return false;
    // Someone else's text wins; the links in it still follow the move.
    for (const Document *document : std::as_const(changedMeanwhile)) {
        logLine(QStringLiteral("%1 changed while its links were rewritten; rewriting them again")
                    .arg(document->path));
        for (const auto &[from, to] : document->moves)
            tl_renameLinksInDocumentFrom(document->path, from, to);
    }
    changed_.clear();
    order_.clear();
    unchanged_.clear();
    held_ = 0;
    return true;
}

} // namespace tl::links
