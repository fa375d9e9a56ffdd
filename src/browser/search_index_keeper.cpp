#include "browser/search_index_keeper.h"

#include "browser/library_search.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "search/search_index.h"

#include <QtConcurrent>
#include <list>

namespace tl::browser {

struct SearchIndexKeeper::Observers
{
    std::list<ScopedObserver> all;
};

SearchIndexKeeper::SearchIndexKeeper() : m_observers(std::make_unique<Observers>())
{
    m_worker.setMaxThreadCount(1);
    const auto onPaths = [this](const char *event, const QStringList &keys) {
        m_observers->all.emplace_back(QLatin1String(event),
                                      [this, keys](const QString &, const QVariantMap &p) {
                                          QStringList paths;
                                          for (const QString &key : keys)
                                              paths << p.value(key).toString();
                                          refresh(paths);
                                      });
    };
    const QStringList path{QStringLiteral("path")};
    onPaths(events::FileModifiedOnDisk, path);
    onPaths(events::HandleFileModificationInstantly, path);
    onPaths(events::NewFileCreated, path);
    onPaths(events::FileDeletedFromDisk, path);
    onPaths(events::FileMoved, {QStringLiteral("originalPath"), QStringLiteral("newPath")});
    m_observers->all.emplace_back(QLatin1String(events::NewTavelleRootSelected),
                                  [this](const QString &, const QVariantMap &) { refresh({}); });
    refresh({});
}

SearchIndexKeeper::~SearchIndexKeeper()
{
    m_observers.reset();
    waitForUpdates();
}

void SearchIndexKeeper::waitForUpdates()
{
    m_worker.waitForDone();
}

// No paths: the whole library is walked.
void SearchIndexKeeper::refresh(const QStringList &paths)
{
    (void)QtConcurrent::run(&m_worker, [paths] {
        search::SearchIndex &index = searchIndexOfLibrary();
        if (paths.isEmpty())
            index.bringUpToDate();
        for (const QString &path : paths)
            if (!path.isEmpty())
                index.refreshItem(path);
    });
}

} // namespace tl::browser
