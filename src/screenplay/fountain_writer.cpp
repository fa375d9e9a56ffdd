#include "screenplay/fountain_writer.h"

#include "foundation/regex.h"
#include "screenplay/element_types.h"
#include "screenplay/fn_script.h"
#include "screenplay/line_ends.h"

namespace tl::screenplay::FountainWriter {

namespace {

QString capitalizedKey(const QString &key)
{
    return key.isEmpty() ? key : key.front().toUpper() + key.mid(1);
}

// A heading that the alternative parser would not know as one is forced.
QString sceneHeadingText(const FNElement &element, bool suppressSceneNumbers)
{
    static const Regex heading(
        QStringLiteral("(?<=\\n)(([iI][nN][tT]|[eE][xX][tT]|[^\\w][eE][sS][tT]|\\.|[iI]\\.?\\/"
                       "[eE]\\.?)([^\\n]+))\\n"));
    QString text = element.elementText;
    if (!heading.isMatch(QStringLiteral("\n%1\n").arg(text)))
        text = QStringLiteral(".%1").arg(text);
    if (!suppressSceneNumbers && element.sceneNumber)
        text = QStringLiteral("%1 #%2#").arg(text, *element.sceneNumber);
    return text;
}

QString markedUpText(const FNElement &element, bool suppressSceneNumbers)
{
    const QString &text = element.elementText;
    if (element.isType(type::Comment))
        return QStringLiteral("\n[[%1]]").arg(text);
    if (element.isType(type::Boneyard))
        return QStringLiteral("/*%1*/").arg(text);
    if (element.isType(type::Synopsis))
        return QStringLiteral("=%1").arg(text);
    if (element.isType(type::SceneHeading))
        return sceneHeadingText(element, suppressSceneNumbers);
    if (element.isType(type::PageBreak))
        return QStringLiteral("====");
    if (element.isType(type::SectionHeading))
        return QString(qsizetype(element.sectionDepth), u'#') + text;
    if (element.isType(type::Transition))
        return QStringLiteral("> %1").arg(text);
    return text;
}

} // namespace

QString documentFromScript(const FNScript &script)
{
    QString document;
    const QString titlePage = titlePageFromScript(script);
    if (!titlePage.isEmpty())
        document += titlePage + QLatin1Char('\n');
    document += bodyFromScript(script);
    return trimmedOfLineEnds(document);
}

QString titlePageFromScript(const FNScript &script)
{
    QString text;
    for (const TitlePageField &field : script.titlePage) {
        const QStringList &values = *field.values;
        if (values.size() == 1) {
            const QString key =
                field.key == u"authors" ? QStringLiteral("Author") : capitalizedKey(field.key);
            text += QStringLiteral("%1: %2\n").arg(key, values.first());
        } else {
            text += QStringLiteral("%1:\n").arg(capitalizedKey(field.key));
            for (const QString &value : values)
                text += QStringLiteral("\t%1\n").arg(value);
        }
    }
    return text;
}

QString bodyFromScript(const FNScript &script)
{
    static const Regex empty(QStringLiteral("^[\\s\\n\\t]*$"));
    static const Regex blankAtEnd(QStringLiteral("[ ]$"));
    QString body;
    bool pairOpen = false;
    for (const FNElementRef &element : script.elements) {
        if (!element->isType(type::PageBreak) && empty.isMatch(element->elementText))
            continue;
        QString text = markedUpText(*element, script.suppressSceneNumbers);
        if (element->isCentered)
            text = (blankAtEnd.isMatch(text) ? QStringLiteral("> %1<") : QStringLiteral("> %1 <"))
                       .arg(text);
        // The second cue of each pair carries the caret.
        if (element->isType(type::Character) && element->isDualDialogue) {
            if (pairOpen)
                text = QStringLiteral("%1 ^").arg(text);
            pairOpen = !pairOpen;
        }
        const bool inline_ = element->isType(type::Dialogue) ||
                             element->isType(type::Parenthetical) || element->isType(type::Comment);
        body += inline_ ? text + QLatin1Char('\n') : QStringLiteral("\n%1\n").arg(text);
    }
    return body;
}

} // namespace tl::screenplay::FountainWriter
