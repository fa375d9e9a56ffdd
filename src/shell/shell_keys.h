#pragma once

// Settings of the process's life, defined once.
namespace tl::keys::setting {
inline constexpr char TerminatedGracefully[] = "terminatedGracefully";
inline constexpr char OpenMostRecentDocOnLaunch[] = "openMostRecentDocOnLaunch";
inline constexpr char LastSelectedMainWindowDocument[] = "LastSelectedMainWindowDocument";
inline constexpr char HideBrowserOnLaunch[] = "hideBrowserOnLaunch";
inline constexpr char PreviouslySelectedHomes[] = "previouslySelectedHomes";
inline constexpr char InstalledVersion[] = "installedVersion";
inline constexpr char FirstLaunchDate[] = "TLFLD";
inline constexpr char ICloudAvailable[] = "iCloudAvailable";
inline constexpr char UbiquityContainerIdentifier[] = "UbiquityContainerIdentifier";
inline constexpr char LaunchLocalWebDAVServer[] = "launchLocalWebDAVServer";
inline constexpr char SelectAppearanceManually[] = "selectAppearanceManually";
inline constexpr char OutlineIsCollapsed[] = "outlineIsCollapsed";
inline constexpr char IgnoreDroppedFilesOnLaunch[] = "ignoreDroppedFilesOnLaunch";
inline constexpr char AddDroppedItemsToInbox[] = "addDroppedItemsToInbox";
} // namespace tl::keys::setting
