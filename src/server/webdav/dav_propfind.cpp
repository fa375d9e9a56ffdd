// PROPFIND: the four properties of a resource and, with Depth 1, of each
// entry of its folder, in the order the file system lists them.
#include "server/core/uri_mapping.h"
#include "server/webdav/dav_files.h"
#include "server/webdav/dav_response.h"
#include "server/webdav/dav_xml.h"
#include "store/log.h"

#include <QFile>
#include <array>
#include <charconv>
#include <cstring>
#include <dirent.h>
#include <string_view>
#include <type_traits>

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
        tl::logLine(
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
            tl::logLine(
                QStringLiteral("Unknown DAV property requested \"%1\"").arg(localName(node)));
        mask |= bit;
    }
    return mask ? mask : AllProperties;
}

// The bytes an href keeps as they are: the unreserved characters and the
// path's own delimiters; "&" and "+" are escaped too.
constexpr std::array<bool, 256> kKeptInHref = [] {
    std::array<bool, 256> kept{};
    for (int byte = 0; byte < 256; ++byte)
        kept[byte] = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                     (byte >= '0' && byte <= '9');
    for (const char c : std::string_view("-._~!$'()*,/:;=@"))
        kept[static_cast<unsigned char>(c)] = true;
    return kept;
}();

// Writes into room made beforehand in the listing, so that an entry costs
// one size check rather than one per piece.
class Cursor
{
public:
    explicit Cursor(char *at) : m_at(at) {}
    char *end() const { return m_at; }

    Cursor &operator<<(std::string_view text)
    {
        // An empty view may carry no pointer at all, which memcpy must not see.
        if (!text.empty())
            std::memcpy(m_at, text.data(), text.size());
        m_at += text.size();
        return *this;
    }
    Cursor &operator<<(char c)
    {
        *m_at++ = c;
        return *this;
    }

    // As printf's "%0*lld": zero-padded to width, a minus sign counted in it.
    template <typename Integer> void number(Integer value, int width = 1)
    {
        char digits[24];
        const char *const last = std::to_chars(digits, digits + sizeof digits, value).ptr;
        const char *first = digits;
        if constexpr (std::is_signed_v<Integer>) {
            if (value < 0) {
                *this << *first++;
                --width;
            }
        }
        for (auto pad = width - (last - first); pad > 0; --pad)
            *this << '0';
        *this << std::string_view(first, size_t(last - first));
    }

    // A UTF-8 path percent-escaped for an href; at most three bytes a byte.
    void escapedHref(QByteArrayView path)
    {
        static const char hex[] = "0123456789ABCDEF";
        for (const char c : path) {
            const auto byte = static_cast<unsigned char>(c);
            if (kKeptInHref[byte])
                *this << c;
            else
                *this << '%' << hex[byte >> 4] << hex[byte & 15];
        }
    }

private:
    char *m_at;
};

// A date split into its GMT fields, worked out from the day count rather
// than with gmtime, which takes a lock and is the costliest part of an entry.
struct GMTDate
{
    long long year;
    int month; // 1 to 12
    int day;
    int weekday; // 0 is Sunday
    int hour;
    int minute;
    int second;
};

