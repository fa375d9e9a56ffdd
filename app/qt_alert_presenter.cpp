#include "qt_alert_presenter.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>

namespace tl::app {

namespace {

// Runs work on the application's thread and answers its result.
template <typename Result, typename Work> Result onMainThread(Work work)
{
    if (QThread::currentThread() == qApp->thread())
        return work();
    Result result{};
    QMetaObject::invokeMethod(
        qApp, [&] { result = work(); }, Qt::BlockingQueuedConnection);
    return result;
}

} // namespace

int QtAlertPresenter::run(const platform::Alert &alert)
{
    return onMainThread<int>([&] { return runOnMainThread(alert); });
}

std::optional<QString> QtAlertPresenter::chooseFolder(const QString &message, const QString &button)
{
    return onMainThread<std::optional<QString>>(
        [&] { return chooseOnMainThread(message, button); });
}

int QtAlertPresenter::runOnMainThread(const platform::Alert &alert)
{
    QMessageBox box(m_parent);
    box.setIcon(QMessageBox::Warning);
    box.setWindowTitle(QApplication::applicationDisplayName());
    box.setText(alert.message);
    box.setInformativeText(alert.informativeText);
    const QStringList buttons =
        alert.buttons.isEmpty() ? QStringList{QStringLiteral("OK")} : alert.buttons;
    QList<QAbstractButton *> made;
    for (qsizetype i = 0; i < buttons.size(); ++i)
        made << box.addButton(buttons[i],
                              i == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole);
    box.setDefaultButton(qobject_cast<QPushButton *>(made.first()));
    box.exec();
    const qsizetype pressed = made.indexOf(box.clickedButton());
    return pressed < 0 ? int(buttons.size() - 1) : int(pressed);
}

std::optional<QString> QtAlertPresenter::chooseOnMainThread(const QString &message,
                                                            const QString &button)
{
    QFileDialog dialog(m_parent, message);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setLabelText(QFileDialog::Accept, button);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return dialog.selectedFiles().first();
}

} // namespace tl::app
