#include "search/searchable_items.h"

#include "store/conflict_copies.h"
#include "store/extensions.h"
#include "store/keys.h"
#include "store/library_root.h"

#include <QFile>
#include <QThread>
#include <condition_variable>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tl::search {

namespace {

bool startsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

// The library's resources in the file system's encoding: only their style
// sheets are searched.
struct Resources
{
    std::string folder;
    std::string inside;
    std::string styleSheets;
    std::string insideStyleSheets;

    Resources()
    {
        const QString resources = store::libraryRoot() + u'/' + QLatin1String(names::TLResources);
        folder = QFile::encodeName(resources).toStdString();
        inside = folder + '/';
        styleSheets = folder + "/CSS";
        insideStyleSheets = styleSheets + '/';
    }

    bool leftOut(std::string_view path) const
    {
        return startsWith(path, inside) && path != styleSheets &&
               !startsWith(path, insideStyleSheets);
    }
};

// A sync client's copy of a document is a version of it, not an item. Every
// client's copies say so in their names, which most names need not be
// decoded to show.
bool isConflictCopy(std::string_view name, const std::string &path)
{
    return name.find("conflict") != std::string_view::npos &&
           store::tl_pathIsConflictCopy(QFile::decodeName(QByteArray::fromStdString(path)));
}

bool isPackage(std::string_view path)
{
    return store::packageExtensions().contains(store::lowerCasedExtension(
        QFile::decodeName(QByteArray(path.data(), qsizetype(path.size())))));
}

// Lists one folder: each searchable item is visited, each folder to enter
// handed to enter(); plain files to visitFile when there is one.
template <typename Visit, typename Enter>
void listFolder(const std::string &path, const Resources &resources, Visit &&visit, Enter &&enter,
                const std::function<void(const FoundFile &)> &visitFile = {})
{
    DIR *dir = ::opendir(path.c_str());
    if (!dir)
        return;
    const int fd = ::dirfd(dir);
    std::string child = path + '/';
    const size_t base = child.size();
    while (const dirent *entry = ::readdir(dir)) {
        if (entry->d_name[0] == '.')
            continue;
        child.resize(base);
        child += entry->d_name;
        if (resources.leftOut(child) || isConflictCopy(entry->d_name, child))
            continue;
        if (visitFile && entry->d_type == DT_REG && child != resources.folder) {
            visitFile(FoundFile{fd, entry->d_name, child});
            continue;
        }
        struct stat st
        {
        };
        if (::fstatat(fd, entry->d_name, &st, 0) != 0)
            continue;
        const EncodedItemStamp stamp = encodedStamp(child, st);
        if (child == resources.folder) {
            if (stamp.isFolder)
                enter(child);
            continue;
        }
        visit(stamp);
        if (stamp.isFolder && entry->d_type != DT_LNK && !isPackage(child))
            enter(child);
    }
    ::closedir(dir);
}

void walkInOrder(const std::string &folder, const Resources &resources,
                 const std::function<void(const ItemStamp &)> &visit)
{
    listFolder(
        folder, resources, [&](const EncodedItemStamp &item) { visit(item.decoded()); },
        [&](const std::string &child) { walkInOrder(child, resources, visit); });
}

// Folders waiting to be listed, shared by the walkers; the walk is over when
// none waits and no walker is listing.
class FolderQueue
{
public:
    explicit FolderQueue(std::string first) { m_waiting.push_back(std::move(first)); }

    void add(std::string folder)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_waiting.push_back(std::move(folder));
        }
        m_changed.notify_one();
    }

    // The next folder to list, or false when the walk is over.
    bool take(std::string &folder)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_waiting.empty() || m_listing == 0; });
        if (m_waiting.empty())
            return false;
        folder = std::move(m_waiting.back());
        m_waiting.pop_back();
        ++m_listing;
        return true;
    }

    void listed()
    {
        {
            const std::lock_guard lock(m_mutex);
            --m_listing;
        }
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_waiting;
    int m_listing = 0;
};

} // namespace

EncodedItemStamp encodedStamp(std::string_view path, const struct stat &st)
{
    const bool isFolder = S_ISDIR(st.st_mode);
    return EncodedItemStamp{path, qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec,
                            isFolder ? 0 : qint64(st.st_size), isFolder};
}

ItemStamp EncodedItemStamp::decoded() const
{
    return ItemStamp{QFile::decodeName(QByteArray(path.data(), qsizetype(path.size()))), modified,
                     size, isFolder};
}

void forEachSearchableItem(const QString &folder,
                           const std::function<void(const ItemStamp &)> &visit)
{
    walkInOrder(QFile::encodeName(folder).toStdString(), Resources(), visit);
}

void forEachSearchableItemInParallel(const QString &folder,
                                     const std::function<void(const EncodedItemStamp &)> &visit,
                                     const std::function<void(const FoundFile &)> &visitFile)
{
    const Resources resources;
    FolderQueue queue(QFile::encodeName(folder).toStdString());
    const auto walker = [&] {
        std::string path;
        while (queue.take(path)) {
            listFolder(
                path, resources, visit, [&](const std::string &child) { queue.add(child); },
                visitFile);
            queue.listed();
        }
    };
    // Listing waits on the file system as much as on the cores: twice as
    // many walkers as cores keep them busy.
    std::vector<std::thread> walkers;
    for (int i = 1; i < 2 * QThread::idealThreadCount(); ++i)
        walkers.emplace_back(walker);
    walker();
    for (std::thread &thread : walkers)
        thread.join();
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
    return (parts[0] != QLatin1String(names::TLResources) ||
            (parts.size() >= 2 && parts[1] == u"CSS")) &&
           !store::tl_pathIsConflictCopy(path);
}

} // namespace tl::search
