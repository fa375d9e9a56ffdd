#pragma once

// Settings the outline and the document list read, defined once.
namespace tl::keys::setting {
inline constexpr char ShowFileExtensions[] = "showFileExtensions";
inline constexpr char HideDoneTasks[] = "hideDoneTasks";
inline constexpr char AllTaskLists[] = "allTaskLists";
inline constexpr char ShowInboxAsSmartBook[] = "showInboxAsSmartBook";
inline constexpr char SmartBookAllTaskLists[] = "smartBookAllTaskLists";
inline constexpr char ICloudArrayOfUnresolvedConflicts[] = "iCloudArrayOfUnresolvedConflicts";
inline constexpr char DueTasksSortOrder[] = "dueTasksSortOrder";
inline constexpr char DueTasksSortDescending[] = "dueTasksSortDescending";
inline constexpr char ContextsSortOrder[] = "contextsSortOrder";
inline constexpr char ContextsSortDescending[] = "contextsSortDescending";
inline constexpr char ContextTagSortOrder[] = "contextTagSortOrder";
inline constexpr char ContextTagSortDescending[] = "contextTagSortDescending";
inline constexpr char FavoritesSortOrder[] = "favoritesSortOrder";
inline constexpr char FavoritesSortDescending[] = "favoritesSortDescending";
inline constexpr char HideDocumentWhenChangingBook[] = "hideDocumentWhenChangingBook";
inline constexpr char ShowMarkdownAsPlainText[] = "showMarkdownAsPlainText";
inline constexpr char OpenWebarchivesWithTLKSMethods[] = "openWebarchivesWithTLKSMethods";
inline constexpr char NoAutosaveText[] = "noAutosaveText";
inline constexpr char ShowHTMLHeader[] = "showHTMLHeader";
inline constexpr char SearchAllBooks[] = "searchAllBooks";
inline constexpr char SearchTitle[] = "searchTitle";
inline constexpr char SearchContent[] = "searchContent";
inline constexpr char SearchfieldVisibleInDocList[] = "searchfieldVisibleInDocList";
inline constexpr char RecentSearchTerms[] = "recentSearchTerms";
} // namespace tl::keys::setting
