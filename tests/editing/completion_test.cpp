#include "caret_text.h"
#include "editing/completion.h"
#include "support/test_environment.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace tl::editing;

namespace {

// A library: Notes/{Today.md, Other.md, Doc 2.md, Doc 10.md, Drafts/Idea.md}, Archive/Old.md.
class Completion : public testing::Test
{
protected:
    void SetUp() override
    {
        root = QDir(tltest::makeTemporaryFolder(QStringLiteral("Library"))).canonicalPath();
        for (const char *file :
             {"Notes/Today.md", "Notes/Doc 2.md", "Notes/Doc 10.md", "Notes/Drafts/Idea.md",
              "Archive/Old.md", "Solo/Only.md", "Solo/Other.md"}) {
            const QString path = root + u'/' + QString::fromLatin1(file);
            QDir().mkpath(QFileInfo(path).path());
            ASSERT_TRUE(tltest::writeFile(path, "# Heading\n"));
        }
    }
    // Tab in `marked` of the document at `document`: the text after, or the list shown.
    QString tab(const QString &marked, const QString &document, QStringList *shownList = nullptr)
    {
        EditorBuffer buffer = tltest::markedBuffer(marked);
        std::optional<Completions> shown;
        EditorSettings settings;
        settings.numericOrder = true;
        tryToAutoExpandWikiPath(buffer, root + u'/' + document, root, settings, shown);
        if (shownList && shown)
            *shownList = shown->suggestions;
        return tltest::marked(buffer);
    }
    QString root;
};

TEST_F(Completion, OneOtherDocumentIsInsertedAtOnce)
{
    EXPECT_EQ(tab(QStringLiteral("[[|]]"), QStringLiteral("Solo/Only.md")),
              QStringLiteral("[[Other.md|]]"));
}

TEST_F(Completion, SeveralAreListedDocumentsFirstInNumericOrder)
{
    QStringList shown;
    EXPECT_EQ(tab(QStringLiteral("[[|]]"), QStringLiteral("Notes/Today.md"), &shown),
              QStringLiteral("[[|]]"));
    EXPECT_EQ(shown,
              (QStringList{QStringLiteral("Notes/Doc 2.md"), QStringLiteral("Notes/Doc 10.md"),
                           QStringLiteral("Notes/Drafts/")}));
}

TEST_F(Completion, ATypedWordSearchesDeepAndInsertsRelatively)
{
    EXPECT_EQ(tab(QStringLiteral("see [x](Ide|)"), QStringLiteral("Notes/Today.md")),
              QStringLiteral("see [x](Drafts/Idea.md|)"));
    EXPECT_EQ(tab(QStringLiteral("[[/Archive/O|]]"), QStringLiteral("Notes/Today.md")),
              QStringLiteral("[[../Archive/Old.md|]]"));
}

TEST_F(Completion, AnUnknownPathFallsBackToTheFuzzySearch)
{
    EXPECT_EQ(tab(QStringLiteral("{{/no/dr/ide|}}"), QStringLiteral("Archive/Old.md")),
              QStringLiteral("{{../Notes/Drafts/Idea.md|}}"));
}

TEST_F(Completion, OutsideAConstructNothingFires)
{
    QStringList shown;
    EXPECT_EQ(tab(QStringLiteral("[[a]] |"), QStringLiteral("Notes/Today.md"), &shown),
              QStringLiteral("[[a]] |"));
    EXPECT_TRUE(shown.isEmpty());
}

TEST_F(Completion, AnchorsOfTheDocument)
{
    tltest::writeFile(root + QStringLiteral("/Notes/Today.md"), "# Intro\n\n# Index\n\n# Other\n");
    QStringList shown;
    tab(QStringLiteral("[[#In|]]"), QStringLiteral("Notes/Today.md"), &shown);
    EXPECT_EQ(shown, (QStringList{QStringLiteral("Index"), QStringLiteral("Intro")}));
}

TEST(PasteIntoConstruct, ALinkReplacesTheInnerText)
{
    const QString root = QStringLiteral("/home/u/Library");
    EditorBuffer buffer = tltest::markedBuffer(QStringLiteral("see [x](old|)"));
    EXPECT_TRUE(
        pasteLinkIntoConstruct(buffer, QStringLiteral("file:///home/u/Library/B/n.md"), root));
    EXPECT_EQ(tltest::marked(buffer), QStringLiteral("see [x](/B/n.md|)"));
    EXPECT_FALSE(pasteLinkIntoConstruct(buffer, QStringLiteral("plain words"), root));
    EditorBuffer outside = tltest::markedBuffer(QStringLiteral("see |"));
    EXPECT_FALSE(pasteLinkIntoConstruct(outside, QStringLiteral("https://example.org"), root));
}

TEST(ContextCompletion, TagsThatBeginWithTheTypedWord)
{
    EditorSettings settings;
    settings.contextsEnabled = settings.extractContextsAutomatically = true;
    const QStringList tags{QStringLiteral("@world"), QStringLiteral("@Work"),
                           QStringLiteral("#work"), QStringLiteral("@home")};
    EditorBuffer buffer = tltest::markedBuffer(QStringLiteral("call @wo|"));
    std::optional<Completions> shown;
    ASSERT_TRUE(tryToSuggestContextTags(buffer, tags, settings, shown));
    EXPECT_EQ(shown->suggestions, (QStringList{QStringLiteral("@Work"), QStringLiteral("@world")}));
    EXPECT_EQ(shown->prefixRange, (TextRange{5, 3}));
    tl_insertCompletion(buffer, *shown, 1, QString());
    EXPECT_EQ(tltest::marked(buffer), QStringLiteral("call @world|"));

    settings.extractContextsAutomatically = false;
    shown.reset();
    EXPECT_FALSE(tryToSuggestContextTags(buffer, tags, settings, shown));
}

} // namespace
