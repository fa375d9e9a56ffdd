// From the list to the screen: which view shows a document, and what it shows.
#include "browser/document_view_controller.h"

#include "browser/browser_keys.h"
#include "browser/document_pages.h"
#include "browser/document_view_state.h"
#include "convert/envelope.h"
#include "foundation/events.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "platform/alerts.h"
#include "platform/file_flags.h"
#include "platform/file_ops.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/first_line.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/properties.h"
#include "store/recent_items.h"
#include "store/text_conversions.h"

#include <QFileInfo>

namespace tl::browser {

namespace P = keys::property;
namespace S = keys::setting;

namespace {

bool setting(const char *key)
{
    return platform::settings().boolValue(QLatin1String(key));
}

// The list's search key without the quotation marks and wildcards at its ends.
QString cleanedSearchKey(const QString &key)
{
    qsizetype start = 0;
    qsizetype end = key.size();
    const auto trimmable = [](QChar c) { return c == u'"' || c == u'*'; };
    while (start < end && trimmable(key[start]))
        ++start;
    while (end > start && trimmable(key[end - 1]))
        --end;
    return key.mid(start, end - start);
}

bool isHTMLKind(const QString &path)
{
    return store::lowerCasedExtension(path).startsWith(u"htm");
}

} // namespace

QVariantMap relevantInheritedProperties(const QString &path)
{
    QVariantMap properties;
    if (path.isEmpty())
        return properties;
    for (const char *key : {P::TOC, P::CSS, P::MarkdownConverter, P::NotesFontName, P::NoteFontSize,
                            P::LineSpacing, P::TextColor, P::BackgroundColor, P::ReadOnly})
        properties.insert(QLatin1String(key),
                          store::tl_inheritedPropertyForKey(path, QLatin1String(key)));
    return properties;
}

TLKSDocumentViewController::TLKSDocumentViewController(QObject *parent)
    : QObject(parent), m_state(std::make_unique<State>())
{
}

TLKSDocumentViewController::~TLKSDocumentViewController()
{
    Scheduler &scheduler = Scheduler::main();
    for (const char *job : {"save", "toggle", "reselect", "clear"})
        scheduler.cancel(
            QStringLiteral("document %1 %2").arg(QLatin1String(job)).arg(quintptr(this)));
}

QString TLKSDocumentViewController::saveTimerKey() const
{
    return QStringLiteral("document save %1").arg(quintptr(this));
}

void TLKSDocumentViewController::setWindowEdited(bool edited)
{
    if (m_windowEdited == edited)
        return;
    m_windowEdited = edited;
    Q_EMIT windowEditedChanged(edited);
}

void TLKSDocumentViewController::selectNewDocument(const QString &selected,
                                                   const QString &newSearchKey)
{
    writeTextToFile();
    saveCurrentDocumentOffset();
    anchor.clear();

    if (selected.isEmpty() && setting(S::HideDocumentWhenChangingBook)) {
        Scheduler::main().schedule(QStringLiteral("document clear %1").arg(quintptr(this)), 0.1,
                                   [this] { clearDocument(); });
        return;
    }
    anchor = store::tl_pathAnchor(selected);
    const QString target = store::tl_pathWithoutAnchor(selected);
    const QString key = cleanedSearchKey(newSearchKey);
    if (target != path || viewThatIsVisible == NoView) {
        path = target;
        presentingToggledView = false;
        searchKey = key;
        showDocument();
        addToHistory(path);
    } else if (presentingToggledView) {
        // The same document in its other view: back to its own view.
        presentingToggledView = false;
        searchKey = key;
        Scheduler::main().schedule(QStringLiteral("document reselect %1").arg(quintptr(this)),
                                   kRetryDelay, [this] { showDocument(); });
        return;
    } else if (anchor.isEmpty() && key == searchKey && viewThatIsVisible == FormattedView) {
        reloadCurrentDocument();
    } else if (!anchor.isEmpty() || key != searchKey) {
        searchKey = key;
        showDocument();
    }
    if (onlyDocumentShown)
        Q_EMIT focusListRequested();
    else
        Q_EMIT bringToFrontRequested();
}

void TLKSDocumentViewController::showAgain(const QString &shown)
{
    m_recordsRecentItems = false;
    selectNewDocument(shown);
    m_recordsRecentItems = true;
}

void TLKSDocumentViewController::clearDocument()
{
    path.clear();
    viewThatIsVisible = NoView;
    plainText.clear();
    formattedPage = {};
    md5hash.clear();
    m_state->session.reset();
    setWindowEdited(false);
    Q_EMIT documentShown();
}

void TLKSDocumentViewController::newDocumentInBook(const QString &book, const QString &extension)
{
    writeTextToFile();
    saveCurrentDocumentOffset();
    path.clear();
    parentPath = book;
    fileExtensionForNewDoc = extension;
    presentingToggledView = false;
    showDocument();
}

void TLKSDocumentViewController::showDocument()
{
    if (store::libraryRoot().isEmpty())
        return;
    Scheduler::main().cancel(saveTimerKey());
    iCloudHaveUnresolvedConflict = false;
    currentPlist = relevantInheritedProperties(path);
    embeddedContexts.clear();
    if (!path.isEmpty())
        parentPath = path::deletingLastComponent(path);
    stringEncoding = store::TextEncoding::UTF8;
    titleIsFirstLineOfText = false;
    md5hash.clear();
    setWindowEdited(false);
    viewThatIsVisible = NoView;
    plainText.clear();
    formattedPage = {};
    formattedMainFrameURL.clear();
    m_frameURL.clear();
    m_state->loadedText.clear();
    m_state->innerHTML.clear();
    m_state->outerHTML.clear();
    m_state->session =
        path.isEmpty() ? nullptr : std::make_unique<store::OpenDocumentSession>(path);

    modDateOfPresentedDocument = platform::modificationDate(path).value_or(QDateTime());
    modDateOfPresentedPlist =
        platform::modificationDate(store::tl_plistPath(path)).value_or(QDateTime());

    if (path.isEmpty()) {
        // A new document: plain text unless it is to be a formatted one.
        const bool formatted = fileExtensionForNewDoc == u"html";
        m_state->decision = {
            formatted ? FormattedView : PlainTextView, FormattedSource::None, {}, false, false};
        formattedPage.editable = formatted;
    } else {
        m_state->decision = decideView(path, presentingToggledView);
    }
    viewThatIsVisible = m_state->decision.view;
    viewToggles = m_state->decision.toggles;
    toggleTitle = viewToggles ? m_state->decision.toggleTitle : QString();
    if (viewThatIsVisible == PlainTextView)
        loadPlainText();
    else if (viewThatIsVisible == FormattedView && !path.isEmpty())
        loadFormattedPage();
    // A kind whose converter is missing or failed shows as a preview.
    if (viewThatIsVisible == FormattedView && !path.isEmpty() && formattedPage.html.isEmpty() &&
        formattedPage.url.isEmpty())
        viewThatIsVisible = PreviewView;
    applyLockRule();
    readOffsets();
    if (m_recordsRecentItems && !path.isEmpty() && QFileInfo::exists(path))
        store::tl_addToRecentItems(path);
    assignBacklinksOnShow();
    Q_EMIT documentShown();
}

bool TLKSDocumentViewController::documentIsInLibrary() const
{
    return !path.isEmpty() && store::tl_itemIsChildOfTavelle(path);
}

void TLKSDocumentViewController::loadPlainText()
{
    if (path.isEmpty())
        return;
    stringEncoding = store::tl_textEncodingOfFile(path);
    QString text = store::tl_stringWithContentsOfFile(path, stringEncoding).value_or(QString());
    const QString extension = store::lowerCasedExtension(path);
    if (extension == u"html" &&
        !store::tl_propertyForKey(path, QLatin1String(P::Markdown)).toString().isEmpty()) {
        text = markdownOfRepresentation(text);
    } else if (isHTMLKind(path) && convert::tl_generatorIsTavelle(text)) {
        const QString inner = convert::tl_getInnerHTML(text);
        text = setting(S::ShowHTMLHeader) ? convert::tl_createFormattedDocWithBody(path, inner)
                                          : inner;
    }
    plainText = text;
    m_state->loadedText = text;
    noteEmbeddedContexts(text);
    titleIsFirstLineOfText =
        documentIsInLibrary() && store::tl_stringMatchesFirstLineOfText(
                                     path::deletingExtension(path::lastComponent(path)), text);
}

void TLKSDocumentViewController::loadFormattedPage()
{
    PageRequest request{path, m_state->decision.source, {}};
    if (request.source != FormattedSource::WebLocation &&
        request.source != FormattedSource::Image &&
        request.source != FormattedSource::MindMapPreview) {
        stringEncoding = store::tl_textEncodingOfFile(path);
        request.text = store::tl_stringWithContentsOfFile(path, stringEncoding).value_or(QString());
    }
    const BuiltPage built = buildFormattedPage(request);
    formattedPage = built.page;
    if (built.rewritten)
        modDateOfPresentedDocument = *built.rewritten;
    formattedMainFrameURL = formattedPage.url.isEmpty() ? formattedPage.baseUrl : formattedPage.url;
    if (m_state->decision.readOnly)
        formattedPage.editable = false;
    if (formattedPage.editable) {
        m_state->innerHTML = convert::tl_getInnerHTML(request.text);
        noteEmbeddedContexts(store::tl_htmlToPlainText(m_state->innerHTML));
    }
}

void TLKSDocumentViewController::applyLockRule()
{
    lock = DocumentLock::None;
    if (path.isEmpty())
        return;
    if (path.contains(u"/com.apple.documentVersions/"))
        lock = DocumentLock::VersionsPath;
    else if (platform::hasImmutableFlag(path))
        lock = DocumentLock::ImmutableFlag;
    else if (store::tl_propertyForKey(path, QLatin1String(P::ReadOnly)).toString() == u"1")
        lock = DocumentLock::ReadOnlyProperty;
}

void TLKSDocumentViewController::readOffsets()
{
    characterOffset = 0;
    formattedOffset = 0;
    currentPDFPage = 0;
    if (path.isEmpty())
        return;
    characterOffset =
        store::tl_propertyForKey(path, QLatin1String(P::CharacterOffset)).toLongLong();
    formattedOffset = store::tl_propertyForKey(path, QLatin1String(P::Offset)).toDouble();
    currentPDFPage = store::tl_propertyForKey(path, QLatin1String(P::CurrentPDFPage)).toLongLong();
}

void TLKSDocumentViewController::reloadCurrentDocument()
{
    // What the user typed reaches the disk before the document is read again.
    if (m_windowEdited)
        writeTextToFile();
    showDocument();
}

void TLKSDocumentViewController::saveCurrentDocumentOffset()
{
    if (path.isEmpty() || !QFileInfo::exists(path))
        return;
    switch (viewThatIsVisible) {
    case PlainTextView:
        store::tl_setProperty(path, characterOffset, QLatin1String(P::CharacterOffset));
        break;
    case FormattedView:
        store::tl_setProperty(path, formattedOffset, QLatin1String(P::Offset));
        break;
    case PDFView:
        store::tl_setProperty(path,
                              QString::asprintf("%lu", static_cast<unsigned long>(currentPDFPage)),
                              QLatin1String(P::CurrentPDFPage));
        break;
    default:
        return;
    }
    // The properties file's new date is the view's own write, not an outside change.
    modDateOfPresentedPlist =
        platform::modificationDate(store::tl_plistPath(path)).value_or(QDateTime());
}

bool TLKSDocumentViewController::tl_togglePlainTextAndFormattedView()
{
    if (!isKeyWindow) {
        logLine(QStringLiteral("not key window, ignoring toggle"));
        return false;
    }
    if (!m_state->decision.toggles)
        return false;
    if (m_windowEdited) {
        writeTextToFile();
        Scheduler::main().schedule(QStringLiteral("document toggle %1").arg(quintptr(this)),
                                   kRetryDelay, [this] { tl_togglePlainTextAndFormattedView(); });
        return false;
    }
    saveCurrentDocumentOffset();
    presentingToggledView = !presentingToggledView;
    showDocument();
    return true;
}

bool TLKSDocumentViewController::toggleFromFormattedClick(const QString &elementHTML,
                                                          const QString &htmlUpToElement)
{
    const QString element = store::tl_markdownifyHTML(elementHTML).trimmed();
    const QString before = store::tl_markdownifyHTML(htmlUpToElement);
    if (!tl_togglePlainTextAndFormattedView())
        return false;
    if (element.isEmpty() || viewThatIsVisible != PlainTextView)
        return true;
    // The clicked element is the how-manieth of its kind in the text up to it.
    const qsizetype earlier = before.count(element) > 0 ? before.count(element) - 1 : 0;
    qsizetype at = -1;
    for (qsizetype n = 0; n <= earlier; ++n) {
        const qsizetype next = plainText.indexOf(element, at + 1);
        if (next < 0)
            break;
        at = next;
    }
    if (at >= 0)
        characterOffset = at;
    return true;
}

bool TLKSDocumentViewController::tl_showUnlockAlert()
{
    if (lock == DocumentLock::None)
        return true;
    if (lock == DocumentLock::VersionsPath)
        return false;
    const QString title =
        QLatin1String(lock == DocumentLock::ImmutableFlag ? kLockedInFinderAlert : kReadOnlyAlert);
    const int answer = platform::alerts().run(
        {title, QLatin1String(kUnlockAlertText), {QStringLiteral("OK"), QStringLiteral("Unlock")}});
    if (answer != 1)
        return false;
    store::tl_removePropertyForKey(path, QLatin1String(P::ReadOnly));
    modDateOfPresentedPlist =
        platform::modificationDate(store::tl_plistPath(path)).value_or(QDateTime());
    currentPlist = relevantInheritedProperties(path);
    applyLockRule();
    return !isLocked();
}

bool TLKSDocumentViewController::conflictAllowsEditing()
{
    if (iCloudHaveUnresolvedConflict)
        Q_EMIT unresolvedConflictCheckRequested();
    return !iCloudHaveUnresolvedConflict;
}

bool TLKSDocumentViewController::textShouldBeginEditing()
{
    if (!conflictAllowsEditing())
        return false;
    if (isLocked() && !tl_showUnlockAlert())
        return false;
    if (md5hash.isEmpty())
        md5hash = hashOf(textToSave());
    return true;
}

bool TLKSDocumentViewController::formattedShouldBeginEditing(const QString &innerHTML)
{
    if (!formattedPage.editable || !conflictAllowsEditing() ||
        (isLocked() && !tl_showUnlockAlert()))
        return false;
    if (md5hash.isEmpty()) {
        m_state->innerHTML = innerHTML;
        md5hash = hashOf(textToSave());
    }
    return true;
}

void TLKSDocumentViewController::scheduleSave(double delay)
{
    setWindowEdited(true);
    if (setting(S::NoAutosaveText))
        return;
    Scheduler::main().schedule(saveTimerKey(), delay, [this] { writeTextToFile(); });
}

void TLKSDocumentViewController::textDidChange(const QString &text, bool caretLineHasTextBefore)
{
    // Editing began with this change if the view did not ask first.
    if (md5hash.isEmpty())
        md5hash = hashOf(textToSave());
    plainText = text;
    scheduleSave(caretLineHasTextBefore ? kSaveDelayAfterText : kSaveDelay);
}

void TLKSDocumentViewController::formattedTextDidChange(const QString &innerHTML,
                                                        const QString &outerHTML)
{
    if (md5hash.isEmpty())
        md5hash = hashOf(textToSave());
    m_state->innerHTML = innerHTML;
    m_state->outerHTML = outerHTML;
    scheduleSave(kSaveDelayAfterText);
}

void TLKSDocumentViewController::startObserving()
{
    const auto observe = [this](const char *name, auto handler) {
        m_state->observers.push_back(std::make_unique<ScopedObserver>(
            QLatin1String(name), [alive = std::weak_ptr<bool>(m_state->alive),
                                  handler](const QString &, const QVariantMap &payload) {
                // Views and their controller live on the main thread.
                runOnMainThread([alive, handler, payload] {
                    if (alive.lock())
                        handler(payload);
                });
            }));
    };
    const auto text = [](const QVariantMap &payload, const char *key) {
        return payload.value(QLatin1String(key)).toString();
    };
    observe(events::SaveCurrentDocument, [this](const QVariantMap &) { writeTextToFile(); });
    // The list's selection shows in the main window; other windows keep theirs.
    observe(events::NewDocumentSelected, [this, text](const QVariantMap &p) {
        if (isMainWindow)
            selectNewDocument(text(p, "path"), text(p, "searchkey"));
    });
    observe(events::FileModifiedOnDisk,
            [this, text](const QVariantMap &p) { checkIfDocumentNeedsReload(text(p, "path")); });
    observe(events::ReloadCurrentDocument,
            [this](const QVariantMap &) { reloadCurrentDocument(); });
    observe(events::FileMoved, [this, text](const QVariantMap &p) {
        const QString from = text(p, "originalPath");
        if (!path.isEmpty() && (path == from || path.startsWith(from + u'/')))
            adoptPath(text(p, "newPath") + path.mid(from.size()));
    });
    observe(events::FileDeletedFromDisk, [this, text](const QVariantMap &p) {
        const QString gone = text(p, "path");
        if (!path.isEmpty() && (path == gone || path.startsWith(gone + u'/')) &&
            !QFileInfo::exists(path))
            clearDocument();
    });
}

void TLKSDocumentViewController::adoptPath(const QString &newPath)
{
    if (newPath == path)
        return;
    renameInHistory(path, newPath);
    path = newPath;
    parentPath = path::deletingLastComponent(newPath);
    if (m_state->session)
        m_state->session->setPath(newPath);
    else
        m_state->session = std::make_unique<store::OpenDocumentSession>(newPath);
    Q_EMIT pathChanged(newPath);
}

} // namespace tl::browser
