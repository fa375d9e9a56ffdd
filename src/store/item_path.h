#pragma once

#include <QString>
#include <QStringList>

// The rules about items, as operations on item path strings. An item is its
// absolute path; a folder is a book, a file (or package folder) a document.
namespace tl::store {

// Case-insensitive plain prefix test against the root, with no separator
// check on purpose: the root is its own child, and so is a sibling whose
// name merely begins with the root's name.
bool tl_itemIsChildOfTavelle(const QString &path);
// The root-relative path of a child of the root ("" for the root itself);
// any other path unchanged.
QString tl_normalizedPath(const QString &path);
QString tl_pathFormattedForDisplay(const QString &path);

// A two-tone label for menus: the parent part in a faint colour, the name
// without extension in the normal one.
struct ContextMenuLabel
{
    QString faintPart;
    QString normalPart;
    int fontSize = 13;
};
ContextMenuLabel tl_pathFormattedForContextMenu(const QString &path, double displayScale);

bool tl_pathIsBook(const QString &path);
bool tl_itemIsTrashed(const QString &path);
bool tl_pathIsDotFile(const QString &path);
bool tl_pathIsFinderIcon(const QString &path);
bool tl_pathIsSystemFile(const QString &path);
bool tl_pathIsTaskPlist(const QString &path);
bool tl_pathIsExcludedFromDisplay(const QString &path);
bool tl_pathIsExcludedFromRecentlyModified(const QString &path);
bool tl_pathIsRecentlyModified(const QString &path);
// Whether the item is there under its name or the name's other canonical
// form (composed or decomposed), as file systems may store either.
bool existsInEitherCanonicalForm(const QString &path);
// Existence by exact name, even on a file system that ignores case.
bool tl_fileExistsAtPathIsDirectory(const QString &path, bool *isDirectory = nullptr);
bool tl_bookIsTasklist(const QString &path);

// Properties file beside a document: Doc.md -> Doc.md.plist.
QString tl_plistPath(const QString &path);
QString tl_iCloudStub(const QString &path);
// Whether the file is the placeholder of one not yet downloaded: the
// hidden ".NAME.icloud" stub, or the "NAME.nextcloud" and "NAME.owncloud"
// virtual files of Nextcloud and ownCloud.
bool tl_pathIsPlaceholderStub(const QString &path);

QString tl_pathAnchor(const QString &path);
QString tl_pathWithoutAnchor(const QString &path);
QString tl_pathByAppendingAnchor(const QString &path, const QString &anchor);

QString tl_pathEscapedForMarkdownLink(const QString &path);
// The receiver is the target, the argument the base folder.
QString tl_makeRelativeToPath(const QString &target, const QString &base);
QString tl_pathFromTavelleURLScheme(const QString &url);
bool tl_isTavelleURLSchemeAction(const QString &url);
QString tl_imagesFolderAtMyPath(const QString &path);
QString tl_stringByEscapingWildcards(const QString &text);

QStringList tl_listOfBooksAtPath(const QString &path);

// Percent-encoding with the RFC 3986 path characters left alone.
QString percentEncodedForPath(const QString &text);
// Strict decoding: nothing for a malformed escape or invalid UTF-8.
std::optional<QString> percentDecoded(const QString &text);

} // namespace tl::store
