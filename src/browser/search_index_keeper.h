#pragma once

#include <QThreadPool>
#include <memory>

// Keeps the library's search index current while the window runs: one walk
// when it starts, then each file event brings its items up to date, in order,
// on a worker of its own, so searches answer at once from the index.
namespace tl::browser {

class SearchIndexKeeper
{
public:
    SearchIndexKeeper();
    ~SearchIndexKeeper();
    SearchIndexKeeper(const SearchIndexKeeper &) = delete;
    SearchIndexKeeper &operator=(const SearchIndexKeeper &) = delete;

    // Blocks until every update asked for is written; for shutdown and tests.
    void waitForUpdates();

private:
    void refresh(const QStringList &paths);

    QThreadPool m_worker;
    struct Observers;
    std::unique_ptr<Observers> m_observers;
};

} // namespace tl::browser
