#pragma once

#include <QString>
#include <QStringList>

// The recent items of a library: root-relative paths, newest first, in
// TLResources/Misc/RecentItems.txt.
namespace tl::store {

QString recentItemsPath();
QStringList recentItems();
void tl_addToRecentItems(const QString &path);

} // namespace tl::store

namespace tl::store::TLStaticFunctions {

// The list less entries that are gone (written back when any were), cut to
// the menu's shape: the first 9 + n x 10 entries and the oldest.
QStringList verifiedListOfRecentItems();
// Posts the event that shows the newest recent document not already open
// in a window of its own.
void showMostRecentDocument();
void showRecentDocumentAtIndex(qsizetype index);

} // namespace tl::store::TLStaticFunctions
