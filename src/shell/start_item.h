#pragma once

#include <QString>

// What a start shows when there is no last document to bring back.
namespace tl::shell {

// The root when it holds documents of its own; otherwise the newest recent
// document (the welcome document of a new library), or else the first book
// by name, so the first window never opens on an empty list.
QString startItemPath();
// Posts the event that shows it: a document with its book, or a book.
void showStartItem();

} // namespace tl::shell
