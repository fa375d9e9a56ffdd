#pragma once

#include <QWidget>

class QListWidget;

// The first window when no library is chosen: pick or make the library
// folder, or take one of the libraries used before.
namespace tl::app {

class WelcomeWindow : public QWidget
{
    Q_OBJECT
public:
    explicit WelcomeWindow(QWidget *parent = nullptr);

Q_SIGNALS:
    // The library root is set; the main window takes over.
    void libraryChosen();
    // The user cancelled the folder chooser, which ends the program.
    void cancelled();

private:
    void chooseFolder();
    void takeRecent(const QString &path);

    QListWidget *m_recent;
};

} // namespace tl::app
