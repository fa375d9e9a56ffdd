#include "server/core/server_clock.h"

#include <chrono>
#include <mutex>

namespace server {

namespace {
std::mutex &clockMutex()
{
    static std::mutex m;
    return m;
}
std::function<double()> &clockFunction()
{
    static std::function<double()> f;
    return f;
}
} // namespace

double secondsNow()
{
    {
        std::lock_guard lock(clockMutex());
        if (clockFunction())
            return clockFunction()();
    }
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

void setClock(std::function<double()> clock)
{
    std::lock_guard lock(clockMutex());
    clockFunction() = std::move(clock);
}

} // namespace server
