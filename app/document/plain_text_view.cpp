#include "plain_text_view.h"

#include "contexts/tag_database.h"
#include "document/completion_popup.h"
#include "document/hanging_indent_layout.h"
#include "document/markdown_highlighter.h"
#include "document/sort_lines_dialog.h"
#include "editing/drops.h"
#include "editing/keystroke.h"
#include "editing/line_operations.h"
#include "editing/lists.h"
#include "editing/markdown_wrapping.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "store/library_root.h"
#include "store/style_values.h"
#include "theme.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFileInfo>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QTextBlock>
#include <QTextCursor>
#include <QUrl>

namespace tl::app {

using namespace editing;

PlainTextView::PlainTextView(QWidget *parent) : QPlainTextEdit(parent)
{
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(false);
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    document()->setDocumentMargin(16);
    m_layout = new HangingIndentLayout(document());
    document()->setDocumentLayout(m_layout);
    m_highlighter = new MarkdownHighlighter(document(), m_layout);
    m_popup = new CompletionPopup(this);
    connect(m_popup, &CompletionPopup::chosen, this, [this](int index) {
        if (!m_completions)
            return;
        const Completions completions = *m_completions;
        m_completions.reset();
        applyRule([&](EditorBuffer &b, EditorContext &) {
            tl_insertCompletion(b, completions, index, store::libraryRoot());
        });
    });
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        if (m_loading)
            return;
        const QTextCursor cursor = textCursor();
        const bool textBefore =
            !cursor.block().text().left(cursor.positionInBlock()).trimmed().isEmpty();
        Q_EMIT textEdited(m_highlighter->text(), textBefore); // kept in step, not rebuilt
    });
    connect(this, &QPlainTextEdit::cursorPositionChanged, this,
            [this] { Q_EMIT caretMoved(textCursor().position()); });
    connect(&Theme::instance(), &Theme::changed, this, [this] { updateStyle(); });
}

void PlainTextView::showText(const QString &text, qint64 offset)
{
    m_loading = true;
    m_editing = false;
    m_highlighter->setSuspended(true);
    setPlainText(text);
    m_highlighter->setSuspended(false);
    updateStyle();
    QTextCursor cursor = textCursor();
    cursor.setPosition(int(qBound<qint64>(0, offset, text.size())));
    setTextCursor(cursor);
    centerCursor();
    m_loading = false;
}

void PlainTextView::setDocumentFont(const QString &family, int pointSize, double lineSpacing)
{
    QFont face = family.isEmpty() ? QFont() : QFont(family);
    face.setPointSize(pointSize > 0 ? pointSize : 14);
    setFont(face);
    m_lineSpacing = lineSpacing > 0 ? lineSpacing : 1.0;
    m_layout->setLineSpacing(m_lineSpacing);
}

void PlainTextView::setDocumentPath(const QString &path)
{
    m_path = path;
}

