#include "document/conflict_bar.h"

#include "sync/document_conflict.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace tl::app {

using sync::DocumentConflict;

ConflictBar::ConflictBar(DocumentConflict &conflict, QWidget *parent)
    : QFrame(parent), m_conflict(conflict), m_text(new QLabel(this))
{
    setObjectName(QStringLiteral("conflictBar"));
    setStyleSheet(QStringLiteral("#conflictBar { background: palette(alternate-base); "
                                 "border-bottom: 1px solid palette(mid); }"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 6, 10, 6);
    m_text->setWordWrap(true);
    layout->addWidget(m_text, 1);
    const std::pair<void (DocumentConflict::*)(), bool> choices[] = {
        {&DocumentConflict::tl_resolveConflictKeepingCurrentVersion, true},
        {&DocumentConflict::tl_resolveConflictKeepingConflictVersion, true},
        {&DocumentConflict::tl_resolveConflictKeepingBothVersions, false}};
    for (const auto &[choice, versionTitle] : choices) {
        auto *button = new QPushButton(this);
        layout->addWidget(button);
        m_buttons << button;
        connect(button, &QPushButton::clicked, &conflict, choice);
        if (!versionTitle)
            button->setText(QLatin1String(sync::kKeepBothVersions));
    }
    connect(&conflict, &DocumentConflict::conflictChanged, this, &ConflictBar::follow);
    follow();
}

QPushButton *ConflictBar::button(int index) const
{
    return m_buttons.value(index);
}

void ConflictBar::follow()
{
    setVisible(m_conflict.isUnresolved());
    m_text->setText(QStringLiteral("<b>%1</b><br>%2")
                        .arg(tr("Read Only"), QString(QLatin1String(sync::kConflictAlertHeading))
                                                  .replace(u'\n', u' ')
                                                  .toHtmlEscaped()));
    m_buttons[0]->setText(m_conflict.titles().current);
    m_buttons[1]->setText(m_conflict.titles().conflict);
}

} // namespace tl::app
