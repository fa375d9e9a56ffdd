#include "contexts/tag_files.h"
#include "document_view_test_support.h"
#include "foundation/plist.h"

#include <algorithm>

namespace {

class DocumentContexts : public tltest::DocumentViewTest
{
protected:
    void SetUp() override
    {
        DocumentViewTest::SetUp();
        setSetting("contextsEnabled", true);
        setSetting("extractContextsAutomatically", true);
    }
    QStringList tagsOf(const QString &path) const
    {
        QStringList tags = readPlist(path + ".plist").value("Tags").toStringList();
        std::sort(tags.begin(), tags.end());
        return tags;
    }
    void saveAs(const QString &text)
    {
        type(text);
        view->writeTextToFile();
    }
};

TEST_F(DocumentContexts, SavesFollowTheWordsOfTheTextAndKeepHandGivenTags)
{
    struct Step
    {
        const char *text;
        QStringList tags;
    };
    const QString path = document("Plan.txt", "Plan");
    writePlist(path + ".plist", QVariantMap{{"Tags", QStringList{"hand"}}});
    tltest::writeFile(tl::contexts::availableTagsPath(), tl::plist::toXml(QStringList{"hand"}));
    show(path);
    const Step steps[] = {
        {"Plan\n@home #idea", {"#idea", "@home", "hand"}},
        {"Plan\n@home", {"@home", "hand"}},
        {"Plan\n@office hand", {"@office", "hand"}},
    };
    for (const Step &step : steps) {
        SCOPED_TRACE(step.text);
        saveAs(step.text);
        EXPECT_EQ(tagsOf(path), step.tags);
    }
}

TEST_F(DocumentContexts, NothingChangesWithExtractionOff)
{
    setSetting("extractContextsAutomatically", false);
    const QString path = document("Plan.txt", "Plan");
    show(path);
    saveAs("Plan\n@home");
    EXPECT_TRUE(tagsOf(path).isEmpty());
}

TEST_F(DocumentContexts, AWordWithoutTheTagCountsAsNewOnShowing)
{
    // The text held @home already, but the item lost the tag: the next save
    // gives it back.
    const QString path = document("Plan.txt", "Plan @home");
    show(path);
    saveAs("Plan @home today");
    EXPECT_EQ(tagsOf(path), QStringList{"@home"});
}

} // namespace
