#pragma once

#include <QString>
#include <functional>

// A depth-first walk below a folder, in no set order. The visitor sees every
// entry (hidden ones too) and answers whether to enter it when it is a
// folder; packages are never entered.
namespace tl::links {

struct WalkEntry
{
    QString path;
    bool isFolder = false;
};

void walkTree(const QString &top, const std::function<bool(const WalkEntry &)> &visit);

// What the walks over a moved or checked book pass by: the trash, items
// hidden from display, logs and sync reports, and the program's resources.
bool isSkippedByLinkWalks(const QString &path);

// Whether a lower-cased extension marks a package folder that walks skip.
bool isPackageExtension(const QString &lowerCasedExtension);

} // namespace tl::links
