#include "server/core/http_message.h"

namespace server {

namespace {

// The characters of a token: names of methods and header fields.
bool isTokenChar(unsigned char c)
{
    if (c >= '0' && c <= '9')
        return true;
    if ((c | 0x20) >= 'a' && (c | 0x20) <= 'z')
        return true;
    switch (c) {
    case '!': case '#': case '$': case '%': case '&': case '\'': case '*': case '+':
    case '-': case '.': case '^': case '_': case '`': case '|': case '~':
        return true;
    default:
        return false;
    }
}

bool isToken(QByteArrayView text)
{
    if (text.isEmpty())
        return false;
    for (char c : text)
        if (!isTokenChar(uchar(c)))
            return false;
    return true;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// "HTTP/" digits "." digits
bool isVersion(QByteArrayView text)
{
    if (!text.startsWith("HTTP/"))
        return false;
    const QByteArrayView rest = text.sliced(5);
    const qsizetype dot = rest.indexOf('.');
    if (dot <= 0 || dot == rest.size() - 1)
        return false;
    for (qsizetype i = 0; i < rest.size(); ++i)
        if (i != dot && !isDigit(rest[i]))
            return false;
    return true;
}

QByteArrayView trimmed(QByteArrayView text)
{
    qsizetype b = 0, e = text.size();
    while (b < e && (text[b] == ' ' || text[b] == '\t'))
        ++b;
    while (e > b && (text[e - 1] == ' ' || text[e - 1] == '\t'))
        --e;
    return text.sliced(b, e - b);
}

} // namespace

HTTPMessage::HTTPMessage() = default;

HTTPMessage::HTTPMessage(int statusCode, const QString &description, const QString &version)
    : m_isRequest(false), m_headerComplete(true), m_version(version), m_statusCode(statusCode),
      m_description(description.isEmpty() ? reasonPhrase(statusCode) : description)
{
}

bool HTTPMessage::appendData(const QByteArray &data)
{
    if (m_malformed || !m_isRequest)
        return false;
    if (m_headerComplete) {
        m_body.append(data);
        return true;
    }
    qsizetype from = 0;
    while (from < data.size()) {
        const qsizetype lf = data.indexOf('\n', from);
        if (lf < 0) {
            m_pending.append(data.constData() + from, data.size() - from);
            if (m_pending.size() > kMaxPendingLine) {
                m_malformed = true;
                return false;
            }
            break;
        }
        bool ok;
        if (m_pending.isEmpty()) {
            ok = parseLine(QByteArrayView(data.constData() + from, lf - from));
        } else {
            m_pending.append(data.constData() + from, lf - from);
            ok = parseLine(m_pending);
            m_pending.clear();
        }
        from = lf + 1;
        if (!ok) {
            m_malformed = true;
            return false;
        }
        if (m_headerComplete) {
            if (from < data.size())
                m_body.append(data.constData() + from, data.size() - from);
            break;
        }
    }
    return true;
}

bool HTTPMessage::parseLine(QByteArrayView line)
{
    if (line.endsWith('\r'))
        line.chop(1);
    for (char c : line)
        if (c == '\r' || c == '\0')
            return false;
    if (!m_sawRequestLine) {
        // Blank lines before the request line are tolerated.
        if (line.isEmpty())
            return true;
        return parseRequestLine(line);
    }
    if (line.isEmpty()) {
        m_headerComplete = true;
        return true;
    }
    return parseHeaderLine(line);
}

bool HTTPMessage::parseRequestLine(QByteArrayView line)
{
    // method SP request-target SP version, separated by blanks.
    QByteArrayView parts[3];
    int count = 0;
    qsizetype i = 0;
    while (i < line.size()) {
        while (i < line.size() && line[i] == ' ')
            ++i;
        if (i == line.size())
            break;
        qsizetype start = i;
        while (i < line.size() && line[i] != ' ')
            ++i;
        if (count == 3)
            return false;
        parts[count++] = line.sliced(start, i - start);
    }
    if (count != 3 || !isToken(parts[0]) || !isVersion(parts[2]))
        return false;
    for (char c : parts[1])
        if (uchar(c) <= 0x20 || uchar(c) >= 0x7f)
            return false;
    m_method = QString::fromLatin1(parts[0]);
    m_url = QString::fromLatin1(parts[1]);
    m_version = QString::fromLatin1(parts[2]);
    m_sawRequestLine = true;
    return true;
}

bool HTTPMessage::parseHeaderLine(QByteArrayView line)
{
    if (line[0] == ' ' || line[0] == '\t') {
        // A folded line continues the previous field's value after one blank.
        if (m_headers.empty())
            return false;
        const QByteArrayView more = trimmed(line);
        if (!more.isEmpty()) {
            QString &value = m_headers.back().second;
            if (!value.isEmpty())
                value += QLatin1Char(' ');
            value += QString::fromUtf8(more);
        }
        return true;
    }
    const qsizetype colon = line.indexOf(':');
    if (colon <= 0)
        return false;
    const QByteArrayView name = line.first(colon);
    if (!isToken(name))
        return false;
    const QByteArrayView value = trimmed(line.sliced(colon + 1));
    for (char c : value)
        if ((uchar(c) < 0x20 && c != '\t') || uchar(c) == 0x7f)
            return false;
    const QString nameText = QString::fromLatin1(name);
    const QString valueText = QString::fromUtf8(value);
    for (auto &field : m_headers) {
        if (field.first.compare(nameText, Qt::CaseInsensitive) == 0) {
            // Repeated fields join into one list, as one field would carry them.
            field.second += QStringLiteral(", ") + valueText;
            return true;
        }
    }
    m_headers.emplace_back(nameText, valueText);
    return true;
}

QString HTTPMessage::headerField(const QString &name) const
{
    for (const auto &field : m_headers)
        if (field.first.compare(name, Qt::CaseInsensitive) == 0)
            return field.second.isNull() ? QString(QLatin1String("")) : field.second;
    return QString();
}

bool HTTPMessage::hasHeaderField(const QString &name) const { return !headerField(name).isNull(); }

void HTTPMessage::setHeaderField(const QString &name, const QString &value)
{
    for (auto &field : m_headers) {
        if (field.first.compare(name, Qt::CaseInsensitive) == 0) {
            field.second = value;
            return;
        }
    }
    m_headers.emplace_back(name, value);
}

QByteArray HTTPMessage::messageData() const
{
    QByteArray out;
    out.reserve(256 + m_body.size());
    if (m_isRequest) {
        out += m_method.toLatin1() + ' ' + m_url.toLatin1() + ' ' + m_version.toLatin1() + "\r\n";
    } else {
        out += m_version.toLatin1() + ' ' + QByteArray::number(m_statusCode) + ' ' + m_description.toUtf8() + "\r\n";
    }
    for (const auto &field : m_headers) {
        out += field.first.toLatin1();
        out += ": ";
        out += field.second.toUtf8();
        out += "\r\n";
    }
    out += "\r\n";
    out += m_body;
    return out;
}

QString HTTPMessage::reasonPhrase(int statusCode)
{
    switch (statusCode) {
    case 100: return QStringLiteral("Continue");
    case 101: return QStringLiteral("Switching Protocols");
    case 200: return QStringLiteral("OK");
    case 201: return QStringLiteral("Created");
    case 202: return QStringLiteral("Accepted");
    case 203: return QStringLiteral("Non-Authoritative Information");
    case 204: return QStringLiteral("No Content");
    case 205: return QStringLiteral("Reset Content");
    case 206: return QStringLiteral("Partial Content");
    case 207: return QStringLiteral("Multi-Status");
    case 300: return QStringLiteral("Multiple Choices");
    case 301: return QStringLiteral("Moved Permanently");
    case 302: return QStringLiteral("Found");
    case 303: return QStringLiteral("See Other");
    case 304: return QStringLiteral("Not Modified");
    case 307: return QStringLiteral("Temporary Redirect");
    case 308: return QStringLiteral("Permanent Redirect");
    case 400: return QStringLiteral("Bad Request");
    case 401: return QStringLiteral("Unauthorized");
    case 403: return QStringLiteral("Forbidden");
    case 404: return QStringLiteral("Not Found");
    case 405: return QStringLiteral("Method Not Allowed");
    case 406: return QStringLiteral("Not Acceptable");
    case 408: return QStringLiteral("Request Timeout");
    case 409: return QStringLiteral("Conflict");
    case 410: return QStringLiteral("Gone");
    case 411: return QStringLiteral("Length Required");
    case 412: return QStringLiteral("Precondition Failed");
    case 413: return QStringLiteral("Payload Too Large");
    case 414: return QStringLiteral("URI Too Long");
    case 415: return QStringLiteral("Unsupported Media Type");
    case 416: return QStringLiteral("Range Not Satisfiable");
    case 417: return QStringLiteral("Expectation Failed");
    case 423: return QStringLiteral("Locked");
    case 424: return QStringLiteral("Failed Dependency");
    case 500: return QStringLiteral("Internal Server Error");
    case 501: return QStringLiteral("Not Implemented");
    case 502: return QStringLiteral("Bad Gateway");
    case 503: return QStringLiteral("Service Unavailable");
    case 504: return QStringLiteral("Gateway Timeout");
    case 505: return QStringLiteral("HTTP Version Not Supported");
    case 507: return QStringLiteral("Insufficient Storage");
    default: return QStringLiteral("Unknown");
    }
}

} // namespace server
