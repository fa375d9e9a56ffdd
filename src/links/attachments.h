#pragma once

#include <QString>
#include <QStringList>

// Attachments: files in a book's "TLImages" folder that documents embed as
// "TLImages/<name>". They follow their documents on moves, and go to the
// trash once nothing in their book uses them.
namespace tl::links {

// The "TLImages/<name>" references of a text, percent-decoded and with
// HTML entities resolved, without duplicates, in text order.
QStringList tl_setOfEmbeddedPhotos(const QString &text);

// A document's "Embedded Photos" property.
QStringList embeddedPhotosOf(const QString &document);

// After a save: the document's "Embedded Photos" brought up to date from its
// text (sorted, the first image of a formatted document first). An empty
// list is never stored here; a text without attachments removes it.
void updateEmbeddedPhotosAfterSave(const QString &document, const QString &text,
                                   bool formattedView);

// After the document moved from `from` to `to` into another folder: its
// attachments are copied to the new book (an equal file there is kept, a
// different one makes the copy take a free name and the link follow), then
// the old book is cleaned.
void tl_copyEmbeddedPhotosToPath(const QString &from, const QString &to);

// Moves to the trash the attachments of the book that no document of the
// book uses, when that is certain. Answers the attachments trashed. One
// clean-up runs at a time per book; a second asked meanwhile does nothing.
// A dry run only answers what would go.
QStringList tl_cleanupImagesFolder(const QString &book, bool dryRun = false);

} // namespace tl::links
