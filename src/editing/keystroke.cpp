#include "keystroke.h"

#include "editing/lists.h"
#include "editing/markdown_wrapping.h"
#include "store/item_path.h"

namespace tl::editing {

namespace {

constexpr qsizetype PairCount = 6;

qsizetype pairIndex(const char16_t *list, const QString &text)
{
    if (text.size() != 1)
        return -1;
    for (qsizetype i = 0; i < PairCount; ++i)
        if (text.at(0) == QChar(list[i]))
            return i;
    return -1;
}

bool isCloser(QChar c)
{
    return pairIndex(PairClosers, QString(c)) >= 0;
}

// Typing a closer, or a straight quote before a curly one, steps over it.
bool typesOver(QChar typed, QChar next)
{
    return typed == next || (typed == u'"' && (next == u'“' || next == u'”')) ||
           (typed == u'\'' && (next == u'‘' || next == u'’'));
}

// A path under the library dropped as a file URL becomes a library link.
QString libraryLinkForFileURL(const QString &replacement, const QString &root)
{
    if (root.isEmpty() || !replacement.startsWith(QLatin1String("file:///")))
        return QString();
    const QString rootURL = QStringLiteral("file://") + store::percentEncodedForPath(root);
    if (!replacement.startsWith(rootURL, Qt::CaseInsensitive))
        return QString();
    return QStringLiteral("tavelle://show") + replacement.mid(rootURL.size());
}

} // namespace

KeystrokeDecision textViewShouldChangeText(EditorBuffer &buffer, const EditorContext &context,
                                           TextRange affected, const QString &replacement)
{
    const EditorSettings &settings = context.settings;
    const TextRange selection = buffer.selection();
    const QChar next = buffer.at(affected.end());
    if (replacement == u"\n" && selection.location > 0 && settings.insertClosingCharacters &&
        !context.keys.shift && (next == u')' || next == u']' || next == u'}')) {
        const QStringView rest = QStringView(buffer.text()).mid(affected.end());
        const qsizetype after =
            affected.end() + (rest.startsWith(u"]]") || rest.startsWith(u"}}") ? 2 : 1);
        if (buffer.tl_replaceCharactersInRange({after, 0}, QStringLiteral("\n"))) {
            buffer.setSelection({after + 1, 0});
            if (settings.autoIndentLists)
                tryToInsertListItem(buffer, context);
        }
        return {false};
    }
    if (settings.insertClosingCharacters && !replacement.isEmpty()) {
        if (pairIndex(PairClosers, replacement) >= 0 && selection.length == 0 &&
            affected.location < buffer.length() &&
            typesOver(replacement.at(0), buffer.at(affected.location))) {
            buffer.setSelection({affected.location + 1, 0});
            return {false};
        }
        if (const qsizetype pair = pairIndex(PairOpeners, replacement); pair >= 0) {
            const QChar typed = replacement.at(0);
            const QChar before = buffer.at(affected.location - 1);
            const bool symmetric = pair >= 3;
            if (selection.length == 0 &&
                ((symmetric && (before == typed || before.isLetterOrNumber())) ||
                 buffer.at(affected.location).isLetterOrNumber()))
                return {true};
            insertMarkdownString(buffer, context, replacement, QString(QChar(PairClosers[pair])));
            return {false};
        }
    }
    if (settings.insertClosingCharacters && replacement.isEmpty() && affected.length == 1 &&
        pairIndex(PairOpeners, QString(buffer.at(affected.location))) >= 0 &&
        isCloser(buffer.at(affected.end()))) {
        buffer.tl_replaceCharactersInRange({affected.location, 2}, QString());
        return {false};
    }
    if (replacement == u"\n")
        return {true, settings.autoIndentLists};
    if (replacement == u"\t") {
        const bool severalLines = buffer.textIn(selection).contains(u'\n');
        return {!tabButtonPressed(buffer, context, severalLines, false)};
    }
    if (const QString link = libraryLinkForFileURL(replacement, context.libraryRoot);
        !link.isEmpty()) {
        if (buffer.tl_replaceCharactersInRange(affected, link))
            buffer.setSelection({affected.location + link.size(), 0});
        return {false};
    }
    const bool deletesNewline = replacement.isEmpty() && buffer.textIn(affected).contains(u'\n');
    return {true, false, deletesNewline};
}

void typeText(EditorBuffer &buffer, const EditorContext &context, TextRange affected,
              const QString &replacement)
{
    if (!context.keys.undoing) {
        buffer.setSelection(affected);
        const KeystrokeDecision decision =
            textViewShouldChangeText(buffer, context, affected, replacement);
        if (!decision.allowed)
            return;
        if (!buffer.tl_replaceCharactersInRange(affected, replacement))
            return;
        buffer.setSelection({affected.location + replacement.size(), 0});
        if (decision.listItemAfter)
            tryToInsertListItem(buffer, context);
        if (decision.renumberAfter && selectionIsInNumberedList(buffer, context))
            tl_updateNumberedList(buffer, context);
        return;
    }
    if (buffer.tl_replaceCharactersInRange(affected, replacement))
        buffer.setSelection({affected.location + replacement.size(), 0});
}

} // namespace tl::editing
