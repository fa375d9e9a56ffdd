#pragma once

#include <QByteArray>
#include <QString>

#include <utility>
#include <vector>

namespace server {

using HTTPHeaderList = std::vector<std::pair<QString, QString>>;

inline const QString HTTPVersion1_0 = QStringLiteral("HTTP/1.0");
inline const QString HTTPVersion1_1 = QStringLiteral("HTTP/1.1");

// One HTTP request or response. A request is parsed incrementally from the
// bytes given to appendData(); a response is built and turned into bytes.
// Header names compare without regard to case.
class HTTPMessage
{
public:
    // An empty request, ready for appendData().
    HTTPMessage();
    // A response; an empty description gives the standard reason phrase.
    HTTPMessage(int statusCode, const QString &description, const QString &version);

    // Feeds request bytes, usually one line at a time. Lines end in LF, with
    // an optional CR before it. Answers false on a malformed message, and
    // stays false. Bytes after the end of the header go to the body.
    bool appendData(const QByteArray &data);
    bool isHeaderComplete() const { return m_headerComplete; }

    bool isRequest() const { return m_isRequest; }
    const QString &version() const { return m_version; }
    const QString &method() const { return m_method; }
    // The request target as sent: the relative string of the request URL.
    const QString &url() const { return m_url; }
    int statusCode() const { return m_statusCode; }

    const HTTPHeaderList &allHeaderFields() const { return m_headers; }
    // The value, or a null string when absent.
    QString headerField(const QString &name) const;
    bool hasHeaderField(const QString &name) const;
    // Replaces a field of the same name in place, or adds it at the end.
    void setHeaderField(const QString &name, const QString &value);

    // The serialized message: start line, header fields, blank line, body.
    QByteArray messageData() const;
    const QByteArray &body() const { return m_body; }
    void setBody(const QByteArray &body) { m_body = body; }

    // The standard reason phrase of a status code, or "Unknown".
    static QString reasonPhrase(int statusCode);

    // The longest line kept while waiting for its end.
    static constexpr qsizetype kMaxPendingLine = 65536;

private:
    bool parseLine(QByteArrayView line);
    bool parseRequestLine(QByteArrayView line);
    bool parseHeaderLine(QByteArrayView line);

    bool m_isRequest = true;
    bool m_headerComplete = false;
    bool m_malformed = false;
    bool m_sawRequestLine = false;
    QByteArray m_pending;
    QString m_method;
    QString m_url;
    QString m_version;
    int m_statusCode = 0;
    QString m_description;
    HTTPHeaderList m_headers;
    QByteArray m_body;
};

} // namespace server
