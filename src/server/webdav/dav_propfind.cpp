// PROPFIND: the four properties of a resource and, with Depth 1, of each
// entry of its folder, in the order the file system lists them.
#include "server/core/server_log.h"
#include "server/webdav/dav_files.h"
#include "server/webdav/dav_response.h"
#include "server/webdav/dav_xml.h"

#include <QFile>
#include <dirent.h>

namespace server {

namespace {

// Room for a few hundred entries before the listing has to grow.
constexpr qsizetype kInitialReserve = 128 * 1024;

enum Property : unsigned {
    ResourceType = 1,
    CreationDate = 2,
    LastModified = 4,
    ContentLength = 8,
    AllProperties = 15,
};

// Request elements and the bits they stand for.
const std::pair<const char *, unsigned> kProperties[] = {
    {"resourcetype", ResourceType},
    {"creationdate", CreationDate},
    {"getlastmodified", LastModified},
    {"getcontentlength", ContentLength},
};

unsigned requestedProperties(const QByteArray &body)
{
    const DAVXMLBody xml(body);
    if (!xml.parsed())
        return AllProperties;
    // A request for all properties has no "prop".
    xmlNodePtr prop = childElement(xml.topElement("propfind"), "prop");
    if (!prop) {
        logLine(
            QStringLiteral("HTTP Server: Invalid DAV properties\n%1").arg(QString::fromUtf8(body)));
        return AllProperties;
    }
    unsigned mask = 0;
    for (xmlNodePtr node = prop->children; node; node = node->next) {
        if (node->type != XML_ELEMENT_NODE)
            continue;
        unsigned bit = 0;
        for (const auto &[name, value] : kProperties)
            if (xmlStrcmp(node->name, reinterpret_cast<const xmlChar *>(name)) == 0)
                bit = value;
        if (!bit)
            logLine(QStringLiteral("Unknown DAV property requested \"%1\"").arg(localName(node)));
        mask |= bit;
    }
    return mask ? mask : AllProperties;
}

bool keptInHref(unsigned char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || (byte && std::strchr("-._~!$'()*,/:;=@", byte));
}

// Appends a UTF-8 path percent-escaped for an href: everything but the
// unreserved characters and the path's own delimiters, with "&" and "+"
// escaped too.
void appendEscapedHref(QByteArray &out, const QByteArray &path)
{
    static const char hex[] = "0123456789ABCDEF";
    const qsizetype oldSize = out.size();
    out.resize(oldSize + path.size() * 3);
    char *to = out.data() + oldSize;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (keptInHref(byte)) {
            *to++ = c;
        } else {
            *to++ = '%';
            *to++ = hex[byte >> 4];
            *to++ = hex[byte & 15];
        }
    }
    out.truncate(to - out.constData());
}

const char *const kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char *const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// "yyyy-MM-dd'T'HH:mm:ss'+00:00'" in GMT.
void appendCreationDate(QByteArray &out, time_t date)
{
    struct tm t;
    gmtime_r(&date, &t);
    char text[96];
    const int length = std::snprintf(
        text, sizeof text, "<D:creationdate>%04d-%02d-%02dT%02d:%02d:%02d+00:00</D:creationdate>",
        t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec);
    out.append(text, qsizetype(length));
}

// "EEE', 'd' 'MMM' 'yyyy' 'HH:mm:ss' GMT'" in en_US and GMT.
void appendLastModified(QByteArray &out, time_t date)
{
    struct tm t;
    gmtime_r(&date, &t);
    char text[96];
    const int length =
        std::snprintf(text, sizeof text,
                      "<D:getlastmodified>%s, %d %s %04d %02d:%02d:%02d GMT</D:getlastmodified>",
                      kWeekdays[t.tm_wday], t.tm_mday, kMonths[t.tm_mon], t.tm_year + 1900,
                      t.tm_hour, t.tm_min, t.tm_sec);
    out.append(text, qsizetype(length));
}

void appendResponse(QByteArray &out, const QByteArray &hrefPath, const DAVItemInfo &item,
                    unsigned properties)
{
    // A name that is no UTF-8 cannot be escaped as UTF-8, and is left out.
    if (!hrefPath.isValidUtf8())
        return;
    out += "<D:response><D:href>";
    appendEscapedHref(out, hrefPath);
    out += "</D:href><D:propstat><D:prop>";
    if (properties & ResourceType)
        out += item.isDirectory ? "<D:resourcetype><D:collection/></D:resourcetype>"
                                : "<D:resourcetype/>";
    if ((properties & CreationDate) && item.creationDate)
        appendCreationDate(out, *item.creationDate);
    if (properties & LastModified)
        appendLastModified(out, item.modificationDate);
    if ((properties & ContentLength) && !item.isDirectory) {
        out += "<D:getcontentlength>";
        out += QByteArray::number(quint64(item.size));
        out += "</D:getcontentlength>";
    }
    out += "</D:prop><D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>\n";
}

// One response per entry of the folder; a file has no entries.
void appendEntries(QByteArray &out, const QString &path, QByteArray hrefPath, unsigned properties)
{
    DIR *directory = ::opendir(QFile::encodeName(path).constData());
    if (!directory)
        return;
    if (!hrefPath.endsWith('/'))
        hrefPath += '/';
    const int fd = ::dirfd(directory);
    const qsizetype prefix = hrefPath.size();
    while (const dirent *entry = ::readdir(directory)) {
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0)
            continue;
        const auto item = davItemInfoAt(fd, entry->d_name);
        if (!item)
            continue;
        hrefPath.truncate(prefix);
        hrefPath += entry->d_name;
        appendResponse(out, hrefPath, *item, properties);
    }
    ::closedir(directory);
}

} // namespace

bool DAVResponse::propfind(const DAVRequest &request)
{
    const QString depth = request.header(QStringLiteral("Depth"));
    if (depth != QLatin1String("0") && depth != QLatin1String("1")) {
        logLine(QStringLiteral("Unsupported DAV depth \"%1\"").arg(depth));
        return false;
    }
    const unsigned properties = requestedProperties(request.body);
    const QString path = request.filePath();
    if (!isBelowRoot(path, request.rootPath))
        return false;
    const auto item = davItemInfo(path);
    if (!item)
        return false;

    QByteArray xml =
        "<?xml version=\"1.0\" encoding=\"utf-8\" ?><D:multistatus xmlns:D=\"DAV:\">\n";
    QByteArray hrefPath = QFile::encodeName(request.resourcePath);
    if (!hrefPath.startsWith('/'))
        hrefPath.prepend('/');
    appendResponse(xml, hrefPath, *item, properties);
    if (depth == QLatin1String("1"))
        appendEntries(xml, path, hrefPath, properties);
    xml += "</D:multistatus>";
    setXMLBody(std::move(xml));
    m_status = 207;
    return true;
}

} // namespace server
