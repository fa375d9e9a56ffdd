#pragma once

#include <QLabel>

class QObject;

namespace tl::browser {
class EventBridge;
class TLKSOutlineViewController;
} // namespace tl::browser

// What the window shows of the sync client's work.
namespace tl::app {

// The status line's "Syncing..." text, from the count the sync reports post.
class SyncStatusLabel : public QLabel
{
    Q_OBJECT
public:
    explicit SyncStatusLabel(browser::EventBridge &bridge, QWidget *parent = nullptr);
};

// The smart book of conflicts follows the library's list of documents
// awaiting a choice, and a list showing it lists them anew.
void followUnresolvedConflicts(browser::EventBridge &bridge,
                               browser::TLKSOutlineViewController &outline, QObject *owner);

} // namespace tl::app
