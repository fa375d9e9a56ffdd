#pragma once

#include <QFrame>

class QLabel;
class QPushButton;

namespace tl::sync {
class DocumentConflict;
}

// The read-only mode of a document in conflict: a bar above the text with
// the question's choices, so the user may answer without typing first.
namespace tl::app {

class ConflictBar : public QFrame
{
    Q_OBJECT
public:
    explicit ConflictBar(sync::DocumentConflict &conflict, QWidget *parent = nullptr);

    // Keep current, keep conflict, keep both.
    QPushButton *button(int index) const;

private:
    void follow();

    sync::DocumentConflict &m_conflict;
    QLabel *m_text;
    QList<QPushButton *> m_buttons;
};

} // namespace tl::app
