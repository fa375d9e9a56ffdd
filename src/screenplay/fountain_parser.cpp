#include "screenplay/fountain_parser.h"

#include "foundation/regex.h"
#include "screenplay/element_types.h"
#include "screenplay/fast_fountain_parser.h"
#include "screenplay/line_ends.h"
#include "store/log.h"

namespace tl::screenplay::FountainParser {

namespace {

const QString kNewline = QStringLiteral("\n");

// The text with leading line ends taken off, and its first block with its
// own line end when a blank line ends it; nothing is a title page then.
struct TopBlock
{
    QString text;
    QString block;
    bool isTitlePage = false;
};

TopBlock topBlockOf(const QString &text)
{
    static const Regex leadingLineEnds(QStringLiteral("^\\n+"));
    static const Regex titlePage(QStringLiteral("^([^\\n]+:(([ \\t]*|\\n)[^\\n]+\\n)+)+\\n"));
    TopBlock top{leadingLineEnds.replaceAll(text, QString()), {}, false};
    const qsizetype blankLine = top.text.indexOf(QLatin1String("\n\n"));
    if (blankLine >= 0) {
        top.block = top.text.left(blankLine + 1);
        top.isTitlePage = titlePage.isMatch(top.block + kNewline);
    }
    return top;
}

// The tagging pipeline, in order; each row replaces all its matches.
std::span<const RegexRule> pipeline()
{
    static const RegexRule rows[] = {
        {Regex(QStringLiteral("\\r\\n|\\r|\\n")), QStringLiteral("\n")},
        {Regex(QStringLiteral("\\n\\/\\*([^<>]+?)\\*\\/\\n")),
         QStringLiteral("\n<Boneyard>$1</Boneyard>\n")},
        {Regex(QStringLiteral("\\n\\[{2}([^<>]+?)\\]{2}\\n")),
         QStringLiteral("\n<Comment>$1</Comment>\n")},
        {Regex(QStringLiteral("\\n={1}([^<>=][^<>]+?)\\n")),
         QStringLiteral("\n<Synopsis>$1</Synopsis>\n")},
        {Regex(QStringLiteral("(?<=\\n)(\\s*[\\=\\-\\_]{3,8}\\s*)\\n{1}")),
         QStringLiteral("\n<Page Break></Page Break>\n")},
        {Regex(QStringLiteral("\\n((&gt;|>)\\s*[^<>\\n]+(&lt;\\s*))\\n")),
         QStringLiteral("\n<Action>$1</Action>")},
        {Regex(QStringLiteral("\\n((&gt;|>)\\s*[^<>\\n]+)\\n")),
         QStringLiteral("\n<Transition>$1</Transition>")},
        {Regex(
             QStringLiteral("(?<=\\n)(([iI][nN][tT]|[eE][xX][tT]|[^\\w][eE][sS][tT]|\\.|[iI]\\.?\\/"
                            "[eE]\\.?)([^\\n]+))\\n")),
         QStringLiteral("\n<Scene Heading>$1</Scene Heading>")},
        {Regex(QStringLiteral("^\\n\\n([^<>\\n#]*?)\\n")), QStringLiteral("<Action>$1</Action>\n")},
        {Regex(QStringLiteral("\\n([\\*_]*([^<>\\na-z]*TO:|FADE TO BLACK\\.|FADE OUT\\.|CUT TO "
                              "BLACK\\.)[\\*_]*)\\n")),
         QStringLiteral("\n<Transition>$1</Transition>")},
        {Regex(QStringLiteral("(?<=\\n)([ \\t]*[^<>a-z\\s\\/\\n][^<>a-z:!\\?\\n]*[^<>a-z\\(!\\?:,"
                              "\\n\\.][ \\t]?)\\n{1}(?!\\n)")),
         QStringLiteral("<Character>$1</Character>")},
        // The line end stands in the pattern as the character itself.
        {Regex(QStringLiteral("(\\([^<>]*?\\)[\\s]?)\n")),
         QStringLiteral("<Parenthetical>$1</Parenthetical>")},
        {Regex(QStringLiteral("(<(Character|Parenthetical)>[^<>\\n]+<\\/(Character|Parenthetical)>)"
                              "([^<>]*?)(?=\\n{2}|\\n{1}<Parenthetical>)")),
         QStringLiteral("$1<Dialogue>$4</Dialogue>")},
        {Regex(QStringLiteral("((#+)(\\s*[^\\n]*))\\n?")),
         QStringLiteral("<Section Heading>$1</Section Heading>")},
        {Regex(QStringLiteral("([^<>]*?)(\\n{2}|\\n<)")), QStringLiteral("<Action>$1</Action>$2")},
        {Regex(QStringLiteral("<Action>\\s*<\\/Action>")), QString()},
        {Regex(QStringLiteral("@@@@@")), QStringLiteral("\n")},
    };
    return rows;
}

// Line ends inside multi-line notes survive the pipeline as a marker.
QString protectNoteLineEnds(QString text, const Regex &note)
{
    QStringList passages;
    for (const RegexMatch &m : note.allMatches(text))
        passages.append(m.capturedString(text, 1));
    for (const QString &passage : passages)
        text.replace(passage, QString(passage).replace(kNewline, QLatin1String("@@@@@")),
                     Qt::CaseInsensitive);
    return text;
}

QString lowerCasedKey(const QString &name)
{
    return titlePageKey(name, true);
}

// The parts of one tagged pair that turn it into an element.
void shapeElement(FNElement &element)
{
    static const Regex sceneNumber(QStringLiteral("(\\#([0-9A-Za-z\\.\\)-]+)\\#)"),
                                   RegexOption::CaseInsensitive);
    static const Regex centered(QStringLiteral("^>[^<>\\n]+<"));
    static const Regex centeredText(QStringLiteral("(>?)\\s*([^<>\\n]*)\\s*(<?)"));
    static const Regex forcedHeading(QStringLiteral("^\\.?(.+)"));
    static const Regex section(QStringLiteral("((#+)(\\s*[^\\n]*))\\n?"));

    QString &text = element.elementText;
    if (element.isType(type::SceneHeading)) {
        if (const auto m = sceneNumber.match(text)) {
            element.sceneNumber = m->capturedString(text, 2);
            text.replace(m->capturedString(text, 1), QString());
        }
    }
    text = trimmedOfLineEnds(text);
    if (centered.isMatch(text)) {
        element.isCentered = true;
        if (const auto m = centeredText.match(text))
            text = m->capturedString(text, 2).trimmed();
    }
    if (element.isType(type::SceneHeading)) {
        if (const auto m = forcedHeading.match(text))
            text = m->capturedString(text, 1);
    }
    if (element.isType(type::SectionHeading)) {
        if (const auto m = section.match(text)) {
            element.sectionDepth = unsigned(m->groupLength(2));
            text = m->capturedString(text, 3);
        }
    }
}

// A caret behind the second cue makes a pair with the nearest cue before it,
// across the speech between them.
void markDualDialogue(FNElementList &elements)
{
    static const Regex caret(QStringLiteral("\\^\\s*$"));
    static const Regex trailingCaret(QStringLiteral("\\s*\\^$"));
    FNElement &cue = *elements.last();
    if (elements.size() < 3 || !cue.isType(type::Character) || !caret.isMatch(cue.elementText))
        return;
    cue.isDualDialogue = true;
    cue.elementText = trailingCaret.replaceAll(cue.elementText, QString());
    for (qsizetype i = elements.size() - 2; i >= 0; --i) {
        FNElement &earlier = *elements.at(i);
        if (earlier.isType(type::Character)) {
            earlier.isDualDialogue = true;
            earlier.elementText.remove(u'^');
        }
        if (!earlier.isType(type::Dialogue) && !earlier.isType(type::Parenthetical))
            break;
    }
}

} // namespace

QString bodyOfString(const QString &text)
{
    const TopBlock top = topBlockOf(text);
    QString body = top.text;
    if (top.isTitlePage)
        body.replace(top.block, QString());
    return QStringLiteral("\n\n%1\n\n").arg(body);
}

QString titlePageOfString(const QString &text)
{
    const TopBlock top = topBlockOf(text);
    return top.isTitlePage ? trimmedOfLineEnds(top.block) : QString();
}

FNElementList parseBodyOfString(const QString &text)
{
    static const Regex boneyard(QStringLiteral("\\n\\/\\*([^<>]+?)\\*\\/\\n"));
    static const Regex note(QStringLiteral("\\n\\[{2}([^<>]+?)\\]{2}\\n"));
    static const Regex tagged(QStringLiteral("<([a-zA-Z\\s]+)>([^<>]*)<\\/[a-zA-Z\\s]+>"));

    QString body = protectNoteLineEnds(protectNoteLineEnds(bodyOfString(text), boneyard), note);
    body.replace(QLatin1String("<"), QLatin1String("&lt;"), Qt::CaseInsensitive)
        .replace(QLatin1String(">"), QLatin1String("&gt;"), Qt::CaseInsensitive)
        .replace(QLatin1String("..."), QLatin1String("::trip::"), Qt::CaseInsensitive);
    body = applyRules(body, pipeline());

    const QList<RegexMatch> pairs = tagged.allMatches(body);
    FNElementList elements;
    for (const RegexMatch &pair : pairs) {
        QString text = pair.capturedString(body, 2);
        text.replace(QLatin1String("&lt;"), QLatin1String("<"))
            .replace(QLatin1String("&gt;"), QLatin1String(">"))
            .replace(QLatin1String("::trip::"), QLatin1String("..."));
        elements.append(FNElement::elementOfType(pair.capturedString(body, 1), text));
        shapeElement(*elements.last());
        markDualDialogue(elements);
    }
    return elements;
}

FNElementList parseBodyOfFile(const QString &path)
{
    return parseBodyOfString(utf8ContentsOfFile(path).value_or(QString()));
}

TitlePage parseTitlePageOfString(const QString &text)
{
    static const Regex keyAndValue(
        QStringLiteral("^([\\w\\s&]+):\\s*([^\\s][\\w&,\\.\\?!:\\(\\)\\/\\s-©\\*\\_]+)$"));
    static const Regex keyAlone(QStringLiteral("^([\\w\\s&]+):\\s*$"));
    static const Regex indented(QStringLiteral("^([ ]{2,8}|\\t)([^<>]+)$"));

    TitlePage page;
    std::optional<QString> openKey;
    auto values = std::make_shared<QStringList>();
    for (const QString &line : titlePageOfString(text).split(kNewline)) {
        if (const auto m = keyAndValue.match(line)) {
            if (openKey && !values->isEmpty()) {
                page.append({*openKey, values});
                values = std::make_shared<QStringList>();
            }
            page.append({lowerCasedKey(m->capturedString(line, 1)),
                         std::make_shared<QStringList>(m->capturedString(line, 2))});
            openKey.reset();
        } else if (const auto m = keyAlone.match(line)) {
            if (openKey && !values->isEmpty())
                page.append({*openKey, values});
            openKey = lowerCasedKey(m->capturedString(line, 1));
            values = std::make_shared<QStringList>();
        } else if (const auto m = indented.match(line)) {
            values->append(m->capturedString(line, 2));
        }
    }
    if (openKey && !values->isEmpty())
        page.append({*openKey, values});
    return page;
}

TitlePage parseTitlePageOfFile(const QString &path)
{
    return parseTitlePageOfString(utf8ContentsOfFile(path).value_or(QString()));
}

} // namespace tl::screenplay::FountainParser
