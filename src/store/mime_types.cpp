#include "store/mime_types.h"

#include "store/extensions.h"

#include <QStringList>

namespace tl::store {

namespace {

struct MimeRow
{
    QStringList extensions;
    const char *mimeType;
};

const QList<MimeRow> &mimeTable()
{
    static const QList<MimeRow> rows{
        {plainTextExtensions(), "text/plain"},
        {{"html", "htm"}, "text/html"},
        {{"pdf"}, "application/pdf"},
        {{"webarchive"}, "application/octet-stream"},
        {{"doc"}, "application/msword"},
        {{"xls"}, "application/vnd.ms-excel"},
        {{"ppt", "pps"}, "application/vnd.ms-powerpoint"},
        {{"docx"}, "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
        {{"xlsx"}, "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
        {{"pptx"}, "application/vnd.openxmlformats-officedocument.presentationml.presentation"},
        {{"ppsx"}, "application/vnd.openxmlformats-officedocument.presentationml.slideshow"},
        {{"gif"}, "image/gif"},
        {{"jpg", "jpeg"}, "image/jpeg"},
        {{"png"}, "image/png"},
        {{"rtf"}, "application/rtf"},
        {{"pages"}, "application/x-iwork-pages-sffpages"},
        {{"numbers"}, "application/x-iwork-numbers-sffnumbers"},
        {{"key"}, "application/x-iwork-keynote-sffkey"},
        {{"zip"}, "application/zip"},
        {{"mp4"}, "video/mp4"},
        {{"mov"}, "video/quicktime"},
        {{"m4v"}, "video/m4v"},
        {audioExtensions(), "audio/mpeg"},
        {{"epub"}, "application/epub+zip"},
    };
    return rows;
}

struct ExtensionRow
{
    QStringList mimeTypes;
    const char *extension;
};

// The forward table read backwards, each type answering its first extension,
// with the platform's identifiers of the Office and audio types beside them.
const QList<ExtensionRow> &extensionTable()
{
    static const QList<ExtensionRow> rows{
        {{"text/plain"}, "txt"},
        {{"text/html"}, "html"},
        {{"application/pdf"}, "pdf"},
        {{"application/octet-stream"}, "webarchive"},
        {{"application/msword"}, "doc"},
        {{"application/vnd.ms-excel"}, "xls"},
        {{"application/vnd.ms-powerpoint"}, "ppt"},
        {{"application/vnd.openxmlformats-officedocument.wordprocessingml.document",
          "org.openxmlformats.wordprocessingml.document"},
         "docx"},
        {{"application/vnd.openxmlformats-officedocument.spreadsheetml.sheet",
          "org.openxmlformats.spreadsheetml.sheet"},
         "xlsx"},
        {{"application/vnd.openxmlformats-officedocument.presentationml.presentation",
          "org.openxmlformats.presentationml.presentation"},
         "pptx"},
        {{"application/vnd.openxmlformats-officedocument.presentationml.slideshow",
          "org.openxmlformats.presentationml.slideshow"},
         "ppsx"},
        {{"image/gif"}, "gif"},
        {{"image/jpeg"}, "jpeg"},
        {{"image/png"}, "png"},
        {{"application/rtf"}, "rtf"},
        {{"application/x-iwork-pages-sffpages"}, "pages"},
        {{"application/x-iwork-numbers-sffnumbers"}, "numbers"},
        {{"application/x-iwork-keynote-sffkey"}, "key"},
        {{"application/zip"}, "zip"},
        {{"video/mp4"}, "mp4"},
        {{"video/quicktime"}, "mov"},
        {{"video/m4v"}, "m4v"},
        {{"com.apple.m4a-audio"}, "m4a"},
        {{"audio/mpeg"}, "mp3"},
        {{"application/epub+zip"}, "epub"},
    };
    return rows;
}

} // namespace

QString tl_mimeTypeForExtension(const QString &extension)
{
    const QString lower = extension.toLower();
    for (const MimeRow &row : mimeTable())
        if (row.extensions.contains(lower))
            return QString::fromLatin1(row.mimeType);
    return QStringLiteral("text/html");
}

QString tl_extensionForMimeType(const QString &mimeType)
{
    for (const ExtensionRow &row : extensionTable())
        if (row.mimeTypes.contains(mimeType))
            return QString::fromLatin1(row.extension);
    return QStringLiteral("txt");
}

} // namespace tl::store
