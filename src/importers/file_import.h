#pragma once

#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <optional>

// Foreign files brought into a book as documents.
namespace tl::importers {

// Whether the file is of a kind that comes in as it is: a mail message
// ("eml") or an outline ("opml"), which the program shows rendered.
bool isImportedWhole(const QString &path);

// The file copied into the book under a free name; the new document's path,
// or nothing (logged) for another kind or a failed copy. Nothing is written
// outside the book.
std::optional<QString> tl_importFileIntoBook(const QString &path, const QString &book);

// Whether the file is of a kind an import takes: the two above and
// Evernote exports ("enex").
bool isImportable(const QString &path);

struct ImportedFile
{
    // The new documents, in order.
    QStringList documents;
    // Whether the whole file came in: false for another kind, a failed
    // copy, or an export cut, malformed or stopped (its notes before kept).
    bool complete = false;
};

// One file into the book: every note of an Evernote export a document, a
// mail message or outline copied whole. `progress` hears each new
// document's file name; once `stop` is set an export ends between notes.
ImportedFile tl_importIntoBook(const QString &path, const QString &book,
                               const std::function<void(const QString &)> &progress = {},
                               const std::atomic_bool *stop = nullptr);

} // namespace tl::importers
