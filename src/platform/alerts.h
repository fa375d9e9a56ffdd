#pragma once

// Alerts and questions put to the user. The desktop program installs a
// presenter with windows; everything else (the command, tests) uses the
// headless one, which logs each alert and answers from a script.

#include <QList>
#include <QString>
#include <QStringList>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

namespace tl::platform {

struct Alert
{
    QString message;
    QString informativeText;
    QStringList buttons;
};

class AlertPresenter
{
public:
    virtual ~AlertPresenter();
    // Shows the alert and answers the index of the pressed button.
    virtual int run(const Alert &alert) = 0;
    // Asks for a folder; nothing when the user cancels.
    virtual std::optional<QString> chooseFolder(const QString &message, const QString &button) = 0;
};

// Logs every alert and question, and answers the scripted answers in the
// order they were pushed: button 0 and "cancel" once the script runs out.
class HeadlessAlertPresenter : public AlertPresenter
{
public:
    int run(const Alert &alert) override;
    std::optional<QString> chooseFolder(const QString &message, const QString &button) override;

    void pushAnswer(int buttonIndex);
    // Nothing stands for the user cancelling.
    void pushFolder(std::optional<QString> folder);
    // The alerts shown so far, oldest first.
    QList<Alert> shownAlerts() const;

private:
    mutable std::mutex mutex_;
    std::deque<int> answers_;
    std::deque<std::optional<QString>> folders_;
    QList<Alert> shown_;
};

// The process-wide presenter: a HeadlessAlertPresenter until one is set.
// Don't keep the reference across a call of setAlertPresenter.
AlertPresenter &alerts();
// Nothing restores a fresh headless presenter.
void setAlertPresenter(std::shared_ptr<AlertPresenter> presenter);

} // namespace tl::platform
