#include "screenplay/fast_fountain_parser.h"

#include "foundation/regex.h"
#include "screenplay/element_types.h"
#include "screenplay/line_ends.h"
#include "store/log.h"

#include <QFile>
#include <QStringDecoder>
#include <array>

namespace tl::screenplay {

namespace {

const QString kNewline = QStringLiteral("\n");

// A line and what the rules ask of it; only a cue looks at its neighbour,
// which must be a line with text.
struct Line
{
    const QString &text;
    QString trimmed;
    bool nextIsNonEmpty;
};

struct LineMachine
{
    FNElementList &elements;
    int blankLines = 0;
    bool inDialogue = false;
    bool inBoneyard = false;
    QString boneyard;

    FNElement *last() const { return elements.isEmpty() ? nullptr : elements.last().get(); }
    bool lastIs(const char *type) const { return last() && last()->isType(type); }
    FNElement &add(const char *type, const QString &text)
    {
        elements.append(FNElement::elementOfType(QLatin1String(type), text));
        return *elements.last();
    }
    void resetCount() { blankLines = 0; }

    void continueDialogue(const QString &line)
    {
        if (lastIs(type::Dialogue))
            last()->elementText += kNewline + line;
        else
            add(type::Dialogue, line);
        inDialogue = true;
        resetCount();
    }
    void newAction(const QString &line)
    {
        add(type::Action, line);
        inDialogue = false;
        resetCount();
    }
    // A heading's number stands between two "#" at the end of the line.
    void sceneHeading(QString text, bool forced)
    {
        static const Regex number(QStringLiteral("#([^\\n#]*?)#\\s*$"));
        std::optional<QString> sceneNumber;
        if (const auto m = number.match(text)) {
            sceneNumber = m->capturedString(text, 1);
            text.remove(m->start(), m->length());
        }
        if (forced)
            text = text.mid(1).trimmed();
        add(type::SceneHeading, text).sceneNumber = sceneNumber;
        resetCount();
    }
};

bool startsWith(const Line &l, char c)
{
    return !l.text.isEmpty() && l.text.front() == QLatin1Char(c);
}

bool isTrimmedAndStartsWith(const Line &l, char c)
{
    return !l.trimmed.isEmpty() && l.trimmed.front() == QLatin1Char(c);
}

// An expression with a cheap test of a text that every match needs, so that
// most lines are passed over without a search.
struct GuardedRegex
{
    Regex regex;
    bool (*mayMatch)(QStringView line);

