#pragma once

#include <QString>

namespace server {

// The time now as an HTTP date: "EEE, dd MMM y HH:mm:ss 'GMT'" in en_US.
QString httpDate();

} // namespace server
