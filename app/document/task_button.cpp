#include "document/task_button.h"

#include "convert/convert_keys.h"
#include "due_date_dialog.h"
#include "foundation/events.h"
#include "icons.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "store/task_records.h"
#include "tasks/task_list.h"
#include "theme.h"

#include <QPointer>

namespace tl::app {

namespace {

// The dark variants of the task icons carry "-dark", or "-black" for the
// black theme that is not the solarized one.
QString taskIconName(const QString &path)
{
    QString name = store::tl_iconForTask(path);
    if (name.isEmpty() || !Theme::instance().isDark())
        return name;
    platform::Settings &settings = platform::settings();
    const bool black = settings.boolValue(QLatin1String(convert::keys::UseBlackForDarkTheme)) &&
                       !settings.boolValue(QLatin1String(keys::setting::UseSolarizedTheme));
    return name + (black ? QStringLiteral("-black") : QStringLiteral("-dark"));
}

} // namespace

TaskButton::TaskButton(QWidget *parent)
    : QToolButton(parent), m_iconChanges(QLatin1String(events::UpdateTaskIcon),
                                         [this](const QString &, const QVariantMap &) {
                                             runOnMainThread([guard = QPointer<TaskButton>(this)] {
                                                 if (guard)
                                                     guard->refresh();
                                             });
                                         })
{
    setObjectName(QStringLiteral("taskButton"));
    setAutoRaise(true);
    setIconSize(QSize(24, 24));
    setToolTip(
        QStringLiteral("Click to change the task's state; press and hold to set its due date"));
    setFocusPolicy(Qt::NoFocus);
    hide();
    m_hold.setSingleShot(true);
    m_hold.setInterval(500);
    connect(this, &QToolButton::pressed, this, [this] {
        m_held = false;
        m_hold.start();
    });
    connect(&m_hold, &QTimer::timeout, this, [this] {
        if (!isDown())
            return;
        m_held = true;
        setDown(false);
        DueDateDialog::editItems({m_path}, window());
    });
    connect(this, &QToolButton::clicked, this, [this] {
        m_hold.stop();
        if (!m_held && !m_path.isEmpty())
            tasks::tl_toggleTask(m_path);
    });
    connect(&Theme::instance(), &Theme::changed, this, &TaskButton::refresh);
}

void TaskButton::follow(const QString &path)
{
    m_path = path;
    refresh();
}

void TaskButton::refresh()
{
    m_iconName = m_path.isEmpty() ? QString() : taskIconName(m_path);
    setIcon(iconNamed(m_iconName));
    setVisible(!m_iconName.isEmpty());
    if (isVisible())
        raise();
}

} // namespace tl::app