namespace {

constexpr char HighlightMarkdownKey[] = "HighlightMarkdown";
constexpr char HighlightMarkdownInAllDocsKey[] = "HighlightMarkdownInAllDocs";
constexpr char HighlightMarkdownMonochromeKey[] = "HighlightMarkdownMonochrome";
constexpr char CheckMixedTextDirectionsKey[] = "checkMixedTextDirections";
constexpr char WikiActivateLinksKey[] = "WikiActivateLinksInPlaintext";
constexpr char IgnoreCommentsKey[] = "ignoreCommentsForWordCount";
constexpr char UseSolarizedKey[] = "useSolarizedTheme";
constexpr char UseMonospacedFontKey[] = "useMonospacedFontForMarkdownEditing";
constexpr char MonospacedFontNameKey[] = "monospacedFontName";
constexpr char MonospacedFontSizeKey[] = "monospacedFontSize";

DocumentKind kindOf(const QString &extension)
{
    if (extension == u"html" || extension == u"htm")
        return DocumentKind::Html;
    if (extension == u"opml")
        return DocumentKind::Opml;
    static const QStringList markdown{QStringLiteral("md"), QStringLiteral("markdown"),
                                      QStringLiteral("text"), QStringLiteral("mdown"),
                                      QStringLiteral("rmd")};
    return markdown.contains(extension) ? DocumentKind::Markdown : DocumentKind::OtherText;
}

Rgba toRgba(const QColor &color)
{
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

// The text in place of the selection, the caret behind it.
void replaceSelection(EditorBuffer &b, const QString &text)
{
    const TextRange selection = b.selection();
    if (b.tl_replaceCharactersInRange(selection, withNewlineParagraphs(text)))
        b.setSelection({selection.location + text.size(), 0});
}

} // namespace

void PlainTextView::updateStyle()
{
    platform::Settings &settings = platform::settings();
    const QString extension = QFileInfo(m_path).suffix().toLower();
    HighlightOptions options;
    options.kind = kindOf(extension);
    options.highlightMarkdown = settings.boolValue(HighlightMarkdownKey) &&
                                (options.kind == DocumentKind::Markdown ||
                                 (options.kind == DocumentKind::OtherText &&
                                  settings.boolValue(HighlightMarkdownInAllDocsKey)));
    options.autoIndentLists = settings.boolValue(AutoIndentListsKey);
    options.ignoreCommentsForWordCount = settings.boolValue(IgnoreCommentsKey);
    options.multiMarkdown = !m_path.isEmpty() && store::tl_markdownConverterAtPath(m_path) == 1;
    options.wikiLinksActive = settings.boolValue(WikiActivateLinksKey);
    options.checkMixedTextDirections = settings.boolValue(CheckMixedTextDirectionsKey);
    options.excluded = m_path.endsWith(QLatin1String("TLResources/Misc/ExcludedTags.txt"));
    options.lineHeightMultiple = m_lineSpacing;
    options.stroke = devicePixelRatioF() > 1 ? -5.0 : -3.0;
    options.lineFragmentPadding = document()->documentMargin();
    options.namesFile = [folder = QFileInfo(m_path).path(),
                         root = store::libraryRoot()](QStringView target) {
        const QString path = QUrl::fromPercentEncoding(target.toString().toUtf8());
        return !path.isEmpty() &&
               QFileInfo::exists((path.startsWith(u'/') ? root : folder) + u'/' + path);
    };

    const bool loading = m_loading;
    m_loading = true;
    if (options.kind == DocumentKind::Markdown && settings.boolValue(UseMonospacedFontKey)) {
        const QString family = settings.string(MonospacedFontNameKey);
        QFont mono =
            family.isEmpty() ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : QFont(family);
        if (const qint64 size = settings.integer(MonospacedFontSizeKey); size > 0)
            mono.setPointSize(int(size));
        setFont(mono);
    }

    PaletteOptions colors;
    colors.base = toRgba(palette().color(QPalette::Text));
    colors.background = toRgba(palette().color(QPalette::Base));
    colors.highlightMarkdown = options.highlightMarkdown;
    colors.monochrome = settings.boolValue(HighlightMarkdownMonochromeKey);
    colors.solarized = settings.boolValue(UseSolarizedKey);
    colors.dark = Theme::instance().isDark();
    colors.html = options.kind == DocumentKind::Html;
    const Palette named(colors);
    m_highlighter->setStyle(options, named, font());
    m_loading = loading;
}

bool PlainTextView::event(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange) {
        const bool result = QPlainTextEdit::event(event);
        if (!m_loading && event->type() == QEvent::FontChange)
            updateStyle();
        return result;
    }
    return QPlainTextEdit::event(event);
}

void PlainTextView::resizeEvent(QResizeEvent *event)
{
    m_layout->setWidth(viewport()->width());
    QPlainTextEdit::resizeEvent(event);
}

bool PlainTextView::mayEdit()
{
    if (m_editing)
        return true;
    bool allowed = true;
    Q_EMIT editingWanted(&allowed);
    m_editing = allowed;
    return allowed;
}

