#include "recent_searches_menu.h"

#include "browser/recent_searches.h"
#include "browser/search_field.h"
#include "icons.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>

namespace tl::app {

namespace {

void fillMenu(QMenu *menu, browser::SearchFieldController &search, QAction *recents)
{
    menu->clear();
    menu->addAction(QStringLiteral("Recent Searches"))->setEnabled(false);
    for (const QString &term : browser::recentSearchTerms()) {
        QString title = term;
        menu->addAction(title.replace(u'&', QLatin1String("&&")), &search,
                        [&search, term] { search.runSearchFor(term); });
    }
    menu->addSeparator();
    menu->addAction(QStringLiteral("Clear"), recents, [recents] {
        browser::clearRecentSearchTerms();
        recents->setVisible(false);
    });
}

} // namespace

void addRecentSearches(QLineEdit *field, browser::SearchFieldController &search)
{
    QAction *recents = field->addAction(themeIcon(QStringLiteral("document-open-recent")),
                                        QLineEdit::TrailingPosition);
    recents->setObjectName(QStringLiteral("recentSearches"));
    recents->setText(QStringLiteral("Recents"));
    auto *menu = new QMenu(field);
    menu->setObjectName(QStringLiteral("recentSearchesMenu"));
    QObject::connect(recents, &QAction::triggered, menu, [field, menu, &search, recents] {
        fillMenu(menu, search, recents);
        // Below the field, right-aligned with the clock.
        menu->popup(
            field->mapToGlobal(QPoint(field->width() - menu->sizeHint().width(), field->height())));
    });
    const auto update = [recents] { recents->setVisible(!browser::recentSearchTerms().isEmpty()); };
    QObject::connect(&search, &browser::SearchFieldController::recentSearchesChanged, recents,
                     update);
    update();
}

} // namespace tl::app
