// The back-forward list of a document view.
#include "browser/document_view_controller.h"

#include <QFileInfo>

namespace tl::browser {

void TLKSDocumentViewController::addToHistory(const QString &shown)
{
    if (shown.isEmpty() || (m_historyIndex >= 0 && m_history.value(m_historyIndex) == shown))
        return;
    // A new page drops what lay ahead, as in a browser.
    m_history.resize(m_historyIndex + 1);
    m_history << shown;
    m_historyIndex = m_history.size() - 1;
    Q_EMIT backForwardChanged();
}

void TLKSDocumentViewController::renameInHistory(const QString &from, const QString &to)
{
    // A new document's first save adds it.
    if (from.isEmpty()) {
        addToHistory(to);
        return;
    }
    bool changed = false;
    for (QString &entry : m_history)
        if (entry == from || entry.startsWith(from + u'/')) {
            entry = to + entry.mid(from.size());
            changed = true;
        }
    if (changed)
        Q_EMIT backForwardChanged();
}

bool TLKSDocumentViewController::canGoBack() const
{
    return m_historyIndex > 0;
}

bool TLKSDocumentViewController::canGoForward() const
{
    return m_historyIndex >= 0 && m_historyIndex + 1 < m_history.size();
}

void TLKSDocumentViewController::goBack()
{
    // Documents gone since are passed over.
    for (qsizetype i = m_historyIndex - 1; i >= 0; --i)
        if (QFileInfo::exists(m_history[i]))
            return showFromHistory(i);
}

void TLKSDocumentViewController::goForward()
{
    for (qsizetype i = m_historyIndex + 1; i < m_history.size(); ++i)
        if (QFileInfo::exists(m_history[i]))
            return showFromHistory(i);
}

void TLKSDocumentViewController::showFromHistory(qsizetype index)
{
    writeTextToFile();
    saveCurrentDocumentOffset();
    m_historyIndex = index;
    path = m_history[index];
    presentingToggledView = false;
    anchor.clear();
    showDocument();
    Q_EMIT backForwardChanged();
}

} // namespace tl::browser