void PlainTextView::applyRule(const Rule &rule, bool shift)
{
    if (isReadOnly() || !mayEdit())
        return;
    const QTextCursor cursor = textCursor();
    EditorBuffer buffer(m_highlighter->text(),
                        {cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart()});
    EditorContext context = editorContext(shift);
    rule(buffer, context);
    QTextCursor edit(document());
    if (!buffer.replacements().isEmpty()) {
        edit.beginEditBlock();
        for (const TextReplacement &replacement : buffer.replacements()) {
            edit.setPosition(int(replacement.range.location));
            edit.setPosition(int(replacement.range.end()), QTextCursor::KeepAnchor);
            edit.insertText(replacement.string);
        }
        edit.endEditBlock();
        // Typing after a rule would merge into the rule's undo step while the
        // document counts as modified; nothing else reads that flag.
        document()->setModified(false);
    }
    const TextRange selection = buffer.selection();
    edit.setPosition(int(selection.location));
    edit.setPosition(int(selection.end()), QTextCursor::KeepAnchor);
    setTextCursor(edit);
    ensureCursorVisible();
    if (m_completions)
        showCompletions();
}

EditorContext PlainTextView::editorContext(bool shift)
{
    EditorContext context;
    context.settings = EditorSettings::fromSettings();
    context.keys.shift = shift;
    context.libraryRoot = store::libraryRoot();
    m_completions.reset();
    context.completeWikiPath = [this, context](EditorBuffer &buffer) {
        return !m_path.isEmpty() && tryToAutoExpandWikiPath(buffer, m_path, context.libraryRoot,
                                                            context.settings, m_completions);
    };
    context.suggestContextTags = [this, context](EditorBuffer &buffer) {
        // The tag list is read only when a context word stands before the caret.
        if (!contextTagCompletions(buffer, {}, context.settings))
            return false;
        return tryToSuggestContextTags(buffer, contexts::tl_listOfAllAvailableTags(),
                                       context.settings, m_completions);
    };
    return context;
}

void PlainTextView::showCompletions()
{
    const QRect caret = cursorRect();
    m_popup->showChoices(m_completions->suggestions, viewport()->mapToGlobal(caret.bottomLeft()),
                         font());
}

void PlainTextView::typeReplacement(TextRange affected, const QString &replacement, bool shift)
{
    applyRule([&](EditorBuffer &buffer,
                  EditorContext &context) { typeText(buffer, context, affected, replacement); },
              shift);
}

namespace {

// Keys that change the text: printable ones without a command modifier,
// Return, Tab, Backspace, Delete, and the editing shortcuts.
bool editsText(const QKeyEvent *event)
{
    for (QKeySequence::StandardKey key :
         {QKeySequence::Cut, QKeySequence::Paste, QKeySequence::Undo, QKeySequence::Redo})
        if (event->matches(key))
            return true;
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    if (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete)
        return true;
    const QString text = event->text();
    return !text.isEmpty() && (text.at(0).isPrint() || text == u"\r" || text == u"\t");
}

bool isPairCharacter(const QString &text)
{
    return text.size() == 1 && (QStringView(PairOpeners).contains(text.at(0)) ||
                                QStringView(PairClosers).contains(text.at(0)));
}

} // namespace

