#pragma once

#include <QString>
#include <QStringList>

// Keeping backlinks right: assigned as documents are shown and saved,
// refreshed over a book, checked for items moved behind the program's back,
// and repaired.
namespace tl::links {

// Assigns the document's backlinks to what it links to (or repairs it first
// when it moved unseen); answers its verified references.
QStringList tl_refreshBacklinksForReferencedDocuments(const QString &document);

struct RefreshReport
{
    int documents = 0;
    int references = 0;
    QString message;
};
// Refreshes every link-bearing document of the book; with `sinceLast` over
// the root only those changed since the last such refresh.
RefreshReport tl_refreshAllBacklinksStartingAtReferenceDate(const QString &book, bool sinceLast);

struct CheckReport
{
    int items = 0;
    int mismatches = 0;
    // "current path ( stored path )" of each mismatch found and not repaired.
    QStringList found;
    QString message;
};
// Finds items whose stored path differs from where they are; with `repair`
// repairs them, with `remove` removes every backlink instead. Not silent,
// mismatches found are offered for repair through an alert.
CheckReport tl_findBrokenBacklinksSilently(const QString &book, bool silently, bool repair,
                                           bool remove);
void tl_repairBrokenBacklink(const QString &item);

// A properties file changed on disk (synchronised, or moved with its item):
// an item that moved unseen is corrected or repaired.
void repairAfterCollection(const QString &item);

// After the document was saved (and renamed from `renamedFrom`, when not
// empty): backlinks of what it links to follow; answers its new references.
QStringList backlinksAfterSave(const QString &document, const QStringList &previousReferences,
                               const QString &renamedFrom);

} // namespace tl::links
