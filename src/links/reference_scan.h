#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

// What a document's text refers to: targets of links, images and the
// program's own scheme links, as they stand in the text, with their places.
namespace tl::links {

// One target as it stands in the text. Places are UTF-16 units of the text
// as decoded with the document's encoding.
struct Reference
{
    QString path;
    qsizetype location = 0;
    qsizetype length = 0;

    // The range in its text form, "{location, length}".
    QString rangeText() const;
    bool operator==(const Reference &) const = default;
};

// Every reference of a text, without equal records, sorted by place (stable:
// a target found by two forms at one place keeps the earlier form's record).
QList<Reference> referencesInText(const QString &text);

// The document's references; empty for a file that can't be read.
QStringList tl_arrayOfAllReferencesInDocument(const QString &path);
QList<Reference> tl_arrayOfAllReferencesInDocumentIncludingRanges(const QString &path);

// Normalized paths of the existing items the document refers to, without
// duplicates, in text order.
QStringList tl_verifiedArrayOfReferencedDocuments(const QString &path);
// The same for a text held in memory as the document at `path` would have it.
QStringList verifiedReferencesInText(const QString &text, const QString &path);

// A reference written in the program's scheme as a root path ("/Book/Doc.md"),
// or nothing when it is no scheme link or an action.
std::optional<QString> schemeLinkAsRootPath(const QString &reference);

} // namespace tl::links
