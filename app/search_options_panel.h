#pragma once

#include <QWidget>

class QButtonGroup;
class QLabel;

namespace tl::browser {
class SearchFieldController;
}

// The search field's options below it: where to search (the book or all
// books) and what (titles, contents or both). The controls show the settings
// and a change goes back to the field, which searches again.
namespace tl::app {

class SearchOptionsPanel : public QWidget
{
    Q_OBJECT
public:
    SearchOptionsPanel(browser::SearchFieldController &field, QWidget *parent = nullptr);

    QButtonGroup *scopeButtons() const { return m_scope; }
    QButtonGroup *optionButtons() const { return m_option; }

    // The controls take their state from the settings.
    void takeSettings();

private:
    browser::SearchFieldController &m_field;
    QButtonGroup *m_scope;
    QButtonGroup *m_option;
    QLabel *m_scopeCaption;
};

} // namespace tl::app
