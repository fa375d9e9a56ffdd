#include "store/text_conversions.h"

namespace tl::store {

QString tl_markdownToHTML(const QString &, const QString &)
{
    // The text conversion subsystem fills this in.
    return {};
}

QString tl_markdownToLatex(const QString &, const QString &)
{
    // The text conversion subsystem fills this in.
    return {};
}

QString tl_markdownifyHTML(const QString &)
{
    // The text conversion subsystem fills this in.
    return {};
}

QString tl_OPMLToHTML(const QString &)
{
    // The OPML importer fills this in.
    return {};
}

QString tl_duplicateWebArchiveAsFormattedDocument(const QString &)
{
    // The web archive importer fills this in.
    return {};
}

} // namespace tl::store
