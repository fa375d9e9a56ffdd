#include "document/formatted_view.h"

#include "document/library_page.h"
#include "document/page_bridge.h"
#include "platform/folders.h"
#include "store/log.h"

#include <QDir>
#include <QFile>
#include <QVBoxLayout>
#include <QWebChannel>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineSettings>
#include <QWebEngineView>
#include <utility>

namespace tl::app {

namespace {

// setHtml takes pages up to 2 MB; larger ones go through a work file.
constexpr qsizetype kLargestInlinePage = 1500 * 1024;

QString resourceText(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The web channel's client and the page script, in a world of their own.
QWebEngineScript pageScript()
{
    QWebEngineScript script;
    script.setName(QStringLiteral("tavelle-page"));
    script.setSourceCode(resourceText(QStringLiteral(":/qtwebchannel/qwebchannel.js")) +
                         resourceText(QStringLiteral(":/tavelle/web/page.js")));
    script.setInjectionPoint(QWebEngineScript::DocumentReady);
    script.setWorldId(QWebEngineScript::ApplicationWorld);
    script.setRunsOnSubFrames(false);
    return script;
}

QString insertedInHead(const QString &html, const QString &tag)
{
    const qsizetype head = html.indexOf(QStringLiteral("<head"), 0, Qt::CaseInsensitive);
    if (head >= 0) {
        const qsizetype end = html.indexOf(u'>', head);
        if (end > 0)
            return html.left(end + 1) + tag + html.mid(end + 1);
    }
    return tag + html;
}

// Scripts of the document itself are refused by the page's own policy; the
// program's script runs in its own world, which the policy does not reach.
QString withoutDocumentScripts(const QString &html)
{
    return insertedInHead(html, QStringLiteral("<meta http-equiv=\"Content-Security-Policy\" "
                                               "content=\"script-src 'none'; object-src 'none'; "
                                               "frame-src 'none'\">"));
}

QString bodyOf(const QString &html)
{
    const qsizetype open = html.indexOf(QStringLiteral("<body"), 0, Qt::CaseInsensitive);
    const qsizetype start = open < 0 ? -1 : html.indexOf(u'>', open);
    const qsizetype end = html.lastIndexOf(QStringLiteral("</body>"), -1, Qt::CaseInsensitive);
    if (start < 0 || end < start)
        return {};
    return html.mid(start + 1, end - start - 1);
}

} // namespace

FormattedView::FormattedView(QWidget *parent)
    : QWidget(parent), m_view(new QWebEngineView(this)), m_page(new LibraryPage(m_view)),
      m_channel(new QWebChannel(this)), m_bridge(new PageBridge(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);
    m_view->setPage(m_page);
    m_view->setContextMenuPolicy(Qt::NoContextMenu);
    QWebEngineSettings *settings = m_page->settings();
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, false);
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, true);
    settings->setAttribute(QWebEngineSettings::PluginsEnabled, false);
    settings->setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
    settings->setAttribute(QWebEngineSettings::JavascriptCanAccessClipboard, false);
    m_page->scripts().insert(pageScript());
    m_channel->registerObject(QStringLiteral("bridge"), m_bridge);
    m_page->setWebChannel(m_channel, QWebEngineScript::ApplicationWorld);

    connect(m_page, &LibraryPage::libraryLinkActivated, this, &FormattedView::libraryLinkActivated);
    connect(m_page, &LibraryPage::notesImportRequested, this, &FormattedView::notesImportRequested);
    connect(m_page, &QWebEnginePage::urlChanged, this,
            [this](const QUrl &url) { Q_EMIT frameUrlChanged(url.toString()); });
    connect(m_page, &QWebEnginePage::loadFinished, this, [this] { Q_EMIT pageLoaded(); });
    connect(m_bridge, &PageBridge::ready, this, [this] {
        m_ready = true;
        Q_EMIT m_bridge->editableChanged(m_editable);
        if (m_pendingOffset > 0)
            Q_EMIT m_bridge->scrollRequested(m_pendingOffset);
        if (!m_pendingAnchor.isEmpty())
            Q_EMIT m_bridge->anchorRequested(std::exchange(m_pendingAnchor, {}));
    });
    connect(m_bridge, &PageBridge::pushed, this, &FormattedView::pageLoaded);
    connect(m_bridge, &PageBridge::scrollChanged, this, [this](double y) {
        m_offset = y;
        Q_EMIT scrolled(y);
    });
    connect(m_bridge, &PageBridge::checkboxClicked, this, &FormattedView::checkboxClicked);
    connect(m_bridge, &PageBridge::editingBeginsWith, this, [this](const QString &html) {
        if (!m_editing) {
            m_editing = true;
            Q_EMIT editingBegins(html);
        }
    });
    connect(m_bridge, &PageBridge::editedTo, this, &FormattedView::edited);
    connect(m_bridge, &PageBridge::doubleClickedAt, this, &FormattedView::doubleClicked);
    connect(m_bridge, &PageBridge::sameDocumentLinkActivated, m_page,
            &LibraryPage::sameDocumentLinkClicked);
}

