#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

namespace tl::store {

// The one path for changes the user makes to the properties of a selection:
// compared with the first item's stored value (empty counts as none, a value
// starting with "Auto" removes), then set on every item with the events that
// refresh the tree and lists. Answers the first item's earlier value so the
// caller can offer to undo, or nothing when nothing changed.
std::optional<QVariant> updateProperty(const QStringList &paths, const QString &key,
                                       const QVariant &value);

} // namespace tl::store