    bool isMatch(QStringView line) const { return mayMatch(line) && regex.isMatch(line); }
};

// The expressions the line rules test, compiled once.
struct Patterns
{
    GuardedRegex twoBlanks{Regex(QStringLiteral("^\\s{2}$")),
                           [](QStringView l) { return l.size() == 2; }};
    GuardedRegex blanks{Regex(QStringLiteral("^\\s{2,}$")),
                        [](QStringView l) { return l.size() >= 2 && l.front().isSpace(); }};
    GuardedRegex boneyardOpen{Regex(QStringLiteral("^\\/\\*")),
                              [](QStringView l) { return l.startsWith(u"/*"); }};
    GuardedRegex boneyardClose{Regex(QStringLiteral("\\*\\/\\s*$")),
                               [](QStringView l) { return containsMarks(l, u"*/"); }};
    GuardedRegex pageBreak{Regex(QStringLiteral("^={3,}\\s*$")),
                           [](QStringView l) { return l.startsWith(u"==="); }};
    GuardedRegex note{Regex(QStringLiteral("^\\s*\\[{2}\\s*([^\\]\\n])+\\s*\\]{2}\\s*$")),
                      [](QStringView l) { return containsMarks(l, u"[["); }};
    GuardedRegex transitionTo{Regex(QStringLiteral("[^a-z]*TO:$")),
                              [](QStringView l) { return l.endsWith(u"TO:"); }};
    GuardedRegex parenthesis{Regex(QStringLiteral("^\\s*\\(")),
                             [](QStringView l) { return l.contains(u'('); }};
    GuardedRegex characterCue{Regex(QStringLiteral("^[^a-z]+(\\(cont'd\\))?$")), [](QStringView l) {
                                  return !l.isEmpty() && !(l.front() >= u'a' && l.front() <= u'z');
                              }};
    GuardedRegex caretAtEnd{Regex(QStringLiteral("\\^\\s*$")),
                            [](QStringView l) { return l.contains(u'^'); }};
    GuardedRegex sceneHeading{
        Regex(QStringLiteral("^(INT|EXT|EST|(I|INT)\\.?\\/(E|EXT)\\.?)[\\.\\-\\s][^\\n]+$"),
              RegexOption::CaseInsensitive),
        [](QStringView l) { return l.size() >= 3 && QStringLiteral("IiEe").contains(l.front()); }};
    Regex blank{QStringLiteral("^\\s*$")};
};

const Patterns &patterns()
{
    static const Patterns compiled;
    return compiled;
}

bool isFixedTransition(const QString &line)
{
    qsizetype start = 0;
    while (start < line.size() && line.at(start).isSpace())
        ++start;
    const QStringView rest = QStringView(line).mid(start);
    return rest == u"FADE OUT." || rest == u"CUT TO BLACK." || rest == u"FADE TO BLACK.";
}

void addSectionHeading(LineMachine &m, const Line &l)
{
    static const Regex hashes(QStringLiteral("^\\s*#+"));
    const auto match = hashes.match(l.text);
    const qsizetype depth = match ? match->length() : 0;
    const QString text = l.text.mid(depth);
    if (text.isEmpty())
        logLine(QStringLiteral("Error in the Section Heading"));
    else
        m.add(type::SectionHeading, text).sectionDepth = unsigned(depth);
    m.resetCount();
}

// The second speaker of a pair carries the caret; the first is the nearest
// earlier cue, whatever stands between them.
void addCharacter(LineMachine &m, const Line &l)
{
    static const Regex caret(QStringLiteral("\\s*\\^\\s*$"));
    const bool dual = patterns().caretAtEnd.isMatch(l.text);
    if (dual) {
        for (qsizetype i = m.elements.size() - 1; i >= 0; --i) {
            if (m.elements.at(i)->isType(type::Character)) {
                m.elements.at(i)->isDualDialogue = true;
                break;
            }
        }
    }
    FNElement &cue = m.add(type::Character, l.text);
    if (dual) {
        cue.isDualDialogue = true;
        cue.elementText = caret.replaceFirst(cue.elementText, QString());
    }
    m.inDialogue = true;
    m.resetCount();
}

struct LineRule
{
    bool (*fits)(const LineMachine &, const Line &);
    void (*apply)(LineMachine &, const Line &);
};

// Ordered: the first rule that fits a line handles it.
const std::array<LineRule, 26> kLineRules{{
    // Lyrics; a blank line between two lyrics stays as a lyric of one blank.
    {[](const LineMachine &, const Line &l) { return startsWith(l, '~'); },
     [](LineMachine &m, const Line &l) {
         if (m.lastIs(type::Lyrics) && m.blankLines != 0)
             m.add(type::Lyrics, QStringLiteral(" "));
         m.add(type::Lyrics, l.text);
         m.resetCount();
     }},
    {[](const LineMachine &, const Line &l) { return startsWith(l, '!'); },
     [](LineMachine &m, const Line &l) {
         m.add(type::Action, l.text);
         m.resetCount();
     }},
    {[](const LineMachine &, const Line &l) { return startsWith(l, '@'); },
     [](LineMachine &m, const Line &l) {
         m.add(type::Character, l.text);
         m.inDialogue = true;
         m.resetCount();
     }},
    // Two blanks keep a speech together across an empty-looking line.
    {[](const LineMachine &m, const Line &l) {
         return m.inDialogue && patterns().twoBlanks.isMatch(l.text);
     },
     [](LineMachine &m, const Line &l) { m.continueDialogue(l.text); }},
    {[](const LineMachine &, const Line &l) { return patterns().blanks.isMatch(l.text); },
     [](LineMachine &m, const Line &l) {
         m.add(type::Action, l.text);
         m.resetCount();
     }},
    {[](const LineMachine &m, const Line &l) { return l.text.isEmpty() && !m.inBoneyard; },
     [](LineMachine &m, const Line &) {
         m.inDialogue = false;
         ++m.blankLines;
     }},
    // What follows "/*" on the opening line of a long boneyard is dropped.
    {[](const LineMachine &, const Line &l) { return patterns().boneyardOpen.isMatch(l.text); },
     [](LineMachine &m, const Line &l) {
         if (patterns().boneyardClose.isMatch(l.text)) {
             QString text = l.text;
             text.remove(QLatin1String("/*")).remove(QLatin1String("*/"));
             m.add(type::Boneyard, text);
             m.inBoneyard = false;
             m.resetCount();
         } else {
             m.boneyard += kNewline;
             m.inBoneyard = true;
         }
     }},
    // So is the text of the closing line.
    {[](const LineMachine &, const Line &l) { return patterns().boneyardClose.isMatch(l.text); },
     [](LineMachine &m, const Line &l) {
         const QString rest = QString(l.text).remove(QLatin1String("*/"));
         if (patterns().blank.isMatch(rest))
             m.boneyard += rest.trimmed();
         m.add(type::Boneyard, m.boneyard);
         m.boneyard.clear();
         m.inBoneyard = false;
         m.resetCount();
     }},
    {[](const LineMachine &m, const Line &) { return m.inBoneyard; },
     [](LineMachine &m, const Line &l) { m.boneyard += l.text + kNewline; }},
    {[](const LineMachine &, const Line &l) { return patterns().pageBreak.isMatch(l.text); },
     [](LineMachine &m, const Line &l) {
         m.add(type::PageBreak, l.text);
         m.resetCount();
     }},
    {[](const LineMachine &, const Line &l) { return isTrimmedAndStartsWith(l, '='); },
     [](LineMachine &m, const Line &l) {
         static const Regex marker(QStringLiteral("^\\s*={1}"));
         m.add(type::Synopsis, marker.replaceFirst(l.text, QString()));
     }},
    {[](const LineMachine &m, const Line &l) {
         return m.blankLines != 0 && patterns().note.isMatch(l.text);
     },
     [](LineMachine &m, const Line &l) {
         QString text = l.text;
         text.remove(QLatin1String("[[")).remove(QLatin1String("]]"));
         m.add(type::Comment, text.trimmed());
     }},
    {[](const LineMachine &, const Line &l) { return isTrimmedAndStartsWith(l, '#'); },
     addSectionHeading},
    // A forced heading; ".." begins ordinary text.
    {[](const LineMachine &, const Line &l) {
         return l.text.size() >= 2 && l.text.at(0) == u'.' && l.text.at(1) != u'.';
     },
     [](LineMachine &m, const Line &l) { m.sceneHeading(l.text, true); }},
    {[](const LineMachine &m, const Line &l) {
         return m.blankLines != 0 && patterns().sceneHeading.isMatch(l.text);
     },
     [](LineMachine &m, const Line &l) { m.sceneHeading(l.text, false); }},
    {[](const LineMachine &, const Line &l) { return patterns().transitionTo.isMatch(l.text); },
     [](LineMachine &m, const Line &l) {
         m.add(type::Transition, l.text);
         m.resetCount();
     }},
    {[](const LineMachine &, const Line &l) { return isFixedTransition(l.text); },
     [](LineMachine &m, const Line &l) {
         m.add(type::Transition, l.text);
         m.resetCount();
     }},
    // Centred text between ">" and "<".
    {[](const LineMachine &, const Line &l) {
         return startsWith(l, '>') && l.text.size() >= 2 && l.text.back() == u'<';
     },
     [](LineMachine &m, const Line &l) {
         QString text = l.text.mid(1).trimmed();
         text.chop(1);
         m.add(type::Action, text.trimmed()).isCentered = true;
         m.resetCount();
     }},
    {[](const LineMachine &, const Line &l) { return startsWith(l, '>'); },
     [](LineMachine &m, const Line &l) {
         m.add(type::Transition, l.text.mid(1).trimmed());
         m.resetCount();
     }},
    {[](const LineMachine &m, const Line &l) {
         return m.blankLines == 0 && m.inDialogue && patterns().parenthesis.isMatch(l.text);
     },
     [](LineMachine &m, const Line &l) { m.add(type::Parenthetical, l.text); }},
    {[](const LineMachine &m, const Line &) { return m.blankLines == 0 && m.inDialogue; },
     [](LineMachine &m, const Line &l) { m.continueDialogue(l.text); }},
    // A line straight under any element continues it; a heading with text
    // under it is no heading.
    {[](const LineMachine &m, const Line &) {
         return m.blankLines == 0 && !m.inDialogue && !m.elements.isEmpty();
     },
     [](LineMachine &m, const Line &l) {
         FNElement &last = *m.last();
         if (last.isType(type::SceneHeading))
             last.elementType = QLatin1String(type::Action);
         last.elementText += kNewline + l.text;
         m.inDialogue = false;
     }},
    {[](const LineMachine &m, const Line &) { return m.blankLines == 0 && m.elements.isEmpty(); },
     [](LineMachine &m, const Line &l) { m.newAction(l.text); }},
    {[](const LineMachine &m, const Line &l) {
         return m.blankLines != 0 && l.nextIsNonEmpty && patterns().characterCue.isMatch(l.text);
     },
     addCharacter},
    {[](const LineMachine &m, const Line &) { return m.inDialogue; },
     [](LineMachine &m, const Line &l) { m.continueDialogue(l.text); }},
    {[](const LineMachine &, const Line &) { return true; },
     [](LineMachine &m, const Line &l) { m.newAction(l.text); }},
}};

} // namespace

std::optional<QString> utf8ContentsOfFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

FastFountainParser::FastFountainParser(const QString &text)
{
    parseContents(text);
}

FastFountainParser FastFountainParser::fromFile(const QString &path)
{
    FastFountainParser parser;
    if (const auto text = utf8ContentsOfFile(path))
        parser.parseContents(*text);
    else
        logLine(QStringLiteral("Couldn't read the file %1").arg(path));
    return parser;
}

void FastFountainParser::parseContents(QString text)
{
    static const Regex leadingSpace(QStringLiteral("^\\s*"));
    static const Regex lineEnds(QStringLiteral("\\r\\n|\\r|\\n"));
    text = lineEnds.replaceAll(leadingSpace.replaceAll(text, QString()), kNewline);
    text += QStringLiteral("\n\n");
    parseBody(takeTitlePage(text));
}

QString FastFountainParser::takeTitlePage(const QString &text)
{
    static const Regex keyAlone(QStringLiteral("^([^\\t\\s][^:]+):([\\t\\s]*$)"));
    static const Regex keyAndValue(QStringLiteral("^([^\\t\\s][^:]+):\\s*([^\\t\\s].*$)"));
    const QString topBlock = text.left(text.indexOf(QLatin1String("\n\n")));

    QString openKey;
    auto openValues = std::make_shared<QStringList>();
    bool found = false;
    for (const QString &line : topBlock.split(kNewline)) {
        const auto alone = keyAlone.match(line);
        if (line.isEmpty() || alone) {
            // The list goes on: the next key alone on its line shares it.
            if (!openKey.isEmpty())
                titlePage.append({openKey, openValues});
            found = true;
            openKey = alone ? titlePageKey(alone->capturedString(line, 1), false) : QString();
        } else if (const auto pair = keyAndValue.match(line)) {
            if (!openKey.isEmpty()) {
                titlePage.append({openKey, openValues});
                openValues = std::make_shared<QStringList>();
            }
            titlePage.append({titlePageKey(pair->capturedString(line, 1), false),
                              std::make_shared<QStringList>(pair->capturedString(line, 2))});
            openValues = std::make_shared<QStringList>();
            openKey.clear();
            found = true;
        } else if (found) {
            openValues->append(line.trimmed());
        }
    }
    if (!found)
        return text;
    if (!openKey.isEmpty() && openValues->isEmpty() && titlePage.isEmpty())
        return text;
    if (!openKey.isEmpty())
        titlePage.append({openKey, openValues});
    if (topBlock.isEmpty())
        return text;
    return QString(text).replace(topBlock, QString());
}

void FastFountainParser::parseBody(const QString &body)
{
    const QStringList lines = splitAtEveryLineEnd(kNewline + body);
    LineMachine machine{elements, 0, false, false, QString()};
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const Line line{lines.at(i), lines.at(i).trimmed(),
                        i + 1 < lines.size() && !lines.at(i + 1).isEmpty()};
        for (const LineRule &rule : kLineRules) {
            if (rule.fits(machine, line)) {
                rule.apply(machine, line);
                break;
            }
        }
    }
}

} // namespace tl::screenplay
