#include "browser/outside_moves.h"

#include "foundation/path_string.h"
#include "platform/file_watcher.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"

#include <algorithm>

namespace tl::browser {

namespace {

// Extensions of files that only stand in for another for a while.
constexpr const char *kPassingExtensions[] = {"tmp", "temp", "bak"};

// Hidden names, names of documents being made and the usual temporary and
// backup extensions.
bool isPassingName(const QString &path)
{
    if (store::tl_pathIsDotFile(path) ||
        path::lastComponent(path).contains(QLatin1String(names::NewNoteTmp)))
        return true;
    const QString extension = store::lowerCasedExtension(path);
    return std::any_of(std::begin(kPassingExtensions), std::end(kPassingExtensions),
                       [&extension](const char *e) { return extension == QLatin1String(e); });
}

} // namespace

OutsideMove classifyOutsideMove(const platform::FileWatchReport &report)
{
    // Into and out of the trash are moves of their own.
    if (store::tl_itemIsTrashed(report.path) || store::tl_itemIsTrashed(report.newPath))
        return OutsideMove::Move;
    if (report.sourceIsNew || isPassingName(report.path))
        return OutsideMove::Replacement;
    if (isPassingName(report.newPath))
        return OutsideMove::SetAside;
    return OutsideMove::Move;
}

} // namespace tl::browser
