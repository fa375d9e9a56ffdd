#pragma once

#include "browser/coalescing_worker.h"

#include <QLabel>

namespace tl::app {

// The status line's page count of a shown screenplay, worked out off the
// main thread; hidden for every other kind of document.
class ScriptPagesLabel : public QLabel
{
    Q_OBJECT
public:
    explicit ScriptPagesLabel(QWidget *parent = nullptr);

    // Counts the pages of the document at path, as saved, when it is a script.
    void follow(const QString &path);

private:
    browser::CoalescingWorker m_worker;
    QString m_path;
};

} // namespace tl::app
