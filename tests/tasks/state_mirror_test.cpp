#include "store/item_path.h"
#include "store/properties.h"
#include "task_fixture.h"
#include "tasks/task_list.h"

namespace tl::tasks {
namespace {

using tltest::TaskListTest;

TEST_F(TaskListTest, FinishingCancelingAndReopeningMarkTheSourceLine)
{
    // A name shortened on extraction; the task's text holds the whole line.
    const QString longName = QString(110, u'a');
    const QByteArray longLine = QByteArray(120, 'a');
    const struct
    {
        const char *mark;
        const char *source; // below the root
        QByteArray text;
        QString task;
        // The source after started, done, canceled, open; empty when unchanged.
        std::array<QByteArray, 4> after;
    } cases[] = {
        {"- [ ]",
         "Notes.md",
         "x\n - [ ] Buy milk \ny",
         "Buy milk.txt",
         {"x\n - [ ] Buy milk \ny", "x\n - [x] Buy milk \ny", "x\n -  Buy milk \ny",
          "x\n - [ ] Buy milk \ny"}},
        {"*",
         "My Notes.txt",
         "* Buy milk",
         "Buy milk.txt",
         {"* Buy milk", "✓ Buy milk", "× Buy milk", "* Buy milk"}},
        {"->",
         "Page.html",
         "<li>->\tBuy milk</li>",
         "Buy milk.txt",
         {"<li>->\tBuy milk</li>", "<li>✓\tBuy milk</li>", "<li>×\tBuy milk</li>",
          "<li>->\tBuy milk</li>"}},
        {"*",
         "Long.md",
         "* " + longLine,
         longName + ".txt",
         {"", "✓ " + longLine, "× " + longLine, "* " + longLine}},
        // Must not mirror: a line holding more, an extension in capitals, no
        // mark, a title that is no valid expression, a shortened ".md" name.
        {"*", "More.md", "* Buy milk today", "Buy milk.txt", {}},
        {"*", "Caps.MD", "* Buy milk", "Buy milk.txt", {}},
        {"", "Plain.md", "* Buy milk", "Buy milk.txt", {}},
        {"*", "Odd.md", "* Buy (milk", "Buy (milk.txt", {}},
        {"*", "Short.md", "* " + longLine, longName + ".md", {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.source);
        setSetting("markTaskWithCharacter", c.mark);
        const QString source = makeFile(inRoot(c.source), c.text);
        writePlist(plist(), QVariantMap());
        const QString item = book_ + "/" + c.task;
        makeFile(item, longLine);
        store::tl_setProperty(
            item, "tavelle://show" + store::percentEncodedForPath(store::tl_normalizedPath(source)),
            "URL");
        QByteArray expected = c.text;
        for (const QByteArray &after : c.after) {
            tl_toggleTask(item);
            expected = after.isEmpty() ? expected : after;
            EXPECT_EQ(tltest::readFile(source), expected);
        }
    }
}

} // namespace
} // namespace tl::tasks
