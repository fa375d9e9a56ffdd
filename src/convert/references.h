#pragma once

#include <QString>

// Image and link references on their way into a stored document (relative
// to the library root) and out to a view (absolute, with cache markers).
namespace tl::convert {

// Images that lie in the library lose the root's path.
QString tl_makeReferencesAbsoluteToTLRoot(const QString &html);
// Head references that name library files, and every image, made absolute;
// images get a marker of their file's date so a changed file is reloaded.
QString tl_makeReferencesAbsoluteToSystemRootAtParentPath(const QString &html,
                                                          const QString &folder);
// Every "?TLKS...TLKS" marker goes; every save path calls this.
QString tl_stringByRemovingImageCacheMarkers(const QString &html);
// Images beside the document become absolute file URLs.
QString tl_makeImageLinksAbsoluteWithPath(const QString &html, const QString &folder);
// The document at path as HTML with its images inside it as data.
QString tl_htmlWithInlineImages(const QString &path);

} // namespace tl::convert
