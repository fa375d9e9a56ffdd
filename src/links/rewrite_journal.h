#pragma once

#include <QList>
#include <QString>

// A note, in the per-library support folder, of each link rewrite before it
// starts, removed when it is done. What a crash leaves behind is finished at
// the next start: every rewrite can run again without harm, as it never
// rewrites a link that already points where it should. The note keeps the tag
// of the rewrite's temporary files, so the run that finishes it replaces or
// removes what the interrupted one left beside the documents.
namespace tl::links {

struct PendingRewrite
{
    enum class Kind { Document, Book };
    Kind kind = Kind::Document;
    QString from;
    QString to;
    QByteArray tag;
};

// Notes the rewrite; answers the note's name for finishRewrite.
QString beginRewrite(const PendingRewrite &rewrite);
void finishRewrite(const QString &note);
// The rewrites begun and never finished, oldest first, with their notes.
QList<std::pair<QString, PendingRewrite>> unfinishedRewrites();

} // namespace tl::links
