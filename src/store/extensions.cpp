#include "store/extensions.h"

#include "foundation/path_string.h"
#include "store/keys.h"
#include "store/library_root.h"

#include <QFile>

namespace tl::store {

const QStringList &packageExtensions()
{
    static const QStringList list{"numbers", "key",      "rtfd",    "graffle",
                                  "app",     "ooutline", "cardflow"};
    return list;
}

const QStringList &imageExtensions()
{
    static const QStringList list{"gif", "jpg",  "jpeg", "jpe",  "png", "psd",
                                  "bmp", "tiff", "heif", "heic", "dng", "webp"};
    return list;
}

const QStringList &movieExtensions()
{
    // "wav" belongs here on purpose: it plays in the movie view.
    static const QStringList list{"m4v", "mp4", "mov", "wav", "mpg"};
    return list;
}

const QStringList &audioExtensions()
{
    static const QStringList list{"m4a", "mp3", "aiff", "flac"};
    return list;
}

const QStringList &markdownExtensions()
{
    static const QStringList list{"md", "markdown", "text", "mdown", "rmd"};
    return list;
}

const QStringList &plainTextExtensions()
{
    static const QStringList list{
        "txt",  "tex",      "h",     "m",         "pl",   "pm",       "t",     "xml",
        "text", "log",      "rb",    "bat",       "ly",   "java",     "js",    "p",
        "cc",   "el",       "crash", "plist",     "md",   "markdown", "mdown", "rmd",
        "css",  "fountain", "php",   "taskpaper", "ajax", "jquery",   "ips",   "ovpn",
        "bib",  "org",      "sh",    "json",      "py",   "yaml"};
    return list;
}

const QStringList &thumbnailExtensions()
{
    static const QStringList list =
        imageExtensions() + movieExtensions() + QStringList{"pdf", "itmz"};
    return list;
}

const QStringList &knownExtensions()
{
    static const QStringList list{
        "html",   "htm",   "pdf",        "rtf",       "doc",      "docx",    "xls",      "xlsx",
        "ppt",    "pptx",  "webarchive", "pages",     "keynote",  "numbers", "zip",      "txt",
        "tex",    "h",     "m",          "pl",        "pm",       "t",       "xml",      "text",
        "log",    "rb",    "bat",        "ly",        "java",     "js",      "p",        "cc",
        "el",     "crash", "plist",      "md",        "markdown", "mdown",   "rmd",      "gif",
        "jpg",    "jpeg",  "jpe",        "png",       "psd",      "bmp",     "m4v",      "m4a",
        "mp3",    "aiff",  "mp4",        "mov",       "css",      "epub",    "fountain", "eml",
        "webloc", "url",   "php",        "taskpaper", "ajax",     "jquery",  "ips",      "ovpn",
        "bib",    "org",   "sh",         "json",      "csv",      "opml",    "fdx",      "flac",
        "py",     "yaml",  "bike"};
    return list;
}

QSet<QString> customPlaintextExtensions()
{
    const QString root = libraryRoot();
    if (root.isEmpty())
        return {};
    QFile f(root + u'/' + QLatin1String(names::CustomPlainTextExtensionsFile));
    if (!f.open(QIODevice::ReadOnly))
        return {};
    QSet<QString> result;
    QString entry;
    for (const QChar c : QString::fromUtf8(f.readAll()) + u'\n') {
        if (!c.isSpace()) {
            entry += c;
        } else if (!entry.isEmpty()) {
            result.insert(entry);
            entry.clear();
        }
    }
    return result;
}

QString lowerCasedExtension(const QString &path)
{
    return path::extension(path).toLower();
}

} // namespace tl::store
