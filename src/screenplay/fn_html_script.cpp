#include "screenplay/fn_html_script.h"

#include "foundation/regex.h"
#include "platform/folders.h"
#include "screenplay/element_types.h"
#include "screenplay/fast_fountain_parser.h"
#include "screenplay/fn_paginator.h"
#include "screenplay/line_ends.h"
#include "store/log.h"

#include <QDir>
#include <algorithm>
#include <array>

namespace tl::screenplay {

namespace {

const char kStyleSheetName[] = "ScriptCSS.css";

// The emphasis rewrites, in order, each with the marks a match cannot do
// without, so that a row is tried only where it may apply. The closing tags
// of the first, second and fourth rows stand misnested as they are; the
// browser's repair of them is part of the look.
struct EmphasisRow
{
    RegexRule rule;
    std::array<const char16_t *, 2> needsOneOf;
};

QString emphasized(QString text)
{
    static const std::array<EmphasisRow, 7> rows{{
        {{Regex(QStringLiteral("(_\\*{3}|\\*{3}_)([^<>]+)(_\\*{3}|\\*{3}_)")),
          QStringLiteral("<strong><em><u>$2</strong></em></u>")},
         {u"_***", u"***_"}},
        {{Regex(QStringLiteral("(\\*{3})([^<>]+)(\\*{3})")),
          QStringLiteral("<strong><em>$2</strong></em>")},
         {u"***", nullptr}},
        {{Regex(QStringLiteral("(_\\*{2}|\\*{2}_)([^<>]+)(_\\*{2}|\\*{2}_)")),
          QStringLiteral("<strong><u>$2</u></strong>")},
         {u"_**", u"**_"}},
        {{Regex(QStringLiteral("(_\\*{1}|\\*{1}_)([^<>]+)(_\\*{1}|\\*{1}_)")),
          QStringLiteral("<em><u>$2</em></u>")},
         {u"_*", u"*_"}},
        {{Regex(QStringLiteral("(\\*{2})([^<>]+)(\\*{2})")), QStringLiteral("<strong>$2</strong>")},
         {u"**", nullptr}},
        // A backslash before the asterisk keeps it.
        {{Regex(QStringLiteral("(?<!\\\\)(\\*{1})([^<>]+)(\\*{1})")),
          QStringLiteral("<em>$2</em>")},
         {u"*", nullptr}},
        {{Regex(QStringLiteral("(_)([^<>_]+)(_)")), QStringLiteral("<u>$2</u>")}, {u"_", nullptr}},
    }};
    for (const EmphasisRow &row : rows) {
        const bool may =
            std::any_of(row.needsOneOf.begin(), row.needsOneOf.end(),
                        [&](const char16_t *marks) { return marks && containsMarks(text, marks); });
        if (may)
            text = row.rule.regex.replaceAll(text, row.rule.replacement);
    }
    return text;
}

QString valuesText(const QStringList &values)
{
    QString text;
    for (const QString &value : values)
        text += value + QStringLiteral("<br>");
    return text;
}

QString paragraph(const QString &cssClass, const QStringList &values)
{
    return QStringLiteral("<p class='%1'>%2</p>").arg(cssClass, valuesText(values));
}

QString titleBlock(const TitlePage &titlePage)
{
    QMap<QString, QStringList> fields;
    for (const TitlePageField &field : titlePage)
        fields.insert(field.key, *field.values);
    if (fields.isEmpty())
        return {};
    QString block = QStringLiteral("<div id='script-title'>");
    block += paragraph(QStringLiteral("title"),
                       fields.value(QStringLiteral("title"), {QStringLiteral("Untitled")}));
    if (fields.contains(QStringLiteral("credit")) || fields.contains(QStringLiteral("authors"))) {
        block += paragraph(QStringLiteral("credit"),
                           fields.value(QStringLiteral("credit"), {QStringLiteral("written by")}));
        block += paragraph(QStringLiteral("authors"),
                           fields.value(QStringLiteral("authors"), {QStringLiteral("Anonymous")}));
    }
    for (const char *key : {"source", "draft date", "contact"})
        if (fields.contains(QLatin1String(key)))
            block += paragraph(QLatin1String(key), fields.value(QLatin1String(key)));
    return block + QStringLiteral("</div>");
}

// What an element says once its markers are taken off and its emphasis
// written out; empty for an element that prints nothing.
QString elementText(const FNElement &element)
{
    static const Regex inlineNote(QStringLiteral("\\[{2}(.*?)\\]{2}"));
    struct Marker
    {
        const char *type;
        Regex regex;
    };
    static const std::array<Marker, 4> markers{{
        {type::Character, Regex(QStringLiteral("^@"))},
        {type::SceneHeading, Regex(QStringLiteral("^\\."))},
        {type::Lyrics, Regex(QStringLiteral("^~"))},
        {type::Action, Regex(QStringLiteral("^\\!"))},
    }};

    QString text = element.elementText;
    if (element.isType(type::SceneHeading) && element.sceneNumber)
        text = QStringLiteral("<span class='scene-number-left'>%1</span>%2<span "
                              "class='scene-number-right'>%1</span>")
                   .arg(*element.sceneNumber, text);
    if (element.isType(type::Character) && element.isDualDialogue)
        text.remove(u'^');
    for (const Marker &marker : markers)
        if (element.isType(marker.type))
            text = marker.regex.replaceFirst(text, QString());
    text = emphasized(text);
    // Inline notes are the writer's, not the reader's.
    return containsMarks(text, u"[[") ? inlineNote.replaceAll(text, QString()) : text;
}

bool isSpeech(const FNElement &element)
{
    return element.isType(type::Character) || element.isType(type::Dialogue) ||
           element.isType(type::Parenthetical);
}

bool printsNothing(const FNElement &element)
{
    return element.isType(type::Boneyard) || element.isType(type::Comment) ||
           element.isType(type::Synopsis) || element.isType(type::SectionHeading);
}

} // namespace

FNHTMLScript::FNHTMLScript(const FNScript &script)
    : font{QStringLiteral("Courier"), 13}, script(script)
{
}

QString FNHTMLScript::html()
{
    if (!bodyText)
        bodyText = bodyForScript();
    return QStringLiteral("<!DOCTYPE html>\n<html>\n<head>\n<style type='text/css'>\n") +
           cssText() + QStringLiteral("</style>\n</head>\n<body>\n<article>\n<section>\n") +
           *bodyText + QStringLiteral("</section>\n</article>\n</body>\n</html>");
}

QString FNHTMLScript::cssText()
{
    const auto css = utf8ContentsOfFile(
        QDir(platform::resourcesFolder()).filePath(QLatin1String(kStyleSheetName)));
    if (!css) {
        logLine(QStringLiteral("Couldn't load CSS"));
        return {};
    }
    return *css;
}

QString FNHTMLScript::htmlClassForType(const QString &type)
{
    return type.toLower().replace(u' ', u'-');
}

QString FNHTMLScript::bodyForScript()
{
    QString body = titleBlock(script.titlePage);
    // Room for the text and its markup, made once.
    qsizetype textSize = 0;
    for (const FNElementRef &element : script.elements)
        textSize += element->elementText.size();
    body.reserve(body.size() + 2 * textSize + 64 * script.elements.size());
    FNPaginator paginator(script);
    m_numberOfPages = paginator.numberOfPages();
    // Dual dialogue divisions stay open across page numbers.
    int dual = 0;
    for (int n = 0; n < m_numberOfPages; ++n) {
        body += QStringLiteral("<p class='page-break'>%1.</p>\n").arg(n + 1);
        for (const FNElementRef &element : paginator.pageAtIndex(n)) {
            if (printsNothing(*element))
                continue;
            if (element->isType(type::PageBreak)) {
                body += QStringLiteral("</section>\n<section>\n");
                continue;
            }
            if (element->isType(type::Character) && element->isDualDialogue) {
                if (dual == 0) {
                    body += QStringLiteral("<div class='dual-dialogue'>\n"
                                           "<div class='dual-dialogue-left'>\n");
                    dual = 1;
                } else if (++dual == 2) {
                    body += QStringLiteral("</div>\n<div class='dual-dialogue-right'>\n");
                }
            }
            if (dual >= 2 && !isSpeech(*element)) {
                body += QStringLiteral("</div>\n</div>\n");
                dual = 0;
            }
            const QString text = elementText(*element);
            if (text.isEmpty())
                continue;
            body += QStringLiteral("<p class='%1%2'>%3</p>\n")
                        .arg(htmlClassForType(element->elementType),
                             element->isCentered ? QStringLiteral(" center") : QString(), text);
        }
    }
    return body;
}

} // namespace tl::screenplay
