#include "links/path_lock.h"

#include <QHash>
#include <array>

namespace tl::links {

std::unique_lock<std::mutex> lockPath(const QString &path)
{
    static std::array<std::mutex, 64> stripes;
    return std::unique_lock<std::mutex>(stripes[qHash(path) % stripes.size()]);
}

} // namespace tl::links
