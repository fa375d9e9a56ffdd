#include "store/item_path.h"

#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "platform/file_ops.h"
#include "platform/settings.h"
#include "store/conflict_copies.h"
#include "store/extensions.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/properties.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>
#include <algorithm>
#include <optional>

namespace tl::store {

namespace {

const QString kSeparatorArrow = QStringLiteral(" ⟩ ");

bool isUrlPathCharacter(char16_t c)
{
    if ((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9'))
        return true;
    return QStringView(u"-._~!$&'()*+,;=:@/").contains(QChar(c));
}

int hexValue(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    return -1;
}

// A URL string with a scheme, as the URL parser would accept it: a scheme
// followed by ":" and only characters allowed somewhere in a URL.
bool parsesAsURLWithScheme(const QString &text)
{
    const qsizetype colon = text.indexOf(u':');
    if (colon <= 0 || !text[0].isLetter() || text[0].unicode() > 127)
        return false;
    for (qsizetype i = 1; i < colon; ++i) {
        const char16_t c = text[i].unicode();
        const bool ok =
            (c < 128 && QChar(c).isLetterOrNumber()) || c == u'+' || c == u'-' || c == u'.';
        if (!ok)
            return false;
    }
    for (const QChar ch : text) {
        const char16_t c = ch.unicode();
        if (!isUrlPathCharacter(c) && !QStringView(u"?#[]%").contains(ch))
            return false;
    }
    return true;
}

// Decodes and encodes again a path with its anchor left as it stands.
QString reEncodedKeepingAnchor(const QString &text)
{
    const QString anchor = tl_pathAnchor(text);
    const QString bare = tl_pathWithoutAnchor(text);
    const QString encoded = percentEncodedForPath(percentDecoded(bare).value_or(bare));
    return anchor.isEmpty() ? encoded : encoded + u'#' + anchor;
}

QString withoutURLScheme(QString text)
{
    text.remove(QStringLiteral("tavelle://show"));
    text.remove(QStringLiteral("tavelle://"));
    return text;
}

} // namespace

QString percentEncodedForPath(const QString &text)
{
    QString result;
    result.reserve(text.size());
    const QByteArray utf8 = text.toUtf8();
    for (const char byte : utf8) {
        const auto c = static_cast<unsigned char>(byte);
        if (c < 128 && isUrlPathCharacter(char16_t(c))) {
            result += QChar(c);
        } else {
            result += u'%';
            result += QString::number(c, 16).toUpper().rightJustified(2, u'0');
        }
    }
    return result;
}

std::optional<QString> percentDecoded(const QString &text)
{
    if (!text.contains(u'%'))
        return text;
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'%') {
            if (i + 2 >= text.size())
                return std::nullopt;
            const int hi = hexValue(text[i + 1].unicode());
            const int lo = hexValue(text[i + 2].unicode());
            if (hi < 0 || lo < 0)
                return std::nullopt;
            bytes.append(char(hi * 16 + lo));
            i += 2;
        } else {
            bytes.append(QString(text[i]).toUtf8());
        }
    }
    const QString decoded = QString::fromUtf8(bytes);
    if (decoded.toUtf8() != bytes)
        return std::nullopt;
    return decoded;
}

bool tl_itemIsChildOfTavelle(const QString &path)
{
    const QString root = libraryRoot();
    return !root.isEmpty() && path.toLower().startsWith(root.toLower());
}

QString tl_normalizedPath(const QString &path)
{
    if (!tl_itemIsChildOfTavelle(path))
        return path;
    return path.mid(libraryRoot().size());
}

QString tl_pathFormattedForDisplay(const QString &path)
{
    QString p = path.startsWith(u'/') ? path.mid(1) : path;
    return p.replace(QStringLiteral("/"), kSeparatorArrow);
}

ContextMenuLabel tl_pathFormattedForContextMenu(const QString &path, double displayScale)
{
    ContextMenuLabel label;
    label.faintPart =
        path::deletingLastComponent(path).replace(QStringLiteral("/"), kSeparatorArrow) +
        kSeparatorArrow;
    label.normalPart = path::deletingExtension(path::lastComponent(path));
    label.fontSize = displayScale >= 2 ? 12 : 13;
    return label;
}

bool tl_pathIsBook(const QString &path)
{
    return !path.isEmpty() && QFileInfo(path).isDir();
}

bool tl_itemIsTrashed(const QString &path)
{
    return path.contains(u".Trash") || path.contains(u".TLTrash");
}

bool tl_pathIsDotFile(const QString &path)
{
    const QString name = path::lastComponent(path);
    if (name.startsWith(u".."))
        return false;
    if (path.contains(u"/."))
        return true;
    if (name.startsWith(u'.'))
        return true;
    return path.endsWith(u'~');
}

bool tl_pathIsFinderIcon(const QString &path)
{
    const QString name = path::lastComponent(path);
    return path::extension(path).isEmpty() && name.startsWith(u"Icon") && name.size() == 5;
}

bool tl_pathIsSystemFile(const QString &path)
{
    return path.endsWith(QLatin1String(names::TasklistDetails)) ||
           path.endsWith(QLatin1String(names::BookProperties)) ||
           path.endsWith(QLatin1String(names::TasklistDetailsInactive));
}

bool tl_pathIsTaskPlist(const QString &path)
{
    return path.endsWith(QLatin1String(names::TasklistDetails)) ||
           path.endsWith(QLatin1String(names::TasklistDetailsInactive));
}

bool tl_pathIsExcludedFromDisplay(const QString &path)
{
    const QString name = path::lastComponent(path);
    return path.endsWith(u".plist") || path.endsWith(QLatin1String(names::Sidecar)) ||
           tl_pathIsDotFile(path) || tl_pathIsFinderIcon(path) || tl_pathIsPlaceholderStub(path) ||
           tl_pathIsConflictCopy(path) || name.contains(QLatin1String(names::NewNoteTmp)) ||
           // Never fires (a component holds no slash); .git is caught as a dot file.
           name.contains(u"/.git") ||
           (path.contains(QLatin1String(names::TLResources)) && !path.contains(u"CSS")) ||
           path.endsWith(QLatin1String(names::TLImages));
}

bool tl_pathIsExcludedFromRecentlyModified(const QString &path)
{
    if (path.endsWith(u".plist"))
        return true;
    const QString root = libraryRoot();
    const QString resources = root + u'/' + QLatin1String(names::TLResources);
    if (!root.isEmpty() && path.startsWith(resources) &&
        !path.startsWith(resources + QStringLiteral("/CSS")))
        return true;
    static const QStringList suffixes{QLatin1String(names::RecentItemsFile), "autosave",
                                      QLatin1String(names::DropboxLog), ".DS_Store"};
    return std::any_of(suffixes.begin(), suffixes.end(),
                       [&](const QString &s) { return path.endsWith(s); }) ||
           tl_pathIsPlaceholderStub(path) || path.contains(u"/.git");
}

bool tl_pathIsRecentlyModified(const QString &path)
{
    const qint64 days = platform::settings().integer(keys::setting::RecentlyModifiedSince) * 7 + 7;
    if (days < 1)
        return false;
    const QDateTime threshold = clock().now().addSecs(-days * 86400);
    if (tl_pathIsExcludedFromRecentlyModified(path))
        return false;
    const QFileInfo info(path);
    if (!info.exists() || info.isDir())
        return false;
    return info.lastModified() >= threshold;
}

namespace {

// The path as given or in its other canonical form, whichever is there; a
// link counts even when what it points to is gone.
std::optional<QFileInfo> existingCanonicalForm(const QString &path)
{
    if (path.isEmpty())
        return std::nullopt;
    for (const QString &candidate : {path, precomposed(path), decomposed(path)}) {
        QFileInfo info(candidate);
        if (info.exists() || info.isSymLink())
            return info;
    }
    return std::nullopt;
}

} // namespace

bool existsInEitherCanonicalForm(const QString &path)
{
    return existingCanonicalForm(path).has_value();
}

bool tl_fileExistsAtPathIsDirectory(const QString &path, bool *isDirectory)
{
    if (!path.isEmpty() && path == libraryRoot()) {
        if (isDirectory)
            *isDirectory = true;
        return true;
    }
    const QString name = path::lastComponent(path);
    const QString parentPath = path::deletingLastComponent(path);
    // A folder that compares names exactly answers for the name itself and its
    // other canonical form, so the listing is read only where it must decide:
    // a folder that may ignore case, or a name mixing both forms.
    std::optional<bool> exactAnswer;
    if (const std::optional<QFileInfo> info = existingCanonicalForm(path))
        exactAnswer = info->isDir();
    const bool ascii =
        std::all_of(name.cbegin(), name.cend(), [](QChar c) { return c.unicode() < 0x80; });
    if (exactAnswer ? !platform::folderMayIgnoreCase(parentPath) : ascii) {
        if (exactAnswer && isDirectory)
            *isDirectory = *exactAnswer;
        return exactAnswer.has_value();
    }
    const QDir parent(parentPath);
    const QStringList entries =
        parent.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        if (localizedCompare(entry, name) == 0) {
            if (isDirectory)
                *isDirectory = QFileInfo(parent.filePath(entry)).isDir();
            return true;
        }
    }
    return false;
}