bool PlainTextView::handleEditingKey(QKeyEvent *event)
{
    const Qt::KeyboardModifiers modifiers =
        event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    const QTextCursor cursor = textCursor();
    const TextRange selection{cursor.selectionStart(),
                              cursor.selectionEnd() - cursor.selectionStart()};
    const auto run = [this](const Rule &rule) {
        applyRule(rule);
        return true;
    };
    if (modifiers == Qt::ControlModifier) {
        const int key = event->key();
        if (key >= Qt::Key_0 && key <= Qt::Key_5 && !shift)
            return run([level = key - Qt::Key_0](EditorBuffer &b, EditorContext &) {
                insertMarkdownHeading(b, level);
            });
        switch (key) {
        case Qt::Key_7:
            return run([](EditorBuffer &b, EditorContext &) { tl_toggleComment(b); });
        case Qt::Key_BracketLeft:
            return run(
                [](EditorBuffer &b, EditorContext &c) { tabButtonPressed(b, c, true, true); });
        case Qt::Key_BracketRight:
            return run(
                [](EditorBuffer &b, EditorContext &c) { tabButtonPressed(b, c, true, false); });
        case Qt::Key_B:
            return run([](EditorBuffer &b, EditorContext &c) {
                insertMarkdownString(b, c, strongEmphasisMark(c), strongEmphasisMark(c));
            });
        case Qt::Key_I:
            return run([](EditorBuffer &b, EditorContext &c) {
                insertMarkdownString(b, c, weakEmphasisMark(c), weakEmphasisMark(c));
            });
        case Qt::Key_V:
            if (!shift)
                return false;
            pasteAsMarkdown();
            return true;
        case Qt::Key_K:
            if (!shift) {
                insertMarkdownLink();
                return true;
            }
            return run([](EditorBuffer &b, EditorContext &) {
                const QString lines = tl_deleteLine(b);
                if (!lines.isEmpty())
                    QApplication::clipboard()->setText(lines);
            });
        case Qt::Key_L:
            return run([shift](EditorBuffer &b, EditorContext &c) {
                shift ? tl_reverseToggleList(b, c) : tl_toggleList(b, c);
            });
        default:
            return false;
        }
    }
    if (modifiers == Qt::AltModifier) {
        switch (event->key()) {
        case Qt::Key_Up:
            return run([](EditorBuffer &b, EditorContext &c) { tl_moveLineUp(b, c); });
        case Qt::Key_Down:
            return run([](EditorBuffer &b, EditorContext &c) { tl_moveLineDown(b, c); });
        case Qt::Key_Delete:
            return run([](EditorBuffer &b, EditorContext &) { advancedForwardDelete(b); });
        default:
            return false;
        }
    }
    if (modifiers != Qt::NoModifier)
        return false;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        typeReplacement(selection, QStringLiteral("\n"), shift);
        return true;
    case Qt::Key_Tab:
        typeReplacement(selection, QStringLiteral("\t"), false);
        return true;
    case Qt::Key_Backtab:
        return run([](EditorBuffer &b, EditorContext &c) { tabButtonPressed(b, c, true, true); });
    case Qt::Key_Backspace:
    case Qt::Key_Delete: {
        if (selection.length > 0) {
            typeReplacement(selection, QString(), false);
            return true;
        }
        QTextCursor step = cursor;
        step.movePosition(event->key() == Qt::Key_Backspace ? QTextCursor::PreviousCharacter
                                                            : QTextCursor::NextCharacter,
                          QTextCursor::KeepAnchor);
        if (!step.hasSelection())
            return true;
        typeReplacement({step.selectionStart(), step.selectionEnd() - step.selectionStart()},
                        QString(), false);
        return true;
    }
    default:
        break;
    }
    if (isPairCharacter(event->text())) {
        typeReplacement(selection, event->text(), false);
        return true;
    }
    return false;
}

void PlainTextView::keyPressEvent(QKeyEvent *event)
{
    if (editsText(event) && !mayEdit())
        return;
    if (!isReadOnly() && handleEditingKey(event))
        return;
    QPlainTextEdit::keyPressEvent(event);
}

void PlainTextView::dropEvent(QDropEvent *event)
{
    // A drag from elsewhere offering a copy brings the file in; a drag from
    // the program itself, or a link, refers to it.
    m_dropCopies = !event->source() && event->dropAction() == Qt::CopyAction;
    m_dropping = true;
    QPlainTextEdit::dropEvent(event);
    m_dropping = false;
}

