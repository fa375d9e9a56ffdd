#pragma once

#include <QString>
#include <QVariant>

// Values kept per library on this machine in Info.plist of the support folder.
namespace tl::links {

QVariant libraryInfoValue(const QString &key);
void setLibraryInfoValue(const QString &key, const QVariant &value);

} // namespace tl::links
