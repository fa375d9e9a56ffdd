#include "inline_renamer.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QLineEdit>

namespace tl::app {

InlineRenamer::InlineRenamer(QAbstractItemView *view, Rename rename)
    : QObject(view), m_view(view), m_rename(std::move(rename))
{
}

bool InlineRenamer::isEditing() const
{
    return m_field && m_field->isVisible();
}

void InlineRenamer::start(const QModelIndex &index, const QString &name)
{
    if (!index.isValid())
        return;
    if (!m_field) {
        m_field = new QLineEdit(m_view->viewport());
        m_field->setObjectName(QStringLiteral("renameField"));
        m_field->installEventFilter(this);
        connect(m_field, &QLineEdit::returnPressed, this, [this] { finish(true); });
    }
    m_index = index;
    m_original = name;
    m_view->scrollTo(index);
    const QRect row = m_view->visualRect(index);
    m_field->setGeometry(row.left() + 28, row.top() + 2, row.width() - 32,
                         m_field->sizeHint().height());
    m_field->setText(name);
    const qsizetype dot = name.lastIndexOf(u'.');
    m_field->setSelection(0, int(dot > 0 ? dot : name.size()));
    m_field->show();
    m_field->setFocus();
}

void InlineRenamer::finish(bool accept)
{
    if (!isEditing())
        return;
    const QString name = m_field->text().trimmed();
    m_field->hide();
    m_view->setFocus();
    if (accept && !name.isEmpty() && name != m_original && m_index.isValid())
        m_rename(m_index, name);
}

bool InlineRenamer::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_field) {
        if (event->type() == QEvent::KeyPress &&
            static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
            finish(false);
            return true;
        }
        if (event->type() == QEvent::FocusOut)
            finish(true);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace tl::app
