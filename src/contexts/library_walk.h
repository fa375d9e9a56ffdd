#pragma once

#include <QString>
#include <QStringView>
#include <atomic>
#include <functional>
#include <sys/stat.h>

namespace tl::contexts {

// Visits the files below the root whose names are wanted, each with its
// status, and does not enter trashes, packages or hidden folders. Folders
// are read by descriptor, so each wanted file costs one fstatat. Stops early
// when `stop` becomes true.
using WantedName = std::function<bool(QStringView name)>;
using FileVisitor = std::function<void(const QString &path, const struct stat &status)>;
void walkLibraryFiles(const QString &root, const WantedName &wanted, const FileVisitor &visit,
                      const std::atomic_bool *stop = nullptr);

// Whether items exist, asked relative to the root with one fstatat each.
class RootProbe
{
public:
    explicit RootProbe(const QString &root);
    ~RootProbe();
    RootProbe(const RootProbe &) = delete;
    RootProbe &operator=(const RootProbe &) = delete;

    // The path as the index keeps it: "/" and the path below the root.
    bool exists(const QString &normalizedPath) const;

private:
    int m_fd = -1;
};

} // namespace tl::contexts
