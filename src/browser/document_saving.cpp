// From the keyboard to the disk: writeTextToFile, the one writer of a
// document's text, and the view's other writes (rename on command, a check
// box ticked in the rendered page).
#include "browser/browser_keys.h"
#include "browser/document_pages.h"
#include "browser/document_view_controller.h"
#include "browser/document_view_state.h"
#include "convert/envelope.h"
#include "convert/html_to_markdown.h"
#include "convert/references.h"
#include "foundation/clock.h"
#include "foundation/digest.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "foundation/scheduler.h"
#include "links/path_lock.h"
#include "platform/alerts.h"
#include "platform/file_ops.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/first_line.h"
#include "store/item_operations.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/log.h"
#include "store/properties.h"
#include "store/recent_items.h"
#include "store/safe_names.h"
#include "tasks/markdown_checkbox.h"

#include <QFileInfo>
#include <QUrl>

namespace tl::browser {

namespace P = keys::property;
namespace S = keys::setting;

namespace {

platform::Settings &settings()
{
    return platform::settings();
}

void post(const char *name, const QVariantMap &payload)
{
    NotificationCenter::defaultCenter().post(QLatin1String(name), payload);
}

bool isHTMLKind(const QString &path)
{
    return store::lowerCasedExtension(path).startsWith(u"htm");
}

bool isMarkdownHTML(const QString &path)
{
    return store::lowerCasedExtension(path) == u"html" &&
           !store::tl_propertyForKey(path, QLatin1String(P::Markdown)).toString().isEmpty();
}

// The formatted view's inner HTML without the empty leftovers of editing.
QString cleanedInnerHTML(QString html)
{
    for (const char *empty : {"<ul></ul>", "<ol></ol>", "<li></li>", "<h1><br></h1>"})
        html.remove(QLatin1String(empty));
    html.replace(QStringLiteral("<li><li "), QStringLiteral("<li "));
    static const Regex emptyElements[] = {
        Regex(QStringLiteral("<a href=\"[^>]*?><br></a>")),
        Regex(QStringLiteral("<a href=\"[^>]*?>&nbsp;</a>")),
        Regex(QStringLiteral("<a href=\"[^>]*?>\\s*?</a>")),
        Regex(QStringLiteral("<div[^>]*?></div>")),
    };
    for (const Regex &expression : emptyElements)
        html = expression.replaceAll(html, QString());
    return convert::tl_stringByRemovingImageCacheMarkers(html);
}

// The text of formatted HTML, for its first line.
QString textOfHTML(const QString &html)
{
    static const Regex lineBreaks(QStringLiteral("<(br|/p|/div|/h[1-6]|/li)[^>]*>"),
                                  RegexOption::CaseInsensitive);
    static const Regex tags(QStringLiteral("<.+?>"), RegexOption::DotMatchesNewline);
    QString text = tags.replaceAll(lineBreaks.replaceAll(html, QStringLiteral("\n")), QString());
    text.replace(QStringLiteral("&nbsp;"), QStringLiteral(" "));
    text.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
    text.replace(QStringLiteral("&lt;"), QStringLiteral("<"));
    text.replace(QStringLiteral("&gt;"), QStringLiteral(">"));
    return text;
}

QString sortableDateTimeString()
{
    return clock().now().toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH.mm.ss"));
}

} // namespace

QString TLKSDocumentViewController::textToSave() const
{
    if (viewThatIsVisible == FormattedView)
        return cleanedInnerHTML(m_state->innerHTML);
    return plainText;
}

QString TLKSDocumentViewController::hashOf(const QString &text) const
{
    const QByteArray bytes = store::encodedText(text, stringEncoding).value_or(text.toUtf8());
    return md5Hex(bytes, true);
}

void TLKSDocumentViewController::writeTextToFile()
{
    Scheduler::main().cancel(saveTimerKey());
    if (md5hash.isEmpty()) {
        logLine(QStringLiteral("no hash, not saving document"));
        return;
    }
    if (viewThatIsVisible != PlainTextView &&
        !(viewThatIsVisible == FormattedView && formattedPage.editable)) {
        logLine(viewThatIsVisible == FormattedView ? QStringLiteral("non editable formatted doc")
                                                   : QStringLiteral("non editable generic doc"));
        return;
    }
    if (viewThatIsVisible == FormattedView && !m_frameURL.isEmpty() &&
        m_frameURL != formattedMainFrameURL && m_frameURL != QUrl::fromLocalFile(path).toString()) {
        logLine(QStringLiteral("formatted document navigated away, don't save"));
        return;
    }
    const bool force = forceSave;
    if (force)
        logLine(QStringLiteral("## enforced saving %1").arg(path));
    forceSave = false;

    const QString text = textToSave();
    if (path.isEmpty() && text.isEmpty())
        return;
    const QString hash = hashOf(text);
    const store::TextEncoding hashedIn = stringEncoding;
    const bool changed = hash != md5hash || (path.isEmpty() && !text.isEmpty());
    if (!changed && !force) {
        logLine(QStringLiteral("text unchanged"));
        setWindowEdited(false);
        return;
    }
    const QString originalPath = path;
    if (path.isEmpty()) {
        if (!saveNewDocument(text))
            return;
    } else {
        const QString plain = viewThatIsVisible == FormattedView ? textOfHTML(text) : text;
        const QString stem = path::deletingExtension(path::lastComponent(path));
        if (titleIsFirstLineOfText && !store::tl_stringMatchesFirstLineOfText(stem, plain)) {
            if (!renameToFirstLine(text, store::tl_firstLineOfText(plain)))
                return;
        } else if (!saveExistingDocument(text)) {
            return;
        }
    }
    if (!path.isEmpty()) {
        afterSaving(stringEncoding == hashedIn ? hash : hashOf(text), originalPath);
        keepContextsInStep(text);
    }
}

bool TLKSDocumentViewController::saveNewDocument(const QString &text)
{
    const bool formatted = viewThatIsVisible == FormattedView;
    const QString defaultType = settings().string(QLatin1String(S::DefaultDocumentType));
    QString extension = !fileExtensionForNewDoc.isEmpty() ? fileExtensionForNewDoc
                        : !defaultType.isEmpty()          ? defaultType
                                                          : QStringLiteral("html");
    if (formatted)
        extension = QStringLiteral("html");
    else if (extension == u"html")
        extension = defaultType == u"md" ? QStringLiteral("md") : QStringLiteral("txt");

    const QString firstLine = store::tl_firstLineOfText(formatted ? textOfHTML(text) : text);
    const QString name =
        (firstLine.isEmpty() ? sortableDateTimeString() : firstLine) + u'.' + extension;
    const QString target = store::tl_uniqueNameForFileatPath(name, parentPath);
    const QString contents =
        formatted ? convert::tl_createFormattedDocWithBody(target, text) : text;
    if (!store::tl_writeToFile(contents, target, false, stringEncoding)) {
        logLine(QStringLiteral("could not save! path: %1; parent: %2; suggested %3\n Contents %4")
                    .arg(path, parentPath, target, text));
        return false;
    }
    adoptPath(target);
    store::tl_setCreationDate(target);
    store::tl_addToRecentItems(target);
    titleIsFirstLineOfText = true;
    setWindowEdited(false);
    if (isMainWindow && !settings().boolValue(QLatin1String(S::NoAutosaveText)))
        post(events::NewFileCreated, {{"path", target}});
    post(events::ItemsSelectedInOutlineOrList, {{"paths", QStringList{target}}});
    logLine(QStringLiteral("saved file: %1").arg(target));
    return true;
}

bool TLKSDocumentViewController::moveShownDocument(const QString &target)
{
    // The session would hand the move to the main queue; the view moves its
    // own document at once and follows it.
    m_state->session.reset();
    const bool moved = store::tl_moveItemToPath(path, target);
    m_state->session = std::make_unique<store::OpenDocumentSession>(moved ? target : path);
    if (moved)
        adoptPath(target);
    return moved;
}

bool TLKSDocumentViewController::renameToFirstLine(const QString &text, const QString &firstLine)
{
    if (firstLine.isEmpty()) {
        // All text gone: the document goes with it.
        store::tl_deleteItemAtPath(path);
        m_state->session.reset();
        path.clear();
        md5hash.clear();
        setWindowEdited(false);
        Q_EMIT pathChanged(path);
        return false;
    }
    const QString extension = path::extension(path);
    const QString oldName = path::lastComponent(path);
    QString target = store::tl_uniqueNameForFileatPath(
        extension.isEmpty() ? firstLine : firstLine + u'.' + extension, parentPath);
    const QString newName = path::lastComponent(target);
    if (newName.compare(oldName, Qt::CaseInsensitive) == 0) {
        // The file system may not see a change of case alone: go through another name.
        logLine(QStringLiteral("just changing case, so rename"));
        const QString interim =
            path::appendingComponent(parentPath, QStringLiteral("._") + newName);
        if (!moveShownDocument(interim) || !moveShownDocument(target))
            return false;
    } else if (!moveShownDocument(target)) {
        return false;
    }
    store::tl_addToRecentItems(path);
    return saveExistingDocument(text);
}

bool TLKSDocumentViewController::saveExistingDocument(const QString &text)
{
    QString contents = text;
    if (viewThatIsVisible == FormattedView) {
        const QString page =
            m_state->outerHTML.isEmpty()
                ? store::tl_stringWithContentsOfFile(path, stringEncoding).value_or(QString())
                : m_state->outerHTML;
        contents = page.isEmpty() || convert::tl_generatorIsTavelle(page)
                       ? convert::tl_createFormattedDocWithBody(path, text)
                       : page;
    } else if (isMarkdownHTML(path)) {
        contents = plainTextRepresentationFile(path, text);
    } else if (isHTMLKind(path) && !text.contains(u"<head>")) {
        contents = convert::tl_createFormattedDocWithBody(path, text);
    }
    // A file from elsewhere may be the only copy of its text: it is replaced
    // through a temporary file, so a failed write leaves it as it was.
    const bool throughTemporary = !documentIsInLibrary();
    bool written = false;
    {
        // A link rewrite reads, checks and replaces this file under the same
        // lock: it never reads a half-written text nor replaces a newer one.
        const auto lock = links::lockPath(path);
        store::WriteError error = store::WriteError::None;
        written = store::tl_writeToFile(contents, path, throughTemporary, stringEncoding, &error);
        if (!written && error == store::WriteError::Unencodable &&
            stringEncoding != store::TextEncoding::UTF8) {
            // A character the old encoding lacks: the document becomes UTF-8.
            written = store::tl_writeToFile(contents, path, throughTemporary,
                                            store::TextEncoding::UTF8, &error);
            if (written) {
                stringEncoding = store::TextEncoding::UTF8;
                logLine(QStringLiteral("Converted to UTF8"));
            }
        }
    }
    if (!written) {
        const QString reason = QStringLiteral("The document \"%1\" could not be written.")
                                   .arg(path::lastComponent(path));
        logLine(QStringLiteral("saving error: %1").arg(reason));
        platform::alerts().run({QLatin1String(kSavingErrorAlert), reason, {QStringLiteral("OK")}});
        return false;
    }
    setWindowEdited(false);
    return true;
}

void TLKSDocumentViewController::afterSaving(const QString &hash, const QString &originalPath)
{
    md5hash = hash;
    modDateOfPresentedDocument = platform::modificationDate(path).value_or(QDateTime());
    followLinksAfterSave(originalPath);
    if (!originalPath.isEmpty() && originalPath != path)
        post(events::FileMoved,
             {{"originalPath", originalPath}, {"newPath", path}, {"silentReload", "1"}});
    else
        post(events::FileModifiedOnDisk, {{"path", path}});
}

bool TLKSDocumentViewController::tl_renameToFirstLineOfText()
{
    if (path.isEmpty())
        return false;
    const QString text = viewThatIsVisible == FormattedView ? textOfHTML(textToSave()) : plainText;
    const QString firstLine = store::tl_firstLineOfText(text);
    if (firstLine.isEmpty())
        return false;
    const QString extension = path::extension(path);
    const QString target = path::appendingComponent(
        parentPath, store::tl_escapeIllegalCharacters(firstLine) +
                        (extension.isEmpty() ? QString() : u'.' + extension));
    if (target == path)
        return true;
    if (QFileInfo::exists(target) && target.compare(path, Qt::CaseInsensitive) != 0) {
        platform::alerts().run({QLatin1String(kCannotRenameAlert),
                                QString::fromLatin1(kTitleTakenText).arg(firstLine),
                                {QStringLiteral("OK")}});
        return false;
    }
    const QString originalPath = path;
    if (!moveShownDocument(target))
        return false;
    titleIsFirstLineOfText = true;
    post(events::FileMoved,
         {{"originalPath", originalPath}, {"newPath", path}, {"silentReload", "1"}});
    return true;
}

void TLKSDocumentViewController::checkboxClickedInPage(const QString &itemHTML, int occurrence)
{
    toggleMarkdownCheckboxForTask(convert::tl_markdownifyHTML(itemHTML).trimmed(), occurrence);
}

void TLKSDocumentViewController::toggleMarkdownCheckboxForTask(const QString &task, int pos)
{
    const auto toggled = tasks::toggleMarkdownCheckboxForTask(
        path, task, pos < 0 ? std::nullopt : std::optional<qsizetype>(pos));
    if (toggled != tasks::CheckboxToggle::Toggled)
        return;
    const QString text =
        store::tl_stringWithContentsOfFile(path, stringEncoding).value_or(QString());
    // The view's own write is no outside change.
    modDateOfPresentedDocument = platform::modificationDate(path).value_or(QDateTime());
    plainText = text;
    m_state->loadedText = text;
    if (viewThatIsVisible == FormattedView) {
        loadFormattedPage();
        Q_EMIT formattedPageChanged();
    } else {
        Q_EMIT plainTextReplaced();
    }
}

} // namespace tl::browser
