#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace server {
struct ServerPaneState;
}

// The server's preference pane: switch it on and off, the port, the
// password, and how other devices reach the library.
namespace tl::app {

class ServerPane : public QDialog
{
    Q_OBJECT
public:
    explicit ServerPane(QWidget *parent = nullptr);

private:
    void show(const server::ServerPaneState &state);

    QPushButton *m_toggle;
    QSpinBox *m_port;
    QLabel *m_userTitle;
    QLineEdit *m_user;
    QLabel *m_passwordTitle;
    QLineEdit *m_password;
    QPushButton *m_newPassword;
    QLabel *m_details;
};

} // namespace tl::app
