#pragma once

#include <QVariantMap>

// AppState.txt: the per-machine state of the current library's windows.
namespace tl::shell {

inline constexpr char kExpandedPaths[] = "expandedPaths";
inline constexpr char kDocumentsToOpenOnStartup[] = "documentsToOpenOnStartup";

// An unreadable file counts as empty.
QVariantMap readAppState();
bool writeAppState(const QVariantMap &state);

} // namespace tl::shell
