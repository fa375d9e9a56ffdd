#pragma once

#include <QString>

// Duplicates of a document in another kind, beside it under its stem with
// the new extension, numbered when taken. Each answers the new path, or an
// empty text when nothing was written.
namespace tl::store {

QString tl_duplicateItemAsPlaintext(const QString &path);
QString tl_duplicateItemAsMarkdown(const QString &path);
QString tl_duplicateItemAsFormattedDocument(const QString &path);
QString tl_duplicateItemAsFountain(const QString &path);
QString tl_duplicateAsLatex(const QString &path);

// The general converter, by the platform's document converter, for "txt",
// "html", "rtf", "rtfd", "doc", "docx", "wordml", "odt" and "webarchive";
// empty for any other extension and when the conversion fails.
QString tl_duplicateItemAs(const QString &path, const QString &extension);

} // namespace tl::store
