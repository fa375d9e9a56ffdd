#pragma once

#include <QString>
#include <QVariant>

// Settings that follow the library from machine to machine, kept in
// TLResources/Misc/Settings.txt below the root.
namespace tl::store::TLStaticFunctions {

QString settingsFilePath();
QVariant tl_locationSpecificSettingForKey(const QString &key);
// An invalid value removes the key.
void tl_setLocationSpecificSetting(const QVariant &value, const QString &key);
// Settings store -> file, written only when the content changed.
void tl_writeLocationSpecificSettings();
// File -> settings store; posts the inbox and context events on change.
void tl_readLocationSpecificSettings();

} // namespace tl::store::TLStaticFunctions
