#pragma once

#include "document_window.h"

class QLabel;

// The quick entry: a small window of its own over a new, empty plain
// document in the inbox (the top level without one). The first line is the
// title; the document is saved as the user types, on Save and on closing.
namespace tl::app {

class QuickEntryWindow : public DocumentWindow
{
    Q_OBJECT
public:
    explicit QuickEntryWindow(QWidget *parent = nullptr);

private:
    void updateWhere();

    QLabel *m_where;
};

// tl_addQuickEntry: opens a quick entry window in front.
QuickEntryWindow *tl_addQuickEntry();

} // namespace tl::app
