#include "search_options_panel.h"

#include "browser/search_field.h"
#include "foundation/path_string.h"
#include "store/library_root.h"

#include <QButtonGroup>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace tl::app {

using browser::SearchFieldController;

namespace {

// The scope buttons by id: 0 the book, 1 all books.
constexpr int kBookScope = 0;
constexpr int kAllBooks = 1;

struct OptionEntry
{
    int option;
    const char *title;
};
constexpr OptionEntry kOptions[] = {{SearchFieldController::TitleOnly, "Titles"},
                                    {SearchFieldController::ContentOnly, "Contents"},
                                    {SearchFieldController::TitleAndContent, "Both"}};

QToolButton *segment(const QString &text, QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setText(text);
    button->setCheckable(true);
    button->setAutoRaise(true);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return button;
}

// A row of segments packed to the left.
QHBoxLayout *row(QButtonGroup *group)
{
    auto *layout = new QHBoxLayout;
    layout->setSpacing(2);
    for (QAbstractButton *button : group->buttons())
        layout->addWidget(button);
    layout->addStretch(1);
    return layout;
}

} // namespace

SearchOptionsPanel::SearchOptionsPanel(SearchFieldController &field, QWidget *parent)
    : QWidget(parent), m_field(field), m_scope(new QButtonGroup(this)),
      m_option(new QButtonGroup(this)), m_scopeCaption(new QLabel(QStringLiteral("In:"), this))
{
    setObjectName(QStringLiteral("searchOptions"));
    m_scope->addButton(segment({}, this), kBookScope);
    m_scope->addButton(segment(QStringLiteral("All Books"), this), kAllBooks);
    for (const OptionEntry &entry : kOptions)
        m_option->addButton(segment(QString::fromLatin1(entry.title), this), entry.option);
    auto *form = new QFormLayout(this);
    form->setContentsMargins(8, 0, 8, 4);
    form->setVerticalSpacing(0);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->addRow(m_scopeCaption, row(m_scope));
    form->addRow(new QLabel(QStringLiteral("Find:"), this), row(m_option));

    connect(m_scope, &QButtonGroup::idClicked, this,
            [this](int id) { m_field.setSearchesAllBooks(id == kAllBooks); });
    connect(m_option, &QButtonGroup::idClicked, this,
            [this](int id) { m_field.setSearchOption(id); });
    connect(&field, &SearchFieldController::searchOptionsChanged, this, [this](bool visible) {
        takeSettings();
        setVisible(visible);
    });
    hide();
}

void SearchOptionsPanel::takeSettings()
{
    const QString book = m_field.searchedBook();
    const bool oneBook = !book.isEmpty() && book != store::libraryRoot();
    QAbstractButton *bookButton = m_scope->button(kBookScope);
    bookButton->setText(oneBook ? path::lastComponent(book) : QStringLiteral("Library"));
    bookButton->setToolTip(QStringLiteral("Search the shown book"));
    m_scope->button(kAllBooks)->setToolTip(QStringLiteral("Search the whole library"));
    const bool all = SearchFieldController::searchesAllBooks() || !oneBook;
    m_scope->button(all ? kAllBooks : kBookScope)->setChecked(true);
    bookButton->setEnabled(oneBook);
    // With no book to choose, the scope is no choice and its caption greys with it.
    m_scopeCaption->setEnabled(oneBook);
    m_option->button(SearchFieldController::searchOption())->setChecked(true);
}

} // namespace tl::app
