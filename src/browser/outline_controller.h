#pragma once

#include "browser/outline_model.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

namespace tl::platform {
class FileWatcher;
struct FileWatchReport;
} // namespace tl::platform

// The outline's controller without its view: the tree's model, the switch
// to a new library, the expansion state and the reactions to changes that
// other programs make below the library root.
namespace tl::browser {

class TLKSOutlineViewController
{
public:
    TLKSOutlineViewController();
    ~TLKSOutlineViewController();
    TLKSOutlineViewController(const TLKSOutlineViewController &) = delete;
    TLKSOutlineViewController &operator=(const TLKSOutlineViewController &) = delete;

    OutlineModel &model() { return m_model; }

    // The book selected in the outline; moves of it or its parents follow.
    QString selectedBookPath;

    void newRootSelected();
    // Follows changes below the root through the file watcher; false when
    // the platform can't watch.
    bool initFileCoordinationAndTaskLists();

    // Expansion as the view reports it; each change is saved at once.
    void setExpanded(TLKSOutlineItem *item, bool expanded);
    bool isExpanded(TLKSOutlineItem *item) const;
    void tl_saveExpandedPaths();
    // Opens the saved paths and their parents; answers the paths opened.
    QStringList tl_expandSavedPaths();

    // The file presenter's callbacks.
    void presentedSubitemDidChangeAtURL(const QString &path);
    void presentedSubitemAtURLDidMoveToURL(const QString &source, const QString &target);
    void repairLinksAfterOutsideMove(const QString &target);
    void handleWatchReport(const platform::FileWatchReport &report);

    void updateSmartBookOfType(int type);
    // Search Results stands in the smart books while the list shows a search.
    void showSearchResultsBook(bool shown);

    // The smart-book and reference follow-up of a changed path waits this
    // long, so a burst ends in one run.
    static constexpr double kFollowUpDelay = 0.3;
    static constexpr double kPropertiesFollowDelay = 0.5;

private:
    void removeFolderWithPath(const QString &path);
    void reloadBadgeOf(const QString &book);
    void followInbox(const QString &source, const QString &target);
    void moveInTree(const QString &source, const QString &target);
    void scheduleSmartBookUpdate();
    // Follow-up work on this controller after the delay; a later call with
    // the same name replaces it, and none outlives the controller.
    void scheduleOwn(const QString &name, std::function<void()> work,
                     double delaySeconds = kFollowUpDelay);
    QString ownKey(const QString &name) const;

    OutlineModel m_model;
    QSet<QString> m_expanded;
    bool m_smartBooksCollapsed = false;
    std::unique_ptr<platform::FileWatcher> m_watcher;
    QSet<QString> m_pendingKeys;
    // Property files changed in this turn of the event loop, their tags
    // collected together at its end: an import writes one for each note.
    QStringList m_plistsToCollect;
};

// The message listing the settings that differ after a switch of library.
inline constexpr char kChangedSettingsAlert[] = "Changed Settings";

} // namespace tl::browser
