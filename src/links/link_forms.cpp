#include "links/link_forms.h"

#include "foundation/path_string.h"
#include "store/item_path.h"

namespace tl::links {

namespace {
QString encodedRootPath(const QString &path)
{
    return store::percentEncodedForPath(store::tl_normalizedPath(path));
}
} // namespace

QString tl_copyURLToPastboardText(const QString &path, const QString &anchor)
{
    return store::tl_pathByAppendingAnchor(QStringLiteral("tavelle://show") + encodedRootPath(path),
                                           anchor);
}

QString tl_copyMarkdownLinkText(const QString &path)
{
    return QStringLiteral("[%1](tavelle://%2)")
        .arg(path::deletingExtension(path::lastComponent(path)), encodedRootPath(path));
}

} // namespace tl::links
