#include "server/core/responses/http_data_response.h"

#include <algorithm>

namespace server {

HTTPDataResponse::HTTPDataResponse(QByteArray data, int status, HTTPHeaderList headers)
    : m_data(std::move(data)), m_status(status), m_headers(std::move(headers))
{
}

void HTTPDataResponse::setOffset(uint64_t offset)
{
    m_offset = std::min<uint64_t>(offset, m_data.size());
}

QByteArray HTTPDataResponse::readDataOfLength(size_t length)
{
    const uint64_t left = uint64_t(m_data.size()) - m_offset;
    const qsizetype take = qsizetype(std::min<uint64_t>(length, left));
    if (take == 0)
        return {};
    QByteArray piece =
        (m_offset == 0 && take == m_data.size()) ? m_data : m_data.mid(qsizetype(m_offset), take);
    m_offset += uint64_t(take);
    return piece;
}

} // namespace server
