#pragma once

#include <QString>
#include <QStringList>

// Smart books: their numbers (stored in lists and passed in events, so they
// never change), titles, icons, and whether each should be shown now.
namespace tl::browser {

enum SmartBookType : int {
    OrdinaryBook = 0,
    Context = 1,
    SearchResults = 2,
    DueTasks = 3,
    Favorites = 4,
    Inbox = 5,
    AllTaskLists = 6,
    RecentItems = 7,
    RecentlyModified = 8,
    HiddenItems = 9,
    Contexts = 10,
    ICloudConflicts = 11,
};

// The types the smart books group and the collapsed root list offer, in order.
inline constexpr int kFirstListedSmartType = DueTasks;
inline constexpr int kLastListedSmartType = ICloudConflicts;

QString titleForSmartBookOfType(int type);
// The inbox shows an empty-tray icon while it holds nothing.
QString iconForSmartBookOfType(int type, bool isEmpty = false);

// Whether the smart book of the type has a row now: the same test for the
// outline's group and the collapsed list.
bool smartBookShouldExist(int type);

// The default inbox book, absolute; empty when none is set.
QString defaultInboxPath();

} // namespace tl::browser
