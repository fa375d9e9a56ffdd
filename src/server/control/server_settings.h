#pragma once

// The server's settings and fixed names, defined once.
namespace server {

// The port; 0 or absent means 8080. Rewritten with the port in use after each start.
inline constexpr char kLocalWebDAVServerPortKey[] = "localWebDAVServerPort";
// The server password, kept in the clear.
inline constexpr char kLocalWebDAVServerStringKey[] = "localWebDAVServerString";

// The one user name, which is also the name the service is published under.
inline constexpr char kServerUserName[] = "Tavelle";
inline constexpr char kServerServiceType[] = "_http._tcp.";
inline constexpr unsigned kDefaultServerPort = 8080;
// Below this first port a port in use is followed by the next one.
inline constexpr unsigned kPortRetryLimit = 9000;

inline constexpr char kStartFailedAlert[] = "Could not Start Tavelle Server";

} // namespace server
