#include "links/tree_walk.h"

#include "foundation/path_string.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"

#include <QDir>
#include <QStringList>

namespace tl::links {

bool isPackageExtension(const QString &extension)
{
    static const QStringList linkPackages{"numbers", "key",      "rtfd",    "graffle",
                                          "app",     "ooutline", "cardflow"};
    return linkPackages.contains(extension) || store::packageExtensions().contains(extension);
}

bool isSkippedByLinkWalks(const QString &path)
{
    const QString name = path::lastComponent(path);
    return name == u".Trash" || name == u".TLTrash" || store::tl_pathIsExcludedFromDisplay(path) ||
           name.startsWith(QStringLiteral("Sync Report")) || name == QLatin1String(names::MacLog) ||
           name == QLatin1String(names::DropboxLog) ||
           path.contains(QLatin1String(names::TLResources));
}

void walkTree(const QString &top, const std::function<bool(const WalkEntry &)> &visit)
{
    QStringList pending{top};
    while (!pending.isEmpty()) {
        const QString folder = pending.takeLast();
        const QFileInfoList entries = QDir(folder).entryInfoList(
            QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
        for (const QFileInfo &info : entries) {
            const QString path = path::appendingComponent(folder, info.fileName());
            const bool isFolder = info.isDir() && !info.isSymLink();
            const bool enter = visit({path, isFolder});
            if (enter && isFolder && !isPackageExtension(info.suffix().toLower()))
                pending.append(path);
        }
    }
}

} // namespace tl::links
