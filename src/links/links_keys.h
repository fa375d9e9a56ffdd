#pragma once

// Settings the link machinery reads, defined once.
namespace tl::keys::setting {
inline constexpr char WikiSmartResolveTitles[] = "WikiSmartResolveTitles";
inline constexpr char WikiSmartResolveGlobally[] = "WikiSmartResolveGlobally";
inline constexpr char WikiSmartResolveContents[] = "WikiSmartResolveContents";
inline constexpr char FormatFirstLineAsTitle[] = "formatFirstLineAsTitle";
inline constexpr char CleanUpAttachments[] = "cleanUpAttachments";
} // namespace tl::keys::setting
