#include "browser/render_worker.h"

#include "browser/formatted_rendering.h"
#include "convert/envelope.h"

#include <QUrl>

namespace tl::browser {

RenderWorker::RenderWorker(QObject *parent) : QObject(parent)
{
    qRegisterMetaType<RenderResult>();
    connect(&m_worker, &CoalescingWorker::finished, this,
            [this](const QVariant &result) { Q_EMIT rendered(result.value<RenderResult>()); });
}

RenderResult RenderWorker::render(const QString &path, const QString &text)
{
    RenderResult result;
    result.path = path;
    result.html = renderedPageOfText(path, text);
    result.body = convert::tl_getInnerHTML(result.html);
    result.baseUrl = QUrl::fromLocalFile(path).toString();
    return result;
}

quint64 RenderWorker::requestRendering(const QString &path, const QString &text)
{
    const quint64 sequence = ++m_sequence;
    m_worker.request([path, text, sequence] {
        RenderResult result = render(path, text);
        result.sequence = sequence;
        return QVariant::fromValue(result);
    });
    return sequence;
}

} // namespace tl::browser
