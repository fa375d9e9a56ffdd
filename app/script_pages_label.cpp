#include "script_pages_label.h"

#include "screenplay/script_page.h"
#include "store/extensions.h"

namespace tl::app {

ScriptPagesLabel::ScriptPagesLabel(QWidget *parent) : QLabel(parent)
{
    hide();
    connect(&m_worker, &browser::CoalescingWorker::finished, this, [this](const QVariant &result) {
        const QVariantList counted = result.toList();
        // A count for a document no longer shown is dropped.
        if (counted.size() != 2 || counted[0].toString() != m_path)
            return;
        const int pages = counted[1].toInt();
        setText(pages == 1 ? tr("1 page") : tr("%1 pages").arg(pages));
        show();
    });
}

void ScriptPagesLabel::follow(const QString &path)
{
    m_path = store::lowerCasedExtension(path) == u"fountain" ? path : QString();
    if (m_path.isEmpty()) {
        hide();
        return;
    }
    m_worker.request([path] {
        return QVariant(QVariantList{path, screenplay::scriptPageForDocument(path).pageCount});
    });
}

} // namespace tl::app
