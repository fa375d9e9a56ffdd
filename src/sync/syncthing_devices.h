#pragma once

#include <QString>

namespace tl::sync {

// The name Syncthing's configuration gives the device whose id begins with
// the short id of a conflict copy; empty when the configuration is not
// readable or names no such device.
QString syncthingDeviceName(const QString &shortId);

} // namespace tl::sync
