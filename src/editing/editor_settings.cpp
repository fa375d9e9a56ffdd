#include "editor_settings.h"

#include "convert/convert_keys.h"
#include "platform/settings.h"
#include "store/keys.h"

namespace tl::editing {

EditorSettings EditorSettings::fromSettings()
{
    platform::Settings &store = platform::settings();
    EditorSettings s;
    s.autoIndentLists = store.boolValue(AutoIndentListsKey);
    s.insertClosingCharacters = store.boolValue(InsertClosingCharactersKey);
    s.indentWithTabs = store.boolValue(IndentWithTabsKey);
    s.underscoreEmphasis = store.boolValue(convert::keys::UseUnderscoreToEmphasizeMD);
    s.sortCaseSensitive = store.boolValue(SortLinesCaseSensitiveKey);
    s.sortDescending = store.boolValue(SortLinesDescendingKey);
    s.numericOrder = store.boolValue(keys::setting::UseNumericOrder);
    s.contextsEnabled = store.boolValue(keys::setting::ContextsEnabled);
    s.extractContextsAutomatically = store.boolValue(keys::setting::ExtractContextsAutomatically);
    const QString markers = store.string(keys::setting::ContextMarkers);
    if (!markers.isEmpty())
        s.contextMarkers = markers;
    return s;
}

} // namespace tl::editing
