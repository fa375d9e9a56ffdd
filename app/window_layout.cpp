#include "window_layout.h"

#include "shell/app_state.h"

#include <QMainWindow>
#include <QSplitter>

namespace tl::app {

namespace {

constexpr char kWindowLayout[] = "windowLayout";
constexpr char kGeometry[] = "geometry";
constexpr char kPanes[] = "panes";
constexpr char kHidden[] = "hiddenPanes";

} // namespace

void restoreWindowLayout(QMainWindow *window, QSplitter *panes)
{
    const QVariantMap layout = shell::readAppState().value(QLatin1String(kWindowLayout)).toMap();
    if (layout.isEmpty()) {
        window->resize(1280, 780);
        panes->setSizes({240, 340, 700});
        return;
    }
    window->restoreGeometry(QByteArray::fromBase64(layout.value(kGeometry).toString().toLatin1()));
    panes->restoreState(QByteArray::fromBase64(layout.value(kPanes).toString().toLatin1()));
    const QVariantList hidden = layout.value(kHidden).toList();
    for (int i = 0; i < panes->count(); ++i)
        panes->widget(i)->setVisible(!hidden.contains(i));
}

void saveWindowLayout(const QMainWindow *window, const QSplitter *panes)
{
    QVariantList hidden;
    for (int i = 0; i < panes->count(); ++i)
        if (panes->widget(i)->isHidden())
            hidden << i;
    QVariantMap state = shell::readAppState();
    state.insert(QLatin1String(kWindowLayout),
                 QVariantMap{{kGeometry, QString::fromLatin1(window->saveGeometry().toBase64())},
                             {kPanes, QString::fromLatin1(panes->saveState().toBase64())},
                             {kHidden, hidden}});
    shell::writeAppState(state);
}

} // namespace tl::app
