#pragma once

// Names the contexts keep: files of the two tag stores, their keys and the
// settings they read, spelt as they are stored.
namespace tl::contexts::keys {

// In the per-library support folder.
inline constexpr char TagDBFile[] = "TagDB.plist";
inline constexpr char InfoFile[] = "Info.plist";
inline constexpr char OldAvailableTagsFile[] = "AvailableTags.plist";
// Below the library root.
inline constexpr char AvailableTagsFile[] = "TLResources/Misc/AvailableTags.txt";
inline constexpr char ExcludedTagsFile[] = "TLResources/Misc/ExcludedTags.txt";

// Keys of Info.plist.
inline constexpr char TLRoot[] = "TLRoot";
inline constexpr char AutocollectDate[] = "autocollectDate";
inline constexpr char AutocollectDateBacklinks[] = "autocollectDateBacklinks";

// Settings.
inline constexpr char ContextsEnabled[] = "contextsEnabled";
inline constexpr char ExtractContextsAutomatically[] = "extractContextsAutomatically";
inline constexpr char ContextMarkers[] = "contextMarkers";
inline constexpr char HideDoneTasks[] = "hideDoneTasks";
inline constexpr char DefaultMarkers[] = "@#";

// The hidden tag of favourites.
inline constexpr char FavoriteTag[] = "_TLFAV";
// The done notation of TaskPaper, which is no context.
inline constexpr char DoneWord[] = "@done";

} // namespace tl::contexts::keys
