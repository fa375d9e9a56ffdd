#include "search/searchable_items.h"

#include "store/extensions.h"
#include "store/keys.h"
#include "store/library_root.h"

#include <QFile>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tl::search {

namespace {

struct Walk
{
    QString resources;
    QString insideResources;
    QString styleSheets;
    QString insideStyleSheets;
    const std::function<void(const ItemStamp &)> &visit;

    void folder(const QString &path)
    {
        DIR *dir = ::opendir(QFile::encodeName(path).constData());
        if (!dir)
            return;
        const int fd = ::dirfd(dir);
        while (const dirent *entry = ::readdir(dir)) {
            if (entry->d_name[0] == '.')
                continue;
            const QString child = path + u'/' + QFile::decodeName(entry->d_name);
            if (child.startsWith(insideResources) && child != styleSheets &&
                !child.startsWith(insideStyleSheets))
                continue;
            struct stat st
            {
            };
            if (::fstatat(fd, entry->d_name, &st, 0) != 0)
                continue;
            const bool isFolder = S_ISDIR(st.st_mode);
            if (child == resources) {
                if (isFolder)
                    this->folder(child);
                continue;
            }
            visit(ItemStamp{child, qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec,
                            isFolder ? 0 : qint64(st.st_size), isFolder});
            if (isFolder && entry->d_type != DT_LNK &&
                !store::packageExtensions().contains(store::lowerCasedExtension(child)))
                this->folder(child);
        }
        ::closedir(dir);
    }
};

} // namespace

void forEachSearchableItem(const QString &folder,
                           const std::function<void(const ItemStamp &)> &visit)
{
    const QString resources = store::libraryRoot() + u'/' + QLatin1String(names::TLResources);
    const QString styleSheets = resources + QStringLiteral("/CSS");
    Walk walk{resources, resources + u'/', styleSheets, styleSheets + u'/', visit};
    walk.folder(folder);
}

bool isSearchableItemPath(const QString &path)
{
    const QString root = store::libraryRoot();
    if (root.isEmpty() || !path.startsWith(root + u'/'))
        return false;
    const QStringList parts = path.mid(root.size() + 1).split(u'/');
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const QString &part = parts[i];
        if (part.isEmpty() || part.startsWith(u'.'))
            return false;
        if (i + 1 < parts.size() &&
            store::packageExtensions().contains(store::lowerCasedExtension(part)))
            return false;
    }
    return parts[0] != QLatin1String(names::TLResources) ||
           (parts.size() >= 2 && parts[1] == u"CSS");
}

} // namespace tl::search
