#include "server/core/http_date.h"

#include <cstdio>
#include <ctime>

namespace server {

// Made at most once a second per thread: every response carries one.
QString httpDate()
{
    static const char *const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char *const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    thread_local time_t cachedSecond = -1;
    thread_local QString cached;
    const time_t now = std::time(nullptr);
    if (now != cachedSecond) {
        struct tm parts;
        gmtime_r(&now, &parts);
        char text[64];
        std::snprintf(text, sizeof text, "%s, %02d %s %d %02d:%02d:%02d GMT", days[parts.tm_wday],
                      parts.tm_mday, months[parts.tm_mon], parts.tm_year + 1900, parts.tm_hour,
                      parts.tm_min, parts.tm_sec);
        cached = QString::fromLatin1(text);
        cachedSecond = now;
    }
    return cached;
}

} // namespace server
