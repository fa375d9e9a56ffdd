#include "caret_text.h"
#include "editing/keystroke.h"
#include "editing/line_operations.h"
#include "editing/lists.h"
#include "editing/markdown_wrapping.h"

#include <functional>
#include <gtest/gtest.h>

using namespace tl::editing;

namespace {

using Action = std::function<void(EditorBuffer &, EditorContext &)>;

// Typing replaces the selection; Backspace and Delete take one character.
Action type(const QString &text)
{
    return [text](EditorBuffer &b, EditorContext &c) { typeText(b, c, b.selection(), text); };
}
const Action Return = type(QStringLiteral("\n"));
const Action ShiftReturn = [](EditorBuffer &b, EditorContext &c) {
    c.keys.shift = true;
    typeText(b, c, b.selection(), QStringLiteral("\n"));
};
const Action Tab = type(QStringLiteral("\t"));
const Action TabWithTabs = [](EditorBuffer &b, EditorContext &c) {
    c.settings.indentWithTabs = true;
    typeText(b, c, b.selection(), QStringLiteral("\t"));
};
const Action Backspace = [](EditorBuffer &b, EditorContext &c) {
    const TextRange s = b.selection();
    typeText(b, c, s.length ? s : TextRange{s.location - 1, 1}, QString());
};
const Action ForwardDelete = [](EditorBuffer &b, EditorContext &c) {
    const TextRange s = b.selection();
    typeText(b, c, s.length ? s : TextRange{s.location, 1}, QString());
};
const Action Outdent = [](EditorBuffer &b, EditorContext &c) {
    tabButtonPressed(b, c, true, true);
};
const Action Indent = [](EditorBuffer &b, EditorContext &c) {
    tabButtonPressed(b, c, true, false);
};
const Action ToggleList = [](EditorBuffer &b, EditorContext &c) { tl_toggleList(b, c); };
const Action ReverseToggleList = [](EditorBuffer &b, EditorContext &c) {
    tl_reverseToggleList(b, c);
};
const Action Comment = [](EditorBuffer &b, EditorContext &) { tl_toggleComment(b); };
Action sort(bool caseSensitive, bool descending)
{
    return [=](EditorBuffer &b, EditorContext &c) {
        c.settings.sortCaseSensitive = caseSensitive;
        c.settings.sortDescending = descending;
        tl_sortSelectionbyAlphabet(b, c);
    };
}
Action heading(int level)
{
    return [level](EditorBuffer &b, EditorContext &) { insertMarkdownHeading(b, level); };
}
Action wrap(const QString &open, const QString &close, bool underscore = false)
{
    return [=](EditorBuffer &b, EditorContext &c) {
        c.settings.underscoreEmphasis = underscore;
        insertMarkdownString(b, c, open, close);
    };
}
const Action MoveUp = [](EditorBuffer &b, EditorContext &c) { tl_moveLineUp(b, c); };
const Action MoveDown = [](EditorBuffer &b, EditorContext &c) { tl_moveLineDown(b, c); };
const Action DeleteLine = [](EditorBuffer &b, EditorContext &) { tl_deleteLine(b); };
const Action AdvancedDelete = [](EditorBuffer &b, EditorContext &) { advancedForwardDelete(b); };
Action smartReplace(const QString &text)
{
    return [text](EditorBuffer &b, EditorContext &) {
        tl_smartReplaceCharactersInRange(b, b.selection(), text);
    };
}
Action withoutPairs(const Action &action)
{
    return [action](EditorBuffer &b, EditorContext &c) {
        c.settings.insertClosingCharacters = false;
        action(b, c);
    };
}
Action withoutListRules(const Action &action)
{
    return [action](EditorBuffer &b, EditorContext &c) {
        c.settings.autoIndentLists = false;
        action(b, c);
    };
}
const Action Undoing = [](EditorBuffer &b, EditorContext &c) {
    c.keys.undoing = true;
    typeText(b, c, b.selection(), QStringLiteral("("));
};
const Action DropLibraryURL = [](EditorBuffer &b, EditorContext &c) {
    c.libraryRoot = QStringLiteral("/home/u/My Library");
    typeText(b, c, b.selection(), QStringLiteral("file:///home/u/My%20Library/Book/Doc.md"));
};
const Action DropOutsideURL = [](EditorBuffer &b, EditorContext &c) {
    c.libraryRoot = QStringLiteral("/home/u/My Library");
    typeText(b, c, b.selection(), QStringLiteral("file:///tmp/Doc.md"));
};

struct Case
{
    const char *name;
    const char *before;
    Action action;
    const char *after;
};

const Case cases[] = {
    // Lists continue on Return.
    {"number continues", "3. x|", Return, "3. x\n4. |"},
    {"number renumbers below", "1. a|\n2. b\n3. c", Return, "1. a\n2. |\n3. b\n4. c"},
    {"number with parenthesis", "1) a|", Return, "1) a\n2) |"},
    {"number indented", "    7. a|", Return, "    7. a\n    8. |"},
    {"empty number ends the list", "3. x\n4. |", Return, "3. x\n|\n"},
    {"empty indented item outdents", "1. a\n    1. |", Return, "1. a\n2. |"},
    {"empty bullet ends the list", "- a\n- |", Return, "- a\n|\n"},
    {"empty bullet mid text", "- a\n- |\nafter", Return, "- a\n|\nafter"},
    {"bullet continues", "- item|", Return, "- item\n- |"},
    {"star bullet", "* item|", Return, "* item\n* |"},
    {"plus bullet", "+ item|", Return, "+ item\n+ |"},
    {"bullet with dash", "— item|", Return, "— item\n— |"},
    {"bullet dot", "• item|", Return, "• item\n• |"},
    {"quote continues", "> quoted|", Return, "> quoted\n> |"},
    {"definition continues", ": term|", Return, ": term\n: |"},
    {"task continues open", "- [x] done|", Return, "- [x] done\n- [ ] |"},
    {"task capital X", "- [X] done|", Return, "- [X] done\n- [ ] |"},
    {"open task continues", "- [ ] todo|", Return, "- [ ] todo\n- [ ] |"},
    {"comment continues", "// note|", Return, "// note\n// |"},
    {"indent continues", "    code|", Return, "    code\n    |"},
    {"tab indent continues", "\tcode|", Return, "\tcode\n\t|"},
    {"plain line adds nothing", "plain|", Return, "plain\n|"},
    {"first line with dash only", "-|", Return, "-\n|"},
    {"after empty line nothing", "- a\n\n|", Return, "- a\n\n\n|"},
    {"shift return aligns", "- item|", ShiftReturn, "- item\n  |"},
    {"shift return number", "12. item|", ShiftReturn, "12. item\n    |"},
    {"shift return task", "- [ ] t|", ShiftReturn, "- [ ] t\n      |"},
    {"continuation line finds marker", "- item\n  more|", Return, "- item\n  more\n- |"},
    {"continuation of numbered item", "2. item\n   more|", Return, "2. item\n   more\n3. |"},
    {"return splitting an item", "- ab|cd", Return, "- ab\n- |cd"},
    {"return after prefix keeps text", "- |cd", Return, "- \n|cd"},
    {"list rules off", "- item|", withoutListRules(Return), "- item\n|"},
    {"sub-list keeps numbers", "1. a\n2. b\n3. c|\n    1. x\n    2. y\n4. d", Return,
     "1. a\n2. b\n3. c\n4. |\n    1. x\n    2. y\n5. d"},
    {"sub-list renumbered within", "1. a\n    1. x|\n    2. y\n2. b", Return,
     "1. a\n    1. x\n    2. |\n    3. y\n2. b"},
    {"renumber stops at blank line", "1. a|\n2. b\n\n2. c", Return, "1. a\n2. |\n3. b\n\n2. c"},
    {"renumber two-digit", "9. a|\n10. b", Return, "9. a\n10. |\n11. b"},
    // Return between a pair.
    {"return before closer leaves pair", "f(a|)", Return, "f(a)\n|"},
    {"return inside wiki link", "[[a|]]", Return, "[[a]]\n|"},
    {"return inside braces", "{{a|}}", Return, "{{a}}\n|"},
    {"return in list item before closer", "- (a|)", Return, "- (a)\n- |"},
    {"shift return before closer", "(a|)", ShiftReturn, "(a\n|)"},
    {"return before closer at start", "|)", Return, "\n|)"},
    {"return before closer without pairs", "(a|)", withoutPairs(Return), "(a\n|)"},
    // Pairs.
    {"paren pairs", "a |", type("("), "a (|)"},
    {"bracket pairs", "|", type("["), "[|]"},
    {"brace pairs", "x |", type("{"), "x {|}"},
    {"backtick pairs", "a |", type("`"), "a `|`"},
    {"quote pairs", "say |", type("\""), "say \"|\""},
    {"single quote pairs", "say |", type("'"), "say '|'"},
    {"paren before a letter", "|word", type("("), "(|word"},
    {"paren before a digit", "|42", type("("), "(|42"},
    {"quote after a letter", "word|", type("\""), "word\"|"},
    {"apostrophe inside a word", "don|", type("'"), "don'|"},
    {"backtick after backtick", "`|", type("`"), "``|"},
    {"quote after quote", "\"|", type("\""), "\"\"|"},
    {"paren after a letter pairs", "f|", type("("), "f(|)"},
    {"second bracket doubles", "[|]", type("["), "[[|]]"},
    {"second brace doubles", "{|}", type("{"), "{{|}}"},
    {"third bracket takes them off", "[[|]]", type("["), "|"},
    {"paren in empty pair takes it off", "(|)", type("("), "|"},
    {"selection wrapped in parens", "«word»", type("("), "(«word»)"},
    {"selection wrapped in quotes", "a «b» c", type("\""), "a \"«b»\" c"},
    {"selection wrapped in backticks", "«code»", type("`"), "`«code»`"},
    {"pairs off", "a |", withoutPairs(type("(")), "a (|"},
    {"types over closer", "(a|)", type(")"), "(a)|"},
    {"types over bracket", "[a|]", type("]"), "[a]|"},
    {"types over backtick", "`a|`", type("`"), "`a`|"},
    {"types over curly quote", "“a|”", type("\""), "“a”|"},
    {"types over curly single quote", "‘a|’", type("'"), "‘a’|"},
    {"closer before other char inserts", "(a|b", type(")"), "(a)|b"},
    {"closer at end inserts", "a|", type(")"), "a)|"},
    {"deleting empty pair", "(|)", Backspace, "|"},
    {"deleting bracket pair", "[|]", Backspace, "|"},
    {"deleting opener before other closer", "(|]", Backspace, "|"},
    {"deleting opener before text", "(|a)", Backspace, "|a)"},
    {"deleting pair without pairs", "(|)", withoutPairs(Backspace), "|)"},
    {"undoing skips the rules", "a |", Undoing, "a (|"},
    // Tab.
    {"tab indents a bullet at its prefix", "- |", Tab, "    - |"},
    {"tab indents a number and renumbers", "1. a\n2. |", Tab, "1. a\n    1. |"},
    {"tab indents a task", "- [ ] |", Tab, "    - [ ] |"},
    {"tab with tabs setting", "- |", TabWithTabs, "\t- |"},
    {"tab after item text inserts a tab", "- item|", Tab, "- item\t|"},
    {"tab in plain text", "word|", Tab, "word\t|"},
    {"tab on blank line", "|", Tab, "\t|"},
    {"tab over lines indents all", "«- a\n- b»", Tab, "    «- a\n    - b»"},
    {"tab over plain lines indents all", "«a\nb»", Tab, "    «a\n    b»"},
    {"outdent four blanks", "    - a|", Outdent, "- a|"},
    {"outdent a tab", "\t- a|", Outdent, "- a|"},
    {"outdent several lines", "«    - a\n    - b»", Outdent, "«- a\n- b»"},
    {"outdent mixed lines", "«    - a\n- b»", Outdent, "«- a\n- b»"},
    {"outdent nothing to take", "- a|", Outdent, "- a|"},
    {"outdent two blanks stays", "  - a|", Outdent, "  - a|"},
    {"outdent renumbers", "1. a\n    1. b|", Outdent, "1. a\n2. b|"},
    {"indent forced on plain text", "te|xt", Indent, "    te|xt"},
    // The list cycle.
    {"plain to bullet", "a|", ToggleList, "- a|"},
    {"bullet to number", "- a|", ToggleList, "1. a|"},
    {"number to task", "1. a|", ToggleList, "- [ ] a|"},
    {"task to plain", "- [ ] a|", ToggleList, "a|"},
    {"ticked task to plain", "- [x] a|", ToggleList, "a|"},
    {"bullets to numbers renumbered", "«- a\n- b\n- c»", ToggleList, "«1. a\n2. b\n3. c»"},
    {"plain lines to bullets", "«a\nb»", ToggleList, "«- a\n- b»"},
    {"indented plain to bullet", "  a|", ToggleList, "  - a|"},
    {"reverse plain to task", "a|", ReverseToggleList, "- [ ] a|"},
    {"reverse bullet to plain", "- a|", ReverseToggleList, "a|"},
    // Comments.
    {"comment a line", "a|", Comment, "«// a»"},
    {"comment lines", "«a\nb»", Comment, "«// a\n// b»"},
    {"uncomment a line", "// a|", Comment, "«a»"},
    {"uncomment indented", "  // a|", Comment, "«a»"},
    // Sorting.
    {"sort keeps final newline", "«b\na\n»", sort(false, false), "«a\nb\n»"},
    {"sort without final newline", "«b\na»", sort(false, false), "«a\nb»"},
    {"sort descending", "«a\nc\nb»", sort(false, true), "«c\nb\na»"},
    {"sort ignoring case", "«b\nA\na»", sort(false, false), "«A\na\nb»"},
    {"sort case-sensitive", "«B\nb\na»", sort(true, false), "«a\nb\nB»"},
    {"sort locale order", "«é\nf\ne»", sort(false, false), "«e\né\nf»"},
    // Headings.
    {"heading 1", "Title|", heading(1), "# Title|"},
    {"heading 3 from 1", "# Title|", heading(3), "### Title|"},
    {"heading 0 removes", "## Title|", heading(0), "Title|"},
    {"heading keeps caret from end", "Ti|tle", heading(2), "## Ti|tle"},
    {"heading caret at start", "|## Title", heading(0), "|Title"},
    {"heading strips blanks", "#   Title|", heading(5), "##### Title|"},
    {"heading of second line", "a\nb|", heading(1), "a\n# b|"},
    // Wrapping.
    {"bold wraps", "a «b» c", wrap("**", "**"), "a **«b»** c"},
    {"bold unwraps", "a **«b»** c", wrap("**", "**"), "a «b» c"},
    {"italic wraps", "«b»", wrap("*", "*"), "*«b»*"},
    {"italic unwraps", "*«b»*", wrap("*", "*"), "«b»"},
    {"italic inside bold wraps", "**«b»**", wrap("*", "*"), "***«b»***"},
    {"italic underscore inside bold", "__«b»__", wrap("_", "_", true), "___«b»___"},
    {"caret wraps empty", "a |", wrap("**", "**"), "a **|**"},
    {"strike wraps", "«x»", wrap("~~", "~~"), "~~«x»~~"},
    {"highlight wraps", "«x»", wrap("==", "=="), "==«x»=="},
    {"caret inside pair unwraps", "a [[li|nk]] b", wrap("[[", "]]"), "a «link» b"},
    {"caret outside pair wraps", "[[a]] |b", wrap("[[", "]]"), "[[a]] [[|]]b"},
    {"link wraps", "«name»", wrap("[", "]()"), "[«name»]()"},
    // Line operations.
    {"move line up", "a\nb|", MoveUp, "b|\na"},
    {"move line up middle", "a\nb|\nc", MoveUp, "b|\na\nc"},
    {"move first line up", "a|\nb", MoveUp, "a|\nb"},
    {"move line down", "a|\nb", MoveDown, "b\na|"},
    {"move line down middle", "a|\nb\nc", MoveDown, "b\na|\nc"},
    {"move last line down", "a\nb|", MoveDown, "a\nb|"},
    {"move numbered line renumbers", "1. a\n2. b|", MoveUp, "2. b|\n3. a"},
    {"delete line", "a\nb|\nc", DeleteLine, "a\n|c"},
    {"delete empty last line", "a\n|", DeleteLine, "a|"},
    {"advanced forward delete", "x|abxc", AdvancedDelete, "x|c"},
    {"advanced delete ignores case", "A|bca", AdvancedDelete, "A|"},
    {"advanced delete nothing found", "x|abc", AdvancedDelete, "x|abc"},
    {"advanced delete at start", "|abc", AdvancedDelete, "|abc"},
    {"smart replace adds blanks", "a|b", smartReplace("x"), "a x |b"},
    {"smart replace next to blanks", "a |", smartReplace("x"), "a x|"},
    {"smart replace at start", "|b", smartReplace("x"), "x |b"},
    // Dropped file URLs and deletions.
    {"library file url becomes link", "|", DropLibraryURL, "tavelle://show/Book/Doc.md|"},
    {"outside file url stays", "|", DropOutsideURL, "file:///tmp/Doc.md|"},
    {"deleted newline renumbers", "1. a\n2. b\n|\n3. c", Backspace, "1. a\n2. b|\n3. c"},
    {"joined lists renumber", "1. a\n2. b\n\n|1. c", Backspace, "1. a\n2. b\n|3. c"},
};

class EditingRules : public testing::TestWithParam<Case>
{
};

TEST_P(EditingRules, GiveTheText)
{
    const Case &c = GetParam();
    EditorBuffer buffer = tltest::markedBuffer(QString::fromUtf8(c.before));
    EditorContext context;
    c.action(buffer, context);
    EXPECT_EQ(tltest::marked(buffer), QString::fromUtf8(c.after));
}

INSTANTIATE_TEST_SUITE_P(Table, EditingRules, testing::ValuesIn(cases),
                         [](const auto &info) { return tltest::caseName(info); });

TEST(EditingRules, ALockedDocumentRefusesEveryEdit)
{
    EditorBuffer buffer = tltest::markedBuffer(QStringLiteral("- item|"), true);
    EditorContext context;
    typeText(buffer, context, buffer.selection(), QStringLiteral("\n"));
    tl_toggleList(buffer, context);
    EXPECT_EQ(buffer.text(), QStringLiteral("- item"));
    EXPECT_TRUE(buffer.replacements().isEmpty());
}

TEST(EditingRules, ParagraphsEndAtEverySeparator)
{
    const EditorBuffer buffer(QStringLiteral("a\r\nb\rc\u2029d\ne"));
    EXPECT_EQ(buffer.paragraphRange(0), (TextRange{0, 3}));
    EXPECT_EQ(buffer.paragraphRange(3), (TextRange{3, 2}));
    EXPECT_EQ(buffer.paragraphRange(5), (TextRange{5, 2}));
    EXPECT_EQ(buffer.paragraphRange(7), (TextRange{7, 2}));
    EXPECT_EQ(buffer.paragraphRange(9), (TextRange{9, 1}));
    EXPECT_EQ(withNewlineParagraphs(QStringLiteral("a\r\nb\rc\u2029d")),
              QStringLiteral("a\nb\nc\nd"));
}

} // namespace
