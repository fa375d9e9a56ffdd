#pragma once

// Setting keys the conversion reads, defined once. Keys the store shares
// (fonts, colours, the converter) stay in store/keys.h.
namespace tl::convert::keys {

inline constexpr char IgnoreCommentsForWordCount[] = "ignoreCommentsForWordCount";
inline constexpr char UseMarkdownStrictly[] = "useMarkdownStrictly";
inline constexpr char UseUnderscoreToEmphasizeMD[] = "useUnderscoreToEmphasizeMD";
inline constexpr char UseMMDCompatibleAnchors[] = "useMMDCompatibleAnchors";
inline constexpr char AddLinksToHeadings[] = "addLinksToHeadings";
inline constexpr char AppendBacklinksToText[] = "appendBacklinksToText";
inline constexpr char ShowCriticMarkup[] = "showCriticMarkup";
inline constexpr char UseSmartyPants[] = "useSmartyPants";
inline constexpr char AvoidDarkThemeForDocuments[] = "avoidDarkThemeForDocuments";
inline constexpr char UseBlackForDarkTheme[] = "useBlackForDarkTheme";
inline constexpr char DefaultStyleSheet[] = "defaultStyleSheet";
inline constexpr char PrintFontSize[] = "printFontSize";
inline constexpr char TextAlignment[] = "TextAlignment";
inline constexpr char HyphenateText[] = "HyphenateText";

} // namespace tl::convert::keys
