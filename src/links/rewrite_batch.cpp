#include "links/rewrite_batch.h"

#include "links/link_rewrite.h"
#include "links/path_lock.h"
#include "platform/file_ops.h"
#include "platform/staged_writes.h"
#include "store/log.h"

namespace tl::links {

namespace {

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
    return Document{{path, *bytes, *encoded}, decoded->encoding, decoded->text, {}};
}

bool RewriteBatch::renameLinks(const QString &path, const QString &from, const QString &to)
{
    if (failed_)
        return false;
    const QString key = heldFileKey(path);
    const auto held = changed_.find(key);
    std::optional<Document> fresh = held == changed_.end() ? read(path) : std::nullopt;
    Document *document = held != changed_.end() ? &*held : fresh ? &*fresh : nullptr;
    if (!document || from.isEmpty() || to.isEmpty()) {
        logLine(QStringLiteral("have no text for %1").arg(path));
        return false;
    }
    const QString changed = textWithLinksRenamed(document->text, document->file.path, from, to);
    const std::optional<QByteArray> bytes = store::encodedText(changed, document->encoding);
    if (!bytes || *bytes == document->file.bytes) {
        if (fresh)
            unchanged_.insert(path);
        return false;
    }
    held_ +=
        bytes->size() - document->file.bytes.size() + (changed.size() - document->text.size()) * 2;
    document->text = changed;
    document->file.bytes = *bytes;
    document->moves.append({from, to});
    if (fresh) {
        held_ += fresh->file.original->size() + fresh->file.bytes.size() + fresh->text.size() * 2;
        changed_.insert(key, std::move(*fresh));
        order_.append(key);
    }
    if (held_ > heldLimit_)
        failed_ = !commitHeld();
    return true;
}

bool RewriteBatch::commit()
{
    return !failed_ && commitHeld();
}

bool RewriteBatch::commitHeld()
{
    QList<const Document *> documents;
    QList<const HeldFile *> files;
    for (const QString &key : std::as_const(order_)) {
        documents.append(&*changed_.constFind(key));
        files.append(&documents.last()->file);
    }
    // What an interrupted run left beside a document that needs no change now
    // goes too.
    const std::optional<QList<qsizetype>> changedMeanwhile =
        writeTogether(tag_, files, unchanged_.values(), [&](qsizetype i, bool replaced) {
            if (replaced)
                logMoves(files[i]->path, documents[i]->moves);
            else
                logLine(QStringLiteral("renaming links failed in %1").arg(files[i]->path));
        });
    if (!changedMeanwhile)
        return false;
    // Someone else's text wins; the links in it still follow the move.
    for (const qsizetype i : *changedMeanwhile) {
        logLine(QStringLiteral("%1 changed while its links were rewritten; rewriting them again")
                    .arg(files[i]->path));
        for (const auto &[from, to] : documents[i]->moves)
            tl_renameLinksInDocumentFrom(files[i]->path, from, to);
    }
    changed_.clear();
    order_.clear();
    unchanged_.clear();
    held_ = 0;
    return true;
}

} // namespace tl::links
