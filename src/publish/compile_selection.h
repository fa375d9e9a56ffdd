#pragma once

#include <QString>
#include <QStringList>

// What a compile takes from a selection, and in which order and kind.
namespace tl::publish {

// The selection expanded, less what cannot be compiled: only text
// documents, images, formatted documents and mail messages.
QStringList compilableDocuments(const QStringList &selection);
// The title the sheet proposes: the given one, the first item's name, or
// "Compiled documents".
QString proposedCompileTitle(const QString &given, const QStringList &selection);
// The sheet's separator choice: 2 a page break, 1 a rule, else nothing.
QString separatorForChoice(int index);

// A cover image lying directly in the base folder moves to the front,
// "Cover.png" before "Cover.jpg".
QStringList withCoverFirst(const QStringList &documents, const QString &baseFolder);
// "html" when auto format is off or any document is formatted or a mail;
// else "md" when any is Markdown; else "txt".
QString outputExtension(const QStringList &documents, bool autoFormat);
// The attachments of the text documents appended once each.
QStringList withEmbeddedPhotos(const QStringList &documents);
// Text, image, formatted, mail and web link documents.
bool isAcceptedForCompiling(const QString &path);

bool hasTextExtension(const QString &path);
bool hasImageExtension(const QString &path);

} // namespace tl::publish