bool tl_bookIsTasklist(const QString &path)
{
    return QFileInfo::exists(path::appendingComponent(path, QLatin1String(names::TasklistDetails)));
}

QString tl_plistPath(const QString &path)
{
    return path::appendingExtension(path, "plist");
}

QString tl_iCloudStub(const QString &path)
{
    return path::deletingLastComponent(path) +
           QStringLiteral("/.%1.%2").arg(path::lastComponent(path), QStringLiteral("icloud"));
}

bool tl_pathIsPlaceholderStub(const QString &path)
{
    return path.endsWith(u".icloud") || path.endsWith(u".nextcloud") || path.endsWith(u".owncloud");
}

QString tl_pathAnchor(const QString &path)
{
    if (knownExtensions().contains(lowerCasedExtension(path)))
        return {};
    const QString name = path::lastComponent(path);
    const qsizetype hash = name.lastIndexOf(u'#');
    return hash < 0 ? QString() : name.mid(hash + 1);
}

QString tl_pathWithoutAnchor(const QString &path)
{
    if (knownExtensions().contains(lowerCasedExtension(path)))
        return path;
    const QString name = path::lastComponent(path);
    const qsizetype hash = name.lastIndexOf(u'#');
    if (hash < 0)
        return path;
    return path::appendingComponent(path::deletingLastComponent(path), name.left(hash));
}

