#include "platform/alerts.h"

#include <spdlog/spdlog.h>

namespace tl::platform {

namespace {

// One log line per alert, whatever the line breaks in its texts.
std::string oneLine(const QString &text)
{
    return QString(text).replace(QLatin1Char('\n'), QLatin1Char(' ')).toStdString();
}

struct PresenterSlot
{
    std::mutex mutex;
    std::shared_ptr<AlertPresenter> presenter = std::make_shared<HeadlessAlertPresenter>();
};

PresenterSlot &slot()
{
    static PresenterSlot instance;
    return instance;
}

} // namespace

AlertPresenter::~AlertPresenter() = default;

int HeadlessAlertPresenter::run(const Alert &alert)
{
    std::lock_guard lock(mutex_);
    shown_.append(alert);
    int answer = 0;
    if (!answers_.empty()) {
        answer = answers_.front();
        answers_.pop_front();
    }
    spdlog::warn("Alert: {} {} [{}] answered {}", oneLine(alert.message),
                 oneLine(alert.informativeText), oneLine(alert.buttons.join(", ")), answer);
    return answer;
}

std::optional<QString> HeadlessAlertPresenter::chooseFolder(const QString &message,
                                                            const QString &button)
{
    std::lock_guard lock(mutex_);
    std::optional<QString> folder;
    if (!folders_.empty()) {
        folder = folders_.front();
        folders_.pop_front();
    }
    spdlog::warn("Choose folder: {} [{}] answered {}", oneLine(message), oneLine(button),
                 folder ? oneLine(*folder) : std::string("cancel"));
    return folder;
}

void HeadlessAlertPresenter::pushAnswer(int buttonIndex)
{
    std::lock_guard lock(mutex_);
    answers_.push_back(buttonIndex);
}

void HeadlessAlertPresenter::pushFolder(std::optional<QString> folder)
{
    std::lock_guard lock(mutex_);
    folders_.push_back(std::move(folder));
}

QList<Alert> HeadlessAlertPresenter::shownAlerts() const
{
    std::lock_guard lock(mutex_);
    return shown_;
}

AlertPresenter &alerts()
{
    std::lock_guard lock(slot().mutex);
    return *slot().presenter;
}

void setAlertPresenter(std::shared_ptr<AlertPresenter> presenter)
{
    std::lock_guard lock(slot().mutex);
    slot().presenter =
        presenter ? std::move(presenter) : std::make_shared<HeadlessAlertPresenter>();
}

} // namespace tl::platform
