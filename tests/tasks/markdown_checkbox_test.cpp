#include "platform/alerts.h"
#include "store/library_fixture.h"
#include "tasks/markdown_checkbox.h"

namespace tl::tasks {
namespace {

using tltest::LibraryTest;

TEST_F(LibraryTest, CheckboxClicksToggleTheLineOfTheirTask)
{
    using R = CheckboxToggle;
    const struct
    {
        const char *text;
        const char *task;
        std::optional<qsizetype> pos;
        const char *after;
        CheckboxToggle result;
    } cases[] = {
        {"# List\n- [ ] a\n- [ ] b\n", "b", {}, "# List\n- [ ] a\n- [x] b\n", R::Toggled},
        {"- [x] a\r\n", "- [x] a", {}, "- [ ] a\r\n", R::Toggled},
        {"- [X] a", "a", {}, "- [ ] a", R::Toggled},
        {"- [ ] a\n- [ ] a\n", "a", 1, "- [ ] a\n- [x] a\n", R::Toggled},
        {"- [ ] a b\n- [ ] a\n", "a", {}, "- [ ] a b\n- [x] a\n", R::Toggled},
        {"- [ ] see [[Doc.md]]\n", "see [Doc](Doc.md)", {}, "- [x] see [[Doc.md]]\n", R::Toggled},
        {"Keep \\*this\\*\n- [ ] a\n", "a", {}, "Keep *this*\n- [x] a\n", R::Toggled},
        {"- [ ] a b\n", "a", {}, "- [ ] a b\n", R::NotFound},
        {"- [ ] a\n", "a", 1, "- [ ] a\n", R::NotFound},
        {"", "a", {}, "", R::Unchanged},
    };
    auto presenter = std::make_shared<platform::HeadlessAlertPresenter>();
    platform::setAlertPresenter(presenter);
    const QString doc = inRoot("List.md");
    int alerts = 0;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        makeFile(doc, c.text);
        EXPECT_EQ(toggleMarkdownCheckboxForTask(doc, c.task, c.pos), c.result);
        EXPECT_EQ(tltest::readFile(doc), c.after);
        alerts += c.result == R::NotFound;
        ASSERT_EQ(presenter->shownAlerts().size(), alerts);
    }
    EXPECT_EQ(presenter->shownAlerts().last().message, "Unable to identify task in Plain Text");
    platform::setAlertPresenter(nullptr);
}

} // namespace
} // namespace tl::tasks
