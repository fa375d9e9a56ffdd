#pragma once

// Property keys, setting keys and reserved names of the library, defined once.
namespace tl::keys {

// Keys of an item's properties file.
namespace property {
inline constexpr char CreationDate[] = "CreationDate";
inline constexpr char Tags[] = "Tags";
inline constexpr char CellColor[] = "cellColor";
inline constexpr char Description[] = "Description";
inline constexpr char TextColor[] = "TextColor";
inline constexpr char BackgroundColor[] = "BackgroundColor";
inline constexpr char BackgroundImage[] = "BackgroundImage";
inline constexpr char NotesFontName[] = "notesFontName";
inline constexpr char NoteFontSize[] = "noteFontSize";
inline constexpr char LineSpacing[] = "lineSpacing";
inline constexpr char TextAlignment[] = "TextAlignment";
inline constexpr char HyphenateText[] = "HyphenateText";
inline constexpr char MarkdownConverter[] = "MarkdownConverter";
inline constexpr char CSS[] = "CSS";
inline constexpr char ShowPreviewForNotes[] = "showPreviewForNotes";
inline constexpr char ReadOnly[] = "R/O";
inline constexpr char TOC[] = "TOC";
inline constexpr char URL[] = "URL";
inline constexpr char OCR[] = "OCR";
inline constexpr char EmbeddedPhotos[] = "Embedded Photos";
inline constexpr char Backlinks[] = "Backlinks";
inline constexpr char ReferencedPath[] = "ReferencedPath";
inline constexpr char Markdown[] = "Markdown";
inline constexpr char CharacterOffset[] = "CharacterOffset";
inline constexpr char CurrentPDFPage[] = "CurrentPDFPage";
inline constexpr char Offset[] = "Offset";
inline constexpr char SortOrderForNotes[] = "sortOrderForNotes";
inline constexpr char SortNotesDescending[] = "sortNotesDescending";
inline constexpr char Books[] = "Books";
inline constexpr char Notes[] = "Notes";
inline constexpr char Pinned[] = "Pinned";
inline constexpr char Mail[] = "Mail";
inline constexpr char Print[] = "Print";
inline constexpr char PDFBookmarks[] = "PDFBookmarks";
inline constexpr char CurrentTaskCount[] = "CurrentTaskCount";
inline constexpr char IsProtected[] = "isProtected";
inline constexpr char PrivateProperties[] = "PrivateProperties";
// The tag that marks a favorite.
inline constexpr char FavoriteTag[] = "_TLFAV";
} // namespace property

// Keys of the settings store used below the shell.
namespace setting {
inline constexpr char TavelleFolder[] = "TavelleFolder";
inline constexpr char RecentlyModifiedSince[] = "recentlyModifiedSince";
inline constexpr char ProtectionEnabled[] = "protectionEnabled";
inline constexpr char HideSystemFiles[] = "hideSystemFiles";
inline constexpr char AlwaysSaveCreationDate[] = "alwaysSaveCreationDate";
inline constexpr char ICloudSyncProgress[] = "iCloudSyncProgress";
inline constexpr char UbiquityContainerPath[] = "UbiquityContainerPath";
inline constexpr char NotesFontName[] = "notesFontName";
inline constexpr char NoteFontSize[] = "noteFontSize";
inline constexpr char LineSpacing[] = "lineSpacing";
inline constexpr char MarkdownConverter[] = "MarkdownConverter";
inline constexpr char ShowPreviewForNotes[] = "showPreviewForNotes";
inline constexpr char TextColor[] = "TextColor";
inline constexpr char BackgroundColor[] = "BackgroundColor";
inline constexpr char BackgroundImage[] = "BackgroundImage";
inline constexpr char UseSolarizedTheme[] = "useSolarizedTheme";
inline constexpr char DarkTheme[] = "darkTheme";
inline constexpr char UseNumericOrder[] = "useNumericOrder";
inline constexpr char ManualSortNewAtTop[] = "manualSortNewAtTop";
// Settings that follow the library in Settings.txt.
inline constexpr char DefaultInbox[] = "defaultInbox";
inline constexpr char ManageLinks[] = "manageLinks";
inline constexpr char ContextsEnabled[] = "contextsEnabled";
inline constexpr char ExtractContextsAutomatically[] = "extractContextsAutomatically";
inline constexpr char ContextMarkers[] = "contextMarkers";
// "txt", "md", or unset for formatted documents.
inline constexpr char DefaultDocumentType[] = "DefaultDocumentType";
} // namespace setting

} // namespace tl::keys

// Reserved file and folder names of a library.
namespace tl::names {
inline constexpr char TLResources[] = "TLResources";
inline constexpr char TLImages[] = "TLImages";
inline constexpr char BookProperties[] = "BookProperties.plist";
inline constexpr char TasklistDetails[] = "TLTasklistDetails.plist";
inline constexpr char TasklistDetailsInactive[] = "TLTasklistDetails_inactive.plist";
inline constexpr char MacLog[] = "TLMacLog.txt";
inline constexpr char DropboxLog[] = "Dropbox Log.txt";
inline constexpr char NewNoteTmp[] = "__NewNoteTmp";
inline constexpr char Sidecar[] = ".__sidecar";
// Paths below the library root.
inline constexpr char SettingsFile[] = "TLResources/Misc/Settings.txt";
inline constexpr char RecentItemsFile[] = "TLResources/Misc/RecentItems.txt";
inline constexpr char CustomPlainTextExtensionsFile[] =
    "TLResources/Misc/CustomPlainTextExtensions.txt";
} // namespace tl::names
