#include "importers/mime_pasteboard.h"

#include "foundation/path_string.h"

#include <QMimeData>
#include <QStringDecoder>
#include <QUrl>

namespace tl::importers {

namespace {

namespace T = pasteboard_type;

struct FormatRow
{
    const char *mimeType;
    const char *type;
};

// Formats whose bytes go over as they are (texts made UTF-8 first).
constexpr FormatRow kFormats[] = {
    {"text/html", T::HTML},
    {"text/plain", T::PlainText},
    {"text/plain;charset=utf-8", T::PlainText},
    {"image/png", T::PNG},
    {"image/jpeg", T::JPEG},
    {"image/tiff", T::TIFF},
    {"text/rtf", T::RTF},
    {"application/rtf", T::RTF},
};

const char kURIList[] = "text/uri-list";
const char kMozURL[] = "text/x-moz-url";

// Browsers hand texts over in UTF-16, with or without a byte-order mark;
// everything else is taken as UTF-8.
QString decodedText(const QByteArray &bytes)
{
    std::optional<QStringConverter::Encoding> encoding = QStringConverter::encodingForData(bytes);
    if (!encoding && bytes.size() >= 2 && bytes.size() % 2 == 0 && bytes.at(1) == '\0')
        encoding = QStringConverter::Utf16LE;
    if (!encoding)
        return QString::fromUtf8(bytes);
    QStringDecoder decoder(*encoding, QStringDecoder::Flag::Stateless);
    return decoder(bytes);
}

bool isText(const char *mimeType)
{
    return qstrncmp(mimeType, "text/", 5) == 0 && qstrcmp(mimeType, "text/rtf") != 0;
}

// Addresses of a URI list: the first file as the file's address (its name
// naming the material), the first web address as the page's.
void addAddresses(Pasteboard &pasteboard, const QByteArray &list)
{
    for (const QString &line : decodedText(list).split(u'\n')) {
        const QString entry = line.trimmed();
        if (entry.isEmpty() || entry.startsWith(u'#'))
            continue;
        const QUrl url(entry);
        if (url.isLocalFile()) {
            if (!pasteboard.hasType(QLatin1String(T::FileURL)))
                pasteboard.setName(path::lastComponent(url.toLocalFile()));
            pasteboard.add(QLatin1String(T::FileURL), url.toEncoded());
        } else if (!url.scheme().isEmpty()) {
            pasteboard.add(QLatin1String(T::URL), url.toEncoded());
        }
    }
}

// "address\ntitle": the title names the material.
void addMozillaLink(Pasteboard &pasteboard, const QByteArray &link)
{
    const QStringList lines = decodedText(link).split(u'\n');
    const QString address = lines.value(0).trimmed();
    const QString title = lines.value(1).trimmed();
    if (!address.isEmpty())
        pasteboard.add(QLatin1String(T::URL), address.toUtf8());
    if (!title.isEmpty())
        pasteboard.setName(title);
}

// "text/plain; charset=UTF-8" as "text/plain;charset=utf-8".
QString normalized(const QString &format)
{
    return format.toLower().remove(u' ');
}

} // namespace

bool offersImportableFormat(const QMimeData &data)
{
    for (const QString &format : data.formats())
        for (const FormatRow &row : kFormats)
            if (normalized(format) == QLatin1String(row.mimeType))
                return true;
    return data.hasUrls() && data.urls().first().isLocalFile();
}

Pasteboard pasteboardFromMimeData(const QMimeData &data)
{
    Pasteboard pasteboard;
    for (const QString &format : data.formats()) {
        const QString mimeType = normalized(format);
        if (mimeType == QLatin1String(kURIList)) {
            addAddresses(pasteboard, data.data(format));
            continue;
        }
        if (mimeType == QLatin1String(kMozURL)) {
            addMozillaLink(pasteboard, data.data(format));
            continue;
        }
        for (const FormatRow &row : kFormats) {
            if (mimeType != QLatin1String(row.mimeType))
                continue;
            const QByteArray bytes = data.data(format);
            pasteboard.add(QLatin1String(row.type),
                           isText(row.mimeType) ? decodedText(bytes).toUtf8() : bytes);
        }
    }
    return pasteboard;
}

} // namespace tl::importers
