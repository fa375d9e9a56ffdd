#pragma once

#include "foundation/notification_center.h"

#include <QTimer>
#include <QToolButton>

// The shown document's task mark in the corner of the document view: a click
// steps the task on, a long press sets its due date. Hidden for documents
// that are not tasks.
namespace tl::app {

class TaskButton : public QToolButton
{
    Q_OBJECT
public:
    explicit TaskButton(QWidget *parent = nullptr);

    // Follows the document at the path; empty for none.
    void follow(const QString &path);
    QString iconName() const { return m_iconName; }
    // How long a press lasts before it counts as long.
    void setHoldInterval(int milliseconds) { m_hold.setInterval(milliseconds); }

private:
    void refresh();

    QString m_path;
    QString m_iconName;
    QTimer m_hold;
    bool m_held = false;
    ScopedObserver m_iconChanges;
};

} // namespace tl::app
