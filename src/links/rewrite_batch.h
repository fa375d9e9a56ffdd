#pragma once

#include "links/write_together.h"
#include "store/text_encoding.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

// The link rewrites of one move, held in memory and written together: every
// changed document is replaced whole through one set of staged writes, so a
// move that touches a thousand documents waits for the disk twice, not a
// thousand times. A document that someone else changed between its reading
// and its replacement is not overwritten: its rewrites run again on its new
// text. Only changed documents are held, and once they pass a size they are
// written as a part of the batch, so a move of a huge book stays in bounds.
namespace tl::links {

class RewriteBatch
{
public:
    // `tag` names the temporaries; a batch that runs again after a crash
    // passes the one it had. Empty: a fresh one. `heldLimit` is the size in
    // bytes of the changed texts held before a part is written.
    explicit RewriteBatch(const QByteArray &tag, qsizetype heldLimit = 64 << 20);

    // tl_renameLinksInDocumentFrom on the document's text as this batch holds
    // it; nothing is written yet. Answers whether the text changed.
    bool renameLinks(const QString &document, const QString &from, const QString &to);
    const QByteArray &tag() const { return tag_; }

    // Writes every changed document. False when the batch must run again: it
    // was interrupted, or the disk did not take the changes.
    bool commit();

private:
    struct Document
    {
        HeldFile file; // its bytes: the text encoded
        store::TextEncoding encoding;
        QString text;
        QList<std::pair<QString, QString>> moves;
    };
    static std::optional<Document> read(const QString &path);
    bool commitHeld();

    QByteArray tag_;
    qsizetype heldLimit_;
    qsizetype held_ = 0;
    bool failed_ = false;
    // Changed documents by canonical path, in the order first changed.
    QHash<QString, Document> changed_;
    QStringList order_;
    // Documents read and left as they were.
    QSet<QString> unchanged_;
};

} // namespace tl::links
