#pragma once

#include <functional>

namespace server {

// Seconds on a monotonic clock. Nonce ages are measured with it; tests set
// their own clock so that ages pass without waiting.
double secondsNow();

// An empty function restores the steady clock.
void setClock(std::function<double()> clock);

} // namespace server
