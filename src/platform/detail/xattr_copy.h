#pragma once

#include <QByteArray>

namespace tl::platform::detail {

// Copies every user attribute of the item at from onto the item at to, neither
// followed if a symbolic link. With tolerateUnsupported, a destination whose
// file system takes no user attributes is logged and accepted (copies to such
// volumes would otherwise be impossible).
bool copyUserAttributes(const QByteArray &from, const QByteArray &to, bool tolerateUnsupported);

} // namespace tl::platform::detail
