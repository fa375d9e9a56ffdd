#include "server_pane.h"

#include "platform/settings.h"
#include "server/control/server_preferences.h"
#include "server/control/server_settings.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace tl::app {

using server::TLServerPreferences;

ServerPane::ServerPane(QWidget *parent)
    : QDialog(parent), m_toggle(new QPushButton(this)), m_port(new QSpinBox(this)),
      m_userTitle(new QLabel(QLatin1String(server::kUserTitle), this)), m_user(new QLineEdit(this)),
      m_passwordTitle(new QLabel(QLatin1String(server::kPasswordTitle), this)),
      m_password(new QLineEdit(this)), m_newPassword(new QPushButton(this)),
      m_details(new QLabel(this))
{
    setWindowTitle(QStringLiteral("Server"));
    m_toggle->setCheckable(true);
    m_port->setRange(0, 65535);
    m_port->setSpecialValueText(QStringLiteral("8080"));
    m_port->setValue(
        int(platform::settings().integer(QLatin1String(server::kLocalWebDAVServerPortKey))));
    for (QLineEdit *field : {m_user, m_password})
        field->setReadOnly(true);
    m_newPassword->setIcon(QIcon::fromTheme(QStringLiteral("view-refresh")));
    m_newPassword->setToolTip(QLatin1String(server::kNewPasswordToolTip));
    m_details->setWordWrap(true);
    m_details->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto *password = new QHBoxLayout;
    password->addWidget(m_password);
    password->addWidget(m_newPassword);
    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("Port"), m_port);
    form->addRow(m_userTitle, m_user);
    form->addRow(m_passwordTitle, password);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(
        new QLabel(QStringLiteral("Serve the library to other devices over WebDAV."), this));
    layout->addWidget(m_toggle, 0, Qt::AlignLeft);
    layout->addLayout(form);
    layout->addWidget(m_details);
    layout->addStretch();
    layout->addWidget(buttons);
    setMinimumWidth(440);

    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_port, &QSpinBox::valueChanged, this, [](int port) {
        platform::settings().set(QLatin1String(server::kLocalWebDAVServerPortKey), port);
    });
    connect(m_toggle, &QPushButton::clicked, this,
            [this](bool on) { show(TLServerPreferences().toggleServer(on)); });
    connect(m_newPassword, &QPushButton::clicked, this,
            [this] { show(TLServerPreferences().refreshPassword()); });
    show(TLServerPreferences::updateConnectionDetails());
}

void ServerPane::show(const server::ServerPaneState &state)
{
    m_toggle->setText(state.buttonTitle);
    m_toggle->setChecked(state.buttonOn);
    m_port->setEnabled(!state.buttonOn);
    {
        const QSignalBlocker quiet(m_port);
        m_port->setValue(
            int(platform::settings().integer(QLatin1String(server::kLocalWebDAVServerPortKey))));
    }
    for (QWidget *w : {static_cast<QWidget *>(m_userTitle), static_cast<QWidget *>(m_user),
                       static_cast<QWidget *>(m_passwordTitle), static_cast<QWidget *>(m_password),
                       static_cast<QWidget *>(m_newPassword)})
        w->setVisible(state.showsCredentials);
    m_user->setText(state.user);
    m_password->setText(state.password);
    m_details->setText(state.connectionDetails);
}

} // namespace tl::app
