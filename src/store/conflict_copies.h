#pragma once

#include <QString>
#include <functional>

// A sync client may keep versions of a document as files of their own
// beside it. They are versions, not items: no list shows them and no book
// counts them. Which names they take is the sync subsystem's to know; it
// registers the rule at start, and with none registered no file is one.
namespace tl::store {

using ConflictCopyRule = std::function<bool(const QString &path)>;

// Set once at start, before any worker lists a book.
void setConflictCopyRule(ConflictCopyRule rule);
bool tl_pathIsConflictCopy(const QString &path);

} // namespace tl::store
