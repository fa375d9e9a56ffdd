#pragma once

#include "sync/versions.h"

#include <QObject>
#include <QString>

namespace tl::browser {
class TLKSDocumentViewController;
}

// The open document's conflict: when another computer's version of it
// arrives, the user chooses which to keep, and the document stays
// read-only until then.
namespace tl::sync {

inline constexpr char kConflictAlertHeading[] =
    "Modifications are not in sync.\nChoose which versions to keep.";
inline constexpr char kKeepBothVersions[] = "Keep Both";
inline constexpr char kContinueInReadOnlyMode[] = "Continue in Read Only Mode";

// The titles of the buttons that keep the current and the conflict version:
// "NAME: DATE", the name being the computer (for a shared item "Modified by
// you", or the person who saved it), "Version 1" or "Version 2" when there
// is none, and the date "Deleted" for a version without one.
struct VersionTitles
{
    QString current;
    QString conflict;
};
VersionTitles versionTitles(const FileVersion &current, const FileVersion &conflict, bool shared);

// Watches over the conflict of the document a view shows: checked a moment
// after each showing, when the library's list of conflicts changes, and
// whenever editing is wanted while it stands. The answer comes through the
// alert presenter, in the order of buttons: current version, conflict
// version, keep both, "Continue in Read Only Mode".
class DocumentConflict : public QObject
{
    Q_OBJECT
public:
    // The check waits this long after a document is shown.
    static constexpr double kCheckDelay = 0.3;

    explicit DocumentConflict(browser::TLKSDocumentViewController &controller,
                              QObject *parent = nullptr);
    ~DocumentConflict() override;

    void tl_iCloudCheckUnresolvedConflict();
    bool isUnresolved() const;
    // The titles of the question last asked.
    const VersionTitles &titles() const { return m_titles; }

    void tl_resolveConflictKeepingCurrentVersion();
    void tl_resolveConflictKeepingConflictVersion();
    void tl_resolveConflictKeepingBothVersions();

Q_SIGNALS:
    // The document became read-only for a conflict, or editable again.
    void conflictChanged();

private:
    void scheduleCheck();
    // Clears the flag and the document's entry in the library's list.
    void settled(const QString &item);

    browser::TLKSDocumentViewController &m_controller;
    VersionTitles m_titles;
    bool m_alertShowing = false;
    struct Observer;
    std::unique_ptr<Observer> m_observer;
};

} // namespace tl::sync
