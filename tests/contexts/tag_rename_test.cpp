#include "contexts/tag_database.h"
#include "contexts/tag_rename.h"
#include "contexts_fixture.h"
#include "platform/alerts.h"

namespace {

using namespace tl::contexts;

struct TextCase
{
    const char *text;
    const char *newName;
    bool html;
    const char *expected;
};

const TextCase kTexts[] = {
    {"at @home, and @home.\n@home", "@house", false, "at @house, and @home.\n@house"},
    {"@homework @home;", "@house", false, "@homework @house;"},
    {"x@home (@home)", "@house", false, "x@home (@home)"},
    // Deleting leaves the comma that followed.
    {"#idea, more", "", false, ", more"},
    // The replacement is literal text, the tag a literal pattern.
    {"@a.b @axb", "$1\\", false, "$1\\ @axb"},
    {"<head><title> @home</title></head><body><p>@home and @home&amp; @home</p></body>\n", "@house",
     true, "<head><title> @home</title></head><body><p>@house and @house&amp; @house</p></body>\n"},
};

TEST(TagRenameInText, Table)
{
    for (const TextCase &c : kTexts) {
        SCOPED_TRACE(c.text);
        const QString tag = QString::fromUtf8(c.text).contains("#idea")  ? "#idea"
                            : QString::fromUtf8(c.text).contains("@a.b") ? "@a.b"
                                                                         : "@home";
        EXPECT_EQ(tl_renameTagInText(c.text, tag, c.newName, c.html), QString(c.expected));
    }
}

class TagRename : public tltest::ContextsTest
{
protected:
    void SetUp() override
    {
        ContextsTest::SetUp();
        alerts = std::make_shared<tl::platform::HeadlessAlertPresenter>();
        tl::platform::setAlertPresenter(alerts);
    }
    void TearDown() override
    {
        tl::platform::setAlertPresenter(nullptr);
        ContextsTest::TearDown();
    }
    std::shared_ptr<tl::platform::HeadlessAlertPresenter> alerts;
};

TEST_F(TagRename, RenamesItemsIndexListAndTextWhenAsked)
{
    const QString doc = item("a.txt", {"x", "@home", "_TLFAV"});
    tltest::writeFile(doc, "go @home now");
    tl_collectTagsInPlist(doc);
    alerts->pushAnswer(0);
    tl_renameTagTo("@home", "@house");
    EXPECT_EQ(tagsOf(doc), (QStringList{"x", "@house", "_TLFAV"}));
    EXPECT_EQ(available(), (QStringList{"x", "@house"}));
    EXPECT_EQ(entry("@house"), QStringList{"/a.txt"});
    EXPECT_FALSE(index().contains("@home"));
    EXPECT_EQ(tltest::readFile(doc), "go @house now");
    ASSERT_EQ(alerts->shownAlerts().size(), 1);
    EXPECT_EQ(alerts->shownAlerts().front().buttons.front(), "Rename in Text");
}

TEST_F(TagRename, CancelLeavesTheTextAndSilentDoesNotAsk)
{
    const QString doc = item("a.txt", {"@home"});
    tltest::writeFile(doc, "go @home");
    tl_collectTagsInPlist(doc);
    alerts->pushAnswer(1);
    tl_renameTagTo("@home", "");
    EXPECT_EQ(tltest::readFile(doc), "go @home");
    EXPECT_TRUE(tagsOf(doc).isEmpty());
    EXPECT_TRUE(available().isEmpty());
    EXPECT_EQ(alerts->shownAlerts().front().buttons.front(), "Delete from Text");
    item("b.txt", {"@b"});
    tl_collectTagsInPlist(inRoot("b.txt"));
    tl_renameTagTo("@b", "@c", true);
    EXPECT_EQ(alerts->shownAlerts().size(), 1);
}

TEST_F(TagRename, RenamingOntoAnExistingTagReplacesItsEntry)
{
    tl_collectTagsInPlist(item("a.txt", {"a"}));
    tl_collectTagsInPlist(item("b.txt", {"b"}));
    tl_renameTagTo("a", "b", true);
    EXPECT_EQ(entry("b"), QStringList{"/a.txt"});
    EXPECT_EQ(available(), QStringList{"b"});
}

TEST_F(TagRename, ExcludingWritesTheListSortedAndDeletesTheTag)
{
    tltest::writeFile(excludedTagsPath(), "b, a");
    tl_collectTagsInPlist(item("a.txt", {"@Zed", "y"}));
    tl_excludeTag("@Zed");
    EXPECT_EQ(tltest::readFile(excludedTagsPath()), "@Zed\na\nb");
    EXPECT_EQ(tagsOf(inRoot("a.txt")), QStringList{"y"});
    EXPECT_EQ(available(), QStringList{"y"});
}

} // namespace
