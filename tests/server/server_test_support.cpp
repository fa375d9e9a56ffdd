#include "server_test_support.h"

#include "server/core/responses/http_data_response.h"

namespace servertest {

std::shared_ptr<server::HTTPResponse> TestConnection::httpResponseForMethod(const QString &method, const QString &path)
{
    if (responder)
        return responder(method, path);
    if (path.startsWith(QLatin1String("/echo")))
        return std::make_shared<server::HTTPDataResponse>(receivedBody);
    return HTTPConnection::httpResponseForMethod(method, path);
}

} // namespace servertest
