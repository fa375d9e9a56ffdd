#pragma once

#include "platform/staged_writes.h"
#include "store/text_encoding.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

// The link rewrites of one move, held in memory and written together: every
// changed document is replaced whole through one set of staged writes, so a
// move that touches a thousand documents waits for the disk twice, not a
// thousand times. A document that someone else changed between its reading
// and its replacement is not overwritten: its rewrites run again on its new
// text.
namespace tl::links {

class RewriteBatch
{
public:
    // `tag` names the temporaries; a batch that runs again after a crash
    // passes the one it had. Empty: a fresh one.
    explicit RewriteBatch(const QByteArray &tag);

    // tl_renameLinksInDocumentFrom on the document's text as this batch holds
    // it; nothing is written yet. Answers whether the text changed.
    bool renameLinks(const QString &document, const QString &from, const QString &to);
    // Writes every changed document. False when the batch must run again: it
    // was interrupted, or the disk did not take the changes.
    bool commit();

private:
    struct Document
    {
        QString path;
        QByteArray original; // as read, to tell a change by someone else
        store::TextEncoding encoding;
        QString text;
        QByteArray bytes; // the text encoded
        QList<std::pair<QString, QString>> moves;
    };
    Document *documentAt(const QString &path);
    bool replaceIfUnchanged(const Document &document);

    platform::StagedWrites writes_;
    // By canonical path, in the order first read; nothing for an unreadable one.
    QHash<QString, std::optional<Document>> documents_;
    QStringList order_;
};

} // namespace tl::links