void FormattedView::showPage(const browser::FormattedPage &page, const QString &documentPath,
                             double offset)
{
    const bool sameDocument = documentPath == m_documentPath && !documentPath.isEmpty();
    m_documentPath = documentPath;
    m_editable = page.editable;
    m_editing = false;
    // Pages with scripts load anew, so their scripts run.
    const bool ownPage = page.url.isEmpty() && page.documentScriptsAllowed && !page.editable &&
                         !page.html.contains(QStringLiteral("<script"), Qt::CaseInsensitive);
    if (m_ready && m_ownPage && ownPage) {
        const QString body = bodyOf(page.html);
        if (sameDocument && !body.isEmpty()) {
            Q_EMIT m_bridge->bodyPushed(body);
            return;
        }
        m_offset = offset;
        Q_EMIT m_bridge->pagePushed(
            insertedInHead(page.html,
                           QStringLiteral("<base href=\"%1\">").arg(page.baseUrl.toHtmlEscaped())),
            offset);
        Q_EMIT frameUrlChanged(page.baseUrl);
        return;
    }
    m_ownPage = ownPage;
    m_offset = offset;
    m_pendingOffset = offset;
    load(page);
}

void FormattedView::load(const browser::FormattedPage &page)
{
    m_ready = false;
    m_pendingAnchor.clear();
    m_page->setShowsWebLocation(!page.url.isEmpty() && !page.url.startsWith(u"file:"));
    // Pages loaded by address are the document as it is, and run nothing.
    m_page->settings()->setAttribute(QWebEngineSettings::JavascriptEnabled, page.url.isEmpty());
    if (!page.url.isEmpty()) {
        m_page->load(QUrl(page.url));
        return;
    }
    const QString html =
        page.documentScriptsAllowed ? page.html : withoutDocumentScripts(page.html);
    const QUrl base(page.baseUrl);
    if (html.size() <= kLargestInlinePage) {
        m_page->setHtml(html, base);
        return;
    }
    // Beside the document, so its relative references still resolve.
    const QString folder = platform::temporaryFolder();
    QDir().mkpath(folder);
    const QString file = folder + QStringLiteral("/formatted-view.html");
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        logLine(QStringLiteral("formatted view: cannot write %1").arg(file));
        return;
    }
    out.write(
        insertedInHead(html, QStringLiteral("<base href=\"%1\">").arg(page.baseUrl.toHtmlEscaped()))
            .toUtf8());
    out.close();
    m_page->load(QUrl::fromLocalFile(file));
}

void FormattedView::scrollToAnchor(const QString &anchor)
{
    // Signals reach the page in order: after a pushed page, not before it.
    if (m_ready)
        Q_EMIT m_bridge->anchorRequested(anchor);
    else
        m_pendingAnchor = anchor;
}

void FormattedView::insertText(const QString &text)
{
    if (m_ready && m_editable)
        Q_EMIT m_bridge->textInserted(text);
}

void FormattedView::insertHTML(const QString &html)
{
    if (m_ready && m_editable)
        Q_EMIT m_bridge->htmlInserted(html);
}

void FormattedView::setEditable(bool editable)
{
    m_editable = editable;
    m_editing = false;
    if (m_ready)
        Q_EMIT m_bridge->editableChanged(editable);
}

void FormattedView::clear()
{
    m_documentPath.clear();
    m_ready = false;
    m_ownPage = false;
    m_page->setHtml(QString());
}

} // namespace tl::app
