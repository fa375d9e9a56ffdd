#pragma once

// Settings and file names the link machinery reads, defined once.
namespace tl::keys::setting {
inline constexpr char WikiSmartResolveTitles[] = "WikiSmartResolveTitles";
inline constexpr char WikiSmartResolveGlobally[] = "WikiSmartResolveGlobally";
inline constexpr char WikiSmartResolveContents[] = "WikiSmartResolveContents";
inline constexpr char FormatFirstLineAsTitle[] = "formatFirstLineAsTitle";
inline constexpr char CleanUpAttachments[] = "cleanUpAttachments";
} // namespace tl::keys::setting

namespace tl::keys::info {
// In the per-library Info.plist of the support folder.
inline constexpr char AutocollectDateBacklinks[] = "autocollectDateBacklinks";
inline constexpr char NumberOfDocumentsWithBacklinks[] = "numberOfDocumentsWithBacklinks";
} // namespace tl::keys::info