QString PlainTextView::droppedText(const QMimeData *source)
{
    DropContext drop;
    drop.mayCopy = m_dropCopies;
    drop.markdownDocument = QFileInfo(m_path).suffix().toLower() != u"html";
    drop.commandAlone = QApplication::keyboardModifiers() == Qt::ControlModifier;
    drop.root = store::libraryRoot();
    QStringList pieces;
    for (const QUrl &url : source->urls()) {
        if (!url.isLocalFile()) {
            pieces.append(QStringLiteral("[%1](%2)").arg(url.toString(), url.toString()));
            continue;
        }
        const DroppedText dropped = textForDroppedFile(url.toLocalFile(), drop);
        if (!dropped.attach) {
            pieces.append(dropped.text);
            continue;
        }
        const std::optional<QString> attachment =
            m_path.isEmpty() ? std::nullopt
                             : insertImageSavingToTLImages(url.toLocalFile(), true, m_path);
        if (attachment)
            pieces.append(*attachment);
        else
            platform::alerts().run(
                {QString::fromLatin1(CannotInsertAttachment), QString(), {QStringLiteral("OK")}});
    }
    return pieces.join(u' ');
}

void PlainTextView::insertFromMimeData(const QMimeData *source)
{
    if (!mayEdit())
        return;
    const QTextCursor cursor = textCursor();
    const TextRange selection{cursor.selectionStart(),
                              cursor.selectionEnd() - cursor.selectionStart()};
    if (m_dropping && source->hasUrls()) {
        const QString text = droppedText(source);
        if (!text.isEmpty())
            applyRule([&](EditorBuffer &b, EditorContext &) {
                tl_smartReplaceCharactersInRange(b, selection, withNewlineParagraphs(text));
            });
        return;
    }
    if (!source->hasText())
        return;
    const QString pasted = withNewlineParagraphs(source->text());
    applyRule([&](EditorBuffer &b, EditorContext &c) {
        if (!pasteLinkIntoConstruct(b, pasted, c.libraryRoot))
            typeText(b, c, selection, pasted);
    });
}

void PlainTextView::pasteAsMarkdown()
{
    const QMimeData *clipboard = QApplication::clipboard()->mimeData();
    if (!clipboard)
        return;
    PastedContent pasted;
    if (clipboard->hasHtml())
        pasted.html = clipboard->html();
    pasted.text = clipboard->text();
    const QString root = store::libraryRoot();
    applyRule([&](EditorBuffer &b, EditorContext &) {
        replaceSelection(
            b, tl_pasteAsMarkdown(pasted, b.textIn(b.selection()).toString(), m_path, root));
    });
}

void PlainTextView::insertAtSelection(const QString &text)
{
    applyRule([&](EditorBuffer &b, EditorContext &) { replaceSelection(b, text); });
}

void PlainTextView::insertMarkdownLink()
{
    const QUrl url(QApplication::clipboard()->text().trimmed(), QUrl::StrictMode);
    if (url.isValid() && !url.scheme().isEmpty()) {
        pasteAsMarkdown();
        return;
    }
    applyRule([](EditorBuffer &b, EditorContext &c) {
        insertMarkdownString(b, c, QStringLiteral("["), QStringLiteral("]()"));
    });
}

void PlainTextView::sortLines()
{
    if (!SortLinesDialog::ask(this))
        return;
    applyRule([](EditorBuffer &b, EditorContext &c) { tl_sortSelectionbyAlphabet(b, c); });
}

void PlainTextView::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = createStandardContextMenu(event->pos());
    menu->addSeparator();
    menu->addAction(tr("Toggle List"), this, [this] {
        applyRule([](EditorBuffer &b, EditorContext &c) { tl_toggleList(b, c); });
    });
    menu->addAction(tr("Toggle Comment"), this, [this] {
        applyRule([](EditorBuffer &b, EditorContext &) { tl_toggleComment(b); });
    });
    menu->addAction(tr("Sort Lines…"), this, &PlainTextView::sortLines);
    menu->addAction(tr("Paste as Markdown"), this, &PlainTextView::pasteAsMarkdown);
    menu->exec(event->globalPos());
    delete menu;
}

} // namespace tl::app