GMTDate gmtDate(time_t date)
{
    constexpr long long kSecondsPerDay = 86400;
    long long days = date / kSecondsPerDay;
    long long seconds = date % kSecondsPerDay;
    if (seconds < 0) {
        seconds += kSecondsPerDay;
        --days;
    }
    // Civil date from a day count, with March as the first month of a
    // 400-year era so that leap days fall at the end of the year.
    const long long shifted = days + 719468;
    const long long era = (shifted >= 0 ? shifted : shifted - 146096) / 146097;
    const long long dayOfEra = shifted - era * 146097;
    const long long yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const long long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const long long monthFromMarch = (5 * dayOfYear + 2) / 153;
    const int month = int(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
    // 1 January 1970 was a Thursday.
    const int weekday = int(((days + 4) % 7 + 7) % 7);
    return {yearOfEra + era * 400 + (month <= 2),
            month,
            int(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1),
            weekday,
            int(seconds / 3600),
            int(seconds / 60 % 60),
            int(seconds % 60)};
}

void writeTime(Cursor &out, const GMTDate &date)
{
    out.number(date.hour, 2);
    out << ':';
    out.number(date.minute, 2);
    out << ':';
    out.number(date.second, 2);
}

const std::string_view kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const std::string_view kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// "yyyy-MM-dd'T'HH:mm:ss'+00:00'" in GMT.
void writeCreationDate(Cursor &out, time_t date)
{
    const GMTDate gmt = gmtDate(date);
    out << "<D:creationdate>";
    out.number(gmt.year, 4);
    out << '-';
    out.number(gmt.month, 2);
    out << '-';
    out.number(gmt.day, 2);
    out << 'T';
    writeTime(out, gmt);
    out << "+00:00</D:creationdate>";
}

// "EEE', 'd' 'MMM' 'yyyy' 'HH:mm:ss' GMT'" in en_US and GMT.
void writeLastModified(Cursor &out, time_t date)
{
    const GMTDate gmt = gmtDate(date);
    out << "<D:getlastmodified>" << kWeekdays[gmt.weekday] << ", ";
    out.number(gmt.day);
    out << ' ' << kMonths[gmt.month - 1] << ' ';
    out.number(gmt.year, 4);
    out << ' ';
    writeTime(out, gmt);
    out << " GMT</D:getlastmodified>";
}

// Enough for everything in a response but its href.
constexpr qsizetype kMostResponseBytes = 512;

// The href is escapedPrefix, already escaped, followed by name escaped here.
void appendResponse(QByteArray &out, QByteArrayView escapedPrefix, QByteArrayView name,
                    const DAVItemInfo &item, unsigned properties)
{
    // A name that is no UTF-8 cannot be escaped as UTF-8, and is left out.
    if (!name.isValidUtf8())
        return;
    const qsizetype oldSize = out.size();
    out.resize(oldSize + escapedPrefix.size() + name.size() * 3 + kMostResponseBytes);
    Cursor to(out.data() + oldSize);
    to << "<D:response><D:href>"
       << std::string_view(escapedPrefix.data(), size_t(escapedPrefix.size()));
    to.escapedHref(name);
    to << "</D:href><D:propstat><D:prop>";
    if (properties & ResourceType)
        to << (item.isDirectory ? "<D:resourcetype><D:collection/></D:resourcetype>"
                                : "<D:resourcetype/>");
    if ((properties & CreationDate) && item.creationDate)
        writeCreationDate(to, *item.creationDate);
    if (properties & LastModified)
        writeLastModified(to, item.modificationDate);
    if ((properties & ContentLength) && !item.isDirectory) {
        to << "<D:getcontentlength>";
        to.number(item.size);
        to << "</D:getcontentlength>";
    }
    to << "</D:prop><D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>\n";
    out.truncate(to.end() - out.constData());
}

// Whether an entry is a symbolic link that leads out of the library; such a
// link is described as itself, so nothing of what lies outside shows.
bool leadsOutside(int directory, const dirent &entry, const QString &path, const QString &rootPath)
{
    if (entry.d_type != DT_LNK &&
        (entry.d_type != DT_UNKNOWN || !isSymbolicLinkAt(directory, entry.d_name)))
        return false;
    return !staysBelowRoot(path + QLatin1Char('/') + QFile::decodeName(entry.d_name), rootPath);
}

// One response per entry of the folder; a file has no entries.
void appendEntries(QByteArray &out, const QString &path, const QByteArray &hrefPath,
                   unsigned properties, const QString &rootPath)
{
    // Were the folder's own href no UTF-8, none of its entries' would be.
    if (!hrefPath.isValidUtf8())
        return;
    DIR *directory = ::opendir(QFile::encodeName(path).constData());
    if (!directory)
        return;
    QByteArray prefix(hrefPath.size() * 3 + 1, Qt::Uninitialized);
    Cursor to(prefix.data());
    to.escapedHref(hrefPath);
    if (!hrefPath.endsWith('/'))
        to << '/';
    prefix.truncate(to.end() - prefix.constData());
    const int fd = ::dirfd(directory);
    while (const dirent *entry = ::readdir(directory)) {
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0)
            continue;
        const bool followLinks = !leadsOutside(fd, *entry, path, rootPath);
        if (const auto item = davItemInfoAt(fd, entry->d_name, followLinks))
            appendResponse(out, prefix, entry->d_name, *item, properties);
    }
    ::closedir(directory);
}

} // namespace

bool DAVResponse::propfind(const DAVRequest &request)
{
    const QString depth = request.header(QStringLiteral("Depth"));
    if (depth != QLatin1String("0") && depth != QLatin1String("1")) {
        tl::logLine(QStringLiteral("Unsupported DAV depth \"%1\"").arg(depth));
        return false;
    }
    const unsigned properties = requestedProperties(request.body);
    const QString path = request.filePath();
    if (!isBelowRoot(path, request.rootPath))
        return false;
    const auto item = davItemInfo(path);
    if (!item)
        return false;

    QByteArray xml;
    xml.reserve(kInitialReserve);
    xml += "<?xml version=\"1.0\" encoding=\"utf-8\" ?><D:multistatus xmlns:D=\"DAV:\">\n";
    QByteArray hrefPath = QFile::encodeName(request.resourcePath);
    if (!hrefPath.startsWith('/'))
        hrefPath.prepend('/');
    appendResponse(xml, {}, hrefPath, *item, properties);
    if (depth == QLatin1String("1"))
        appendEntries(xml, path, hrefPath, properties, request.rootPath);
    xml += "</D:multistatus>";
    setXMLBody(std::move(xml));
    m_status = 207;
    return true;
}

} // namespace server
