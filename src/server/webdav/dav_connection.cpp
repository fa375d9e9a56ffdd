#include "server/webdav/dav_connection.h"

#include "server/core/http_url.h"
#include "server/webdav/dav_response.h"
#include "server/webdav/delete_response.h"
#include "server/webdav/put_response.h"
#include "store/log.h"

namespace server {

namespace {

bool isOneOf(const QString &method, std::initializer_list<const char *> names)
{
    for (const char *name : names)
        if (method == QLatin1String(name))
            return true;
    return false;
}

} // namespace

bool DAVConnection::supportsMethod(const QString &method, const QString &)
{
    return isOneOf(method, {"GET", "HEAD", "PUT", "DELETE", "OPTIONS", "PROPFIND", "MKCOL", "MOVE",
                            "COPY", "LOCK", "UNLOCK"});
}

bool DAVConnection::expectsRequestBodyFromMethod(const QString &method, const QString &)
{
    if (isOneOf(method, {"PUT", "LOCK"}))
        return true;
    if (isOneOf(method, {"PROPFIND", "MKCOL"}))
        return request() && request()->hasHeaderField(QStringLiteral("Content-Length"));
    return false;
}

std::shared_ptr<HTTPResponse> DAVConnection::httpResponseForMethod(const QString &method,
                                                                   const QString &path)
{
    if (isOneOf(method, {"GET", "HEAD"}))
        return HTTPConnection::httpResponseForMethod(method, path);
    if (!isOneOf(method, {"PUT", "DELETE", "OPTIONS", "PROPFIND", "MKCOL", "MOVE", "COPY", "LOCK",
                          "UNLOCK"}))
        return nullptr;
    const QString filePath = filePathForURI(path, true);
    if (filePath.isNull())
        return nullptr;
    const HTTPHeaderList &headers = request()->allHeaderFields();

    if (method == QLatin1String("PUT")) {
        if (!m_requestContentBody.isPresent()) {
            tl::logLine(QStringLiteral("Internal error"));
            return nullptr;
        }
        if (m_requestContentBody.isInMemory())
            return std::make_shared<PUTResponse>(filePath, headers, m_requestContentBody.data());
        return std::make_shared<PUTResponse>(
            filePath, headers, PUTResponse::BodyFile{m_requestContentBody.filePath()});
    }
    const QString rootPath = standardizePath(config().documentRoot);
    if (method == QLatin1String("DELETE"))
        return std::make_shared<DELETEResponse>(filePath, rootPath);

    const auto body = m_requestContentBody.readAll();
    if (!body)
        return nullptr;
    return DAVResponse::create(
        {method, headers, *body, filePath.mid(rootPath.size() + 1), rootPath});
}

void DAVConnection::prepareForBodyWithSize(uint64_t contentLength)
{
    if (contentLength == kChunkedContentLength)
        m_requestContentBody.prepare(std::nullopt);
    else
        m_requestContentBody.prepare(contentLength);
}

uint64_t DAVConnection::maximumBodySize(const QString &method, const QString &path)
{
    // Parsed bodies are held whole, parsed into a tree and kept as text.
    if (isOneOf(method, {"PROPFIND", "LOCK"}))
        return kMaxParsedBodySize;
    return HTTPConnection::maximumBodySize(method, path);
}

void DAVConnection::processBodyData(const QByteArray &data)
{
    m_requestContentBody.append(data);
}

void DAVConnection::finishBody()
{
    m_requestContentBody.finish();
}

void DAVConnection::finishResponse()
{
    m_requestContentBody.discard();
    HTTPConnection::finishResponse();
}

void DAVConnection::die()
{
    m_requestContentBody.discard();
    HTTPConnection::die();
}

} // namespace server
