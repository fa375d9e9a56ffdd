#pragma once

#include "platform/alerts.h"

#include <QPointer>
#include <QWidget>

namespace tl::app {

// Alerts as the desktop's message boxes and the folder question as its
// folder dialog. Calls from other threads wait for the main thread's answer.
class QtAlertPresenter : public platform::AlertPresenter
{
public:
    int run(const platform::Alert &alert) override;
    std::optional<QString> chooseFolder(const QString &message, const QString &button) override;

    // The window the boxes belong to; none puts them on their own.
    void setParentWindow(QWidget *window) { m_parent = window; }

private:
    int runOnMainThread(const platform::Alert &alert);
    std::optional<QString> chooseOnMainThread(const QString &message, const QString &button);

    QPointer<QWidget> m_parent;
};

} // namespace tl::app
