#pragma once

// Names of the events the subsystems post on the notification centre, spelt
// exactly as they have always been (typos included: observers match by name).
namespace tl::events {

inline constexpr char FileModifiedOnDisk[] = "TLKSFileModifiedOnDiskNotification";
inline constexpr char HandleFileModificationInstantly[] = "TLKSHandleFileModificationInstantly";
inline constexpr char FileMoved[] = "TLKSFileMovedNotification";
inline constexpr char FileDeletedFromDisk[] = "TLKSFileDeletedFromDiskNotification";
inline constexpr char NewFileCreated[] = "TLKSNewFileCreatedNotification";
inline constexpr char ShowItemAtPath[] = "TLKSShowItemAtPathNotification";
inline constexpr char NewBookSelected[] = "TLKSNewBookSelectedNotification";
inline constexpr char NewDocumentSelected[] = "TLKSNewDocumentSelectedNotification";
inline constexpr char ItemsSelectedInOutlineOrList[] =
    "TLKSItemssSelectedInOutlineOrListNotification";
inline constexpr char ReloadCurrentBook[] = "TLKSReloadCurrentBook";
inline constexpr char ReloadCurrentDocument[] = "TLKSReloadCurrentDocument";
inline constexpr char SaveCurrentDocument[] = "TLKSSaveCurrentDocument";
inline constexpr char NewTavelleRootSelected[] = "TLKSNewTavelleRootSelected";
inline constexpr char UpdateDefaultInbox[] = "TLKSUpdateDefaultInbox";
inline constexpr char UpdateAllTaskLists[] = "TLKSUpdateAllTaskLists";
inline constexpr char ReloadContextSmartBook[] = "TLKSReloadContextSmartBook";
inline constexpr char ReorderContextSmartBook[] = "TLKSReorderContextSmartBook";
inline constexpr char CollectNewContexts[] = "TLKSCollectNewContextsNotification";
inline constexpr char BookViewShouldUpdateFavorites[] = "BookViewShouldUpdateFavoritesNotification";
inline constexpr char UpdateTaskIcon[] = "TLUpdateTaskIconNotification";
inline constexpr char StartSpotlightSearch[] = "TLStartSpotlightSearchNotification";
inline constexpr char ICloudNumberOfUnresolvedConflictsChanged[] =
    "TLiCloudNumberOfUnresolvedConflictsChangededNotification";
inline constexpr char ICloudNumberOfUnsyncedItemsChanged[] =
    "TLiCloudNumberOfUnsyncedItemsChangedNotification";
inline constexpr char OpenItemsInNewWindow[] = "TLKSOpenItemsInNewWindowNotification";
inline constexpr char OpenItemsInNewTab[] = "TLKSOpenItemsInNewTabNotification";
inline constexpr char OpenInfo[] = "TLKSOpenInfoNotification";
// Each report of the library's one file watcher, as the watcher words it
// ("kind", "path", "newPath" for a move): for subsystems that follow changes
// below the root without watching it themselves.
inline constexpr char LibraryItemChanged[] = "TLKSLibraryItemChangedNotification";

} // namespace tl::events
