#pragma once

#include <QString>
#include <functional>

// The settings and editor state the rules read. Read once per gesture from
// the settings store; tests fill them in directly.
namespace tl::editing {

struct EditorSettings
{
    bool autoIndentLists = true;         // AutoIndentLists
    bool insertClosingCharacters = true; // insertClosingCharacters
    bool indentWithTabs = false;         // IndentWithTabs
    bool underscoreEmphasis = false;     // useUnderscoreToEmphasizeMD
    bool sortCaseSensitive = false;      // SortLinesCaseSensitive
    bool sortDescending = false;         // SortLinesDescending
    bool numericOrder = false;           // useNumericOrder
    bool contextsEnabled = false;        // contextsEnabled
    bool extractContextsAutomatically = false;
    QString contextMarkers = QStringLiteral("@#");

    static EditorSettings fromSettings();
};

// What the keyboard held when the gesture came.
struct KeyState
{
    bool shift = false;
    bool undoing = false;
};

class EditorBuffer;

// Everything a rule needs beside the text: the settings, the keys held and
// the completions Tab tries first (each answers whether it fired; an empty
// one never fires).
struct EditorContext
{
    EditorSettings settings;
    KeyState keys;
    QString libraryRoot; // where dropped file URLs turn into library links
    std::function<bool(EditorBuffer &)> completeWikiPath;
    std::function<bool(EditorBuffer &)> suggestContextTags;
};

inline constexpr char AutoIndentListsKey[] = "AutoIndentLists";
inline constexpr char InsertClosingCharactersKey[] = "insertClosingCharacters";
inline constexpr char IndentWithTabsKey[] = "IndentWithTabs";
inline constexpr char SortLinesCaseSensitiveKey[] = "SortLinesCaseSensitive";
inline constexpr char SortLinesDescendingKey[] = "SortLinesDescending";

} // namespace tl::editing