QString tl_pathByAppendingAnchor(const QString &path, const QString &anchor)
{
    return anchor.isEmpty() ? path : path + u'#' + anchor;
}

QString tl_pathEscapedForMarkdownLink(const QString &path)
{
    static const QString filePrefix = QStringLiteral("file://");
    QString result;
    if (path.startsWith(filePrefix)) {
        result = filePrefix + reEncodedKeepingAnchor(path.mid(filePrefix.size()));
    } else if (path.startsWith(u"http") || parsesAsURLWithScheme(path)) {
        result = path;
    } else if (!tl_pathAnchor(path).isEmpty()) {
        result = reEncodedKeepingAnchor(path);
    } else {
        result = percentEncodedForPath(percentDecoded(path).value_or(path));
    }
    result.replace(QStringLiteral("("), QStringLiteral("%28"));
    result.replace(QStringLiteral(")"), QStringLiteral("%29"));
    return result;
}

QString tl_makeRelativeToPath(const QString &targetPath, const QString &basePath)
{
    const QString root = libraryRoot();
    const QString base = tl_normalizedPath(basePath);
    QString target = path::appendingComponent(QStringLiteral("/"),
                                              tl_normalizedPath(withoutURLScheme(targetPath)));

    const QString decodedTarget = percentDecoded(target).value_or(target);
    const bool encoded = decodedTarget != target && !QFileInfo::exists(root + target) &&
                         QFileInfo::exists(root + decodedTarget);
    if (encoded)
        target = decodedTarget;

    QStringList targetParts = path::components(target);
    QStringList baseParts = path::components(base);
    if (baseParts.isEmpty())
        baseParts << QStringLiteral("/");

    while (!targetParts.isEmpty() && !baseParts.isEmpty()) {
        const QString &t = targetParts.first();
        const QString &b = baseParts.first();
        const bool same =
            localizedCompare(t, b) == 0 || localizedCompare(percentDecoded(t).value_or(t), b) == 0;
        if (!same)
            break;
        targetParts.removeFirst();
        baseParts.removeFirst();
    }

    QString result = QStringLiteral("../").repeated(baseParts.size()) + targetParts.join(u'/');
    if (encoded)
        result = percentEncodedForPath(result);
    return result.isEmpty() ? QStringLiteral("./") : result;
}

QString tl_pathFromTavelleURLScheme(const QString &url)
{
    return path::appendingComponent(QStringLiteral("/"), withoutURLScheme(url));
}

bool tl_isTavelleURLSchemeAction(const QString &url)
{
    static const QString scheme = QStringLiteral("tavelle://");
    static const QStringList actions{"grab",         "addnote",     "append",
                                     "addnewdoc",    "addnewtask",  "search",
                                     "wifi_sharing", "webdav_sync", "addnewsketch"};
    const QString lower = url.toLower();
    if (!lower.startsWith(scheme))
        return false;
    const QString rest = lower.mid(scheme.size());
    return std::any_of(actions.begin(), actions.end(),
                       [&](const QString &a) { return rest.startsWith(a); });
}

QString tl_imagesFolderAtMyPath(const QString &path)
{
    const QString folder =
        path::appendingComponent(path::deletingLastComponent(path), QLatin1String(names::TLImages));
    QDir().mkpath(folder);
    return folder;
}

QString tl_stringByEscapingWildcards(const QString &text)
{
    QString result;
    result.reserve(text.size() * 2);
    for (const QChar c : text) {
        if (!c.isLetter())
            result += u'\\';
        result += c;
    }
    return result;
}

QStringList tl_listOfBooksAtPath(const QString &folder)
{
    const QStringList entries = QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
    QStringList books;
    for (const QString &name : entries) {
        if (tl_pathIsExcludedFromDisplay(name))
            continue;
        const QString full = path::appendingComponent(folder, name);
        const QFileInfo info(full);
        // A dangling link stays in the list: the file system reports it missing.
        if (!info.isDir() && info.exists())
            continue;
        if (tl_isProtected(full)) {
            logLine(QStringLiteral("skipping protected item"));
            continue;
        }
        books << full;
    }
    std::stable_sort(books.begin(), books.end(), [](const QString &a, const QString &b) {
        return localizedStandardCompare(a, b) < 0;
    });
    return books;
}

} // namespace tl::store
