#pragma once

#include <QString>

// The server pane of the preferences without its window: what it does when
// the user presses its buttons, and what it shows.
namespace server {

// What the pane shows. Off: only the start button; on: the stop button, the
// credentials, the new-password button and the addresses.
struct ServerPaneState
{
    QString buttonTitle;
    bool buttonOn = false;
    bool showsCredentials = false;
    QString user;
    QString password;
    QString connectionDetails;
};

inline constexpr char kStartServerButton[] = "Start Taveelle Server";
inline constexpr char kStopServerButton[] = "Stop Tavelle Server";
inline constexpr char kNewPasswordToolTip[] = "Set new Password";
inline constexpr char kUserTitle[] = "User";
inline constexpr char kPasswordTitle[] = "Password";

class TLServerPreferences
{
public:
    // The server button: on switches the server on for good, with a password
    // made the first time; off switches it off.
    ServerPaneState toggleServer(bool on);
    // Cuts existing clients off and restarts with a new password.
    ServerPaneState refreshPassword();
    // Nine characters of a new unique string, lower-cased, stored as the
    // password; answered too.
    static QString createNewPassword();
    static ServerPaneState updateConnectionDetails();
};

} // namespace server
