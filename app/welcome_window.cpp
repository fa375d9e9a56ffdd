#include "welcome_window.h"

#include "icons.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "shell/app_delegate.h"
#include "shell/shell_keys.h"

#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace tl::app {

namespace S = keys::setting;

WelcomeWindow::WelcomeWindow(QWidget *parent) : QWidget(parent), m_recent(new QListWidget(this))
{
    setWindowTitle(QStringLiteral("Welcome to Tavelle"));
    auto *logo = new QLabel(this);
    logo->setPixmap(QIcon(QStringLiteral(":/tavelle/icons/tavelle.svg")).pixmap(96, 96));
    logo->setAlignment(Qt::AlignCenter);
    auto *title = new QLabel(QStringLiteral("Welcome to Tavelle"), this);
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 2);
    big.setBold(true);
    title->setFont(big);
    title->setAlignment(Qt::AlignCenter);
    auto *text = new QLabel(
        QStringLiteral("Tavelle keeps your documents in a folder of your own: every folder in it "
                       "is a book, every file a document. Choose a folder, or make a new one, "
                       "to be your library."),
        this);
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignCenter);
    auto *choose = new QPushButton(QStringLiteral("Choose Library Folder..."), this);
    choose->setDefault(true);
    auto *recentTitle = new QLabel(QStringLiteral("Libraries used before"), this);

    const QVariantList homes =
        platform::settings().array(QLatin1String(S::PreviouslySelectedHomes));
    for (const QVariant &home : homes) {
        const QString path = home.toString();
        auto *item =
            new QListWidgetItem(iconNamed(QStringLiteral("icon-book-default")), path, m_recent);
        item->setData(Qt::UserRole, path);
        if (!QFileInfo(path).isDir())
            item->setFlags(item->flags() & ~Qt::ItemIsEnabled);
    }
    recentTitle->setVisible(!homes.isEmpty());
    m_recent->setVisible(!homes.isEmpty());

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(48, 36, 48, 36);
    layout->setSpacing(14);
    layout->addWidget(logo);
    layout->addWidget(title);
    layout->addWidget(text);
    layout->addWidget(choose, 0, Qt::AlignHCenter);
    layout->addSpacing(12);
    layout->addWidget(recentTitle);
    layout->addWidget(m_recent, 1);
    resize(680, 560);

    connect(choose, &QPushButton::clicked, this, &WelcomeWindow::chooseFolder);
    connect(m_recent, &QListWidget::itemActivated, this,
            [this](QListWidgetItem *item) { takeRecent(item->data(Qt::UserRole).toString()); });
}

void WelcomeWindow::chooseFolder()
{
    if (shell::AppDelegate().tl_selectTavelleRoot())
        Q_EMIT libraryChosen();
    else
        Q_EMIT cancelled();
}

void WelcomeWindow::takeRecent(const QString &path)
{
    if (shell::isUserHome(path)) {
        platform::alerts().run({QLatin1String(shell::kHomeFolderAlert),
                                QLatin1String(shell::kHomeFolderAlertText),
                                {QStringLiteral("Select Folder...")}});
        chooseFolder();
        return;
    }
    shell::tl_setRootToPath(path);
    Q_EMIT libraryChosen();
}

} // namespace tl::app
