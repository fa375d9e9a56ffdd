#pragma once

#include <QString>
#include <QStringList>

// Renaming and deleting a context everywhere: in the items that bear it, the
// index, the list, and when the user agrees in the text of the documents.
namespace tl::contexts {

// Renames the tag in items, index and list (an empty new name deletes it)
// and answers the text documents among its items.
QStringList renameTagInStores(const QString &tag, const QString &newName);
// The same, and unless silent, asks whether the text of those documents
// should change too, and changes it when the user agrees.
void tl_renameTagTo(const QString &tag, const QString &newName, bool renameSilently = false);
// The documents' text: every standing word of the tag becomes the new name
// (or goes), as literal text. Answers how many documents were rewritten.
int renameTagInDocuments(const QStringList &documents, const QString &tag, const QString &newName);
// One text: ".html" documents only after the body's start tag.
QString tl_renameTagInText(const QString &text, const QString &tag, const QString &newName,
                           bool html);

// Adds the tag to ExcludedTags.txt and deletes it everywhere, silently.
void tl_excludeTag(const QString &tag);

} // namespace tl::contexts
