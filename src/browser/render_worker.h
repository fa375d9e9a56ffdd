#pragma once

#include "browser/coalescing_worker.h"

#include <QMetaType>
#include <QObject>
#include <QString>

// Renders documents off the main thread for the formatted view: the text
// the user is typing, or a file. One render in flight and one waiting.
namespace tl::browser {

struct RenderResult
{
    // The document rendered, as requested.
    QString path;
    // The whole page: envelope, style sheet, body, adjusted to the theme.
    QString html;
    // The body's inner HTML alone, to push into a page already loaded.
    QString body;
    // Where relative references of the page resolve: the document's file URL.
    QString baseUrl;
    // Rises with each request; a view ignores results older than its page.
    quint64 sequence = 0;
};

class RenderWorker : public QObject
{
    Q_OBJECT
public:
    explicit RenderWorker(QObject *parent = nullptr);

    // Markdown, Fountain and OPML text of the document at path (the text in
    // the editor, not necessarily saved); answers the request's sequence.
    quint64 requestRendering(const QString &path, const QString &text);
    bool isBusy() const { return m_worker.isBusy(); }
    void waitForIdle() { m_worker.waitForIdle(); }

    // The same rendering, at once, on the calling thread.
    static RenderResult render(const QString &path, const QString &text);

Q_SIGNALS:
    void rendered(const tl::browser::RenderResult &result);

private:
    CoalescingWorker m_worker;
    quint64 m_sequence = 0;
};

} // namespace tl::browser

Q_DECLARE_METATYPE(tl::browser::RenderResult)
