#pragma once

#include <QString>

// Per-machine folders of the current library, keyed by ROOTKEY.
namespace tl::store {

// application support / bundle identifier / ROOTKEY
QString applicationSupportRootFolder();
// caches / bundle identifier / ROOTKEY: the thumbnails
QString cachesRootFolder();
// The per-library state of the windows: application support ROOTKEY folder.
QString appStatePath();

} // namespace tl::store
