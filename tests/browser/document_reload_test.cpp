#include "document_view_test_support.h"
#include "foundation/path_string.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/properties.h"

namespace {

using tl::browser::TLKSDocumentViewController;

class DocumentReload : public tltest::DocumentViewTest
{
protected:
    // Another program writes the file a minute later than the view saw it.
    void writeFromOutside(const QString &path, const QByteArray &bytes)
    {
        tltest::writeFile(path, bytes);
        tl::platform::setModificationDate(path, oldDate().addSecs(60));
    }
};

TEST_F(DocumentReload, AnOutsideChangeIsShownAnew)
{
    const QString path = document("Shared.txt", "old");
    show(path);
    QSignalSpy shown(view.get(), &TLKSDocumentViewController::documentShown);
    writeFromOutside(path, "new from elsewhere");
    view->checkIfDocumentNeedsReload(path);
    EXPECT_EQ(shown.size(), 1);
    EXPECT_EQ(view->plainText, "new from elsewhere");
}

TEST_F(DocumentReload, TheViewsOwnSaveIsNoOutsideChange)
{
    const QString path = document("Own.txt", "own");
    show(path);
    type("own words");
    view->writeTextToFile();
    QSignalSpy shown(view.get(), &TLKSDocumentViewController::documentShown);
    view->checkIfDocumentNeedsReload(path);
    EXPECT_EQ(shown.size(), 0);
    EXPECT_EQ(view->plainText, "own words");
}

TEST_F(DocumentReload, WhatTheUserIsTypingSurvivesAnOutsideChange)
{
    const QString path = document("Typing.txt", "start");
    show(path);
    type("start and my words");
    writeFromOutside(path, "theirs");
    view->checkIfDocumentNeedsReload(path);
    EXPECT_EQ(view->plainText, "start and my words");
    EXPECT_EQ(tltest::readFile(path), "start and my words");
    EXPECT_FALSE(view->windowEdited());
}

TEST_F(DocumentReload, ChangesOfOtherFilesAreIgnored)
{
    const QString path = document("Mine.txt", "mine");
    const QString other = document("Other.txt", "other");
    show(path);
    QSignalSpy shown(view.get(), &TLKSDocumentViewController::documentShown);
    writeFromOutside(other, "changed");
    view->checkIfDocumentNeedsReload(other);
    EXPECT_EQ(shown.size(), 0);
}

TEST_F(DocumentReload, AnInheritedStyleChangeRendersAgainOutsideTheKeyWindow)
{
    const QString path = document("Styled.md", "# Styled");
    show(path);
    view->isKeyWindow = false;
    QSignalSpy shown(view.get(), &TLKSDocumentViewController::documentShown);
    const QString bookProperties = book + "/BookProperties.plist";
    writePlist(bookProperties, QVariantMap{{"CSS", "CSS/Other.css"}});
    view->checkIfDocumentNeedsReload(bookProperties);
    EXPECT_EQ(shown.size(), 1);

    // The same properties again change nothing.
    view->checkIfDocumentNeedsReload(bookProperties);
    EXPECT_EQ(shown.size(), 1);
}

TEST_F(DocumentReload, AnEditingViewKeepsItsTextWhenOnlyTheLooksChange)
{
    const QString path = document("Edit.md", "# Edit");
    show(path);
    ASSERT_TRUE(view->tl_togglePlainTextAndFormattedView());
    view->isKeyWindow = false;
    type("# Edit more");
    QSignalSpy shown(view.get(), &TLKSDocumentViewController::documentShown);
    writePlist(tl::store::tl_plistPath(path), QVariantMap{{"R/O", "1"}});
    view->checkIfDocumentNeedsReload(tl::store::tl_plistPath(path));
    EXPECT_EQ(shown.size(), 0);
    EXPECT_EQ(view->plainText, "# Edit more");
    EXPECT_TRUE(view->isLocked()) << "the read-only rule is applied again";
}

TEST_F(DocumentReload, AChangedAttachmentOfTheDocumentReloadsIt)
{
    const QString path = document("Photo.md", "![a](TLImages/a.png)");
    tl::store::tl_setProperty(path, QStringList{"a.png"}, "Embedded Photos");
    const QString image = makeFile(book + "/TLImages/a.png");
    show(path);
    QSignalSpy shown(view.get(), &TLKSDocumentViewController::documentShown);
    tl::platform::setModificationDate(image, oldDate().addSecs(2));
    view->checkIfDocumentNeedsReload(image);
    EXPECT_EQ(shown.size(), 0) << "within three seconds of the document";
    tl::platform::setModificationDate(image, oldDate().addSecs(10));
    view->checkIfDocumentNeedsReload(image);
    EXPECT_EQ(shown.size(), 1);
}

TEST_F(DocumentReload, AMoveOfTheDocumentIsFollowed)
{
    const QString path = document("Moving.txt", "moving");
    view->startObserving();
    show(path);
    const QString target = makeFolder(inRoot("Other")) + "/Moving.txt";
    ASSERT_TRUE(tl::platform::moveItem(path, target));
    tl::NotificationCenter::defaultCenter().post("TLKSFileMovedNotification",
                                                 {{"originalPath", path}, {"newPath", target}});
    EXPECT_EQ(view->path, target);
}

using CheckboxToggle = tltest::DocumentViewTest;

TEST_F(CheckboxToggle, TheClickedBoxIsTickedInTheSource)
{
    struct Case
    {
        const char *source;
        const char *task;
        int pos;
        const char *expected;
    };
    const Case cases[] = {
        {"- [ ] a\n- [ ] b\n", "a", -1, "- [x] a\n- [ ] b\n"},
        {"- [x] a\n", "a", -1, "- [ ] a\n"},
        {"- [X] a\n", "- [x] a", -1, "- [ ] a\n"},
        {"- [ ] a\n- [ ] a\n", "a", 1, "- [ ] a\n- [x] a\n"},
        {"- [ ] a b\n- [ ] a\n", "a", -1, "- [ ] a b\n- [x] a\n"},
        {"\\*x\n- [ ] a\n", "a", -1, "*x\n- [x] a\n"},
        {"- [ ] see [[Other.md]]\n", "see [Other](Other.md)", -1, "- [x] see [[Other.md]]\n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.source);
        const QString path = document("Tasks.md", c.source);
        show(path);
        view->toggleMarkdownCheckboxForTask(QLatin1String(c.task), c.pos);
        EXPECT_EQ(tltest::readFile(path), QByteArray(c.expected));
        EXPECT_EQ(view->modDateOfPresentedDocument, dateOf(path));
    }
    EXPECT_TRUE(alerts->shownAlerts().isEmpty());
}

TEST_F(CheckboxToggle, TheRenderedItemsMarkupNamesTheTask)
{
    const QString path =
        document("Tasks.md", "- [ ] call [Bob](Bob.md)\n- [ ] call [Bob](Bob.md)\n");
    show(path);
    view->checkboxClickedInPage("call <a href=\"Bob.md\">Bob</a>", 1);
    EXPECT_EQ(tltest::readFile(path), "- [ ] call [Bob](Bob.md)\n- [x] call [Bob](Bob.md)\n");
}

TEST_F(CheckboxToggle, ExtractingMakesTheMarkedLinesTasksInAListOfTheirOwn)
{
    setSetting("markTaskWithCharacter", "- [ ]");
    const QString path = document("Plan.md", "Plan\n- [ ] Call Bob\n- [x] Done thing\n");
    show(path);
    const QString list = tl::path::deletingExtension(path);
    EXPECT_EQ(view->tl_extractTasks(), QStringList{list + "/Call Bob.txt"});
    EXPECT_TRUE(QFileInfo::exists(list + "/TLTasklistDetails.plist"));
    EXPECT_TRUE(view->tl_extractTasks().isEmpty());
}

TEST_F(CheckboxToggle, AnUnknownTaskShowsTheAlert)
{
    const QString path = document("Tasks.md", "- [ ] a\n");
    show(path);
    view->toggleMarkdownCheckboxForTask("zzz");
    ASSERT_EQ(alerts->shownAlerts().size(), 1);
    EXPECT_EQ(alerts->shownAlerts()[0].message, "Unable to identify task in Plain Text");
    EXPECT_EQ(alerts->shownAlerts()[0].informativeText,
              "Please switch to plain text view to toggle the task.");
    EXPECT_EQ(tltest::readFile(path), "- [ ] a\n");
}

using PlainTextRepresentation = tltest::DocumentViewTest;

TEST_F(PlainTextRepresentation, AStaleRenderingIsRenewedOnceAndTheSourceIsEditedAsMarkdown)
{
    const QString path =
        document("Doc.html", "<!-- Plain Text Representation:\n# Doc\n\nNew *words* \n-->\n\n"
                             "<html><body><p>old</p></body></html>");
    tl::store::tl_setProperty(path, QStringLiteral("EDITING"), "Markdown");
    tl::platform::setModificationDate(path, oldDate());
    show(path);
    ASSERT_EQ(view->viewThatIsVisible, 2);
    const QString renewed = QString::fromUtf8(tltest::readFile(path));
    EXPECT_TRUE(renewed.startsWith("<!-- Plain Text Representation:\n# Doc\n\nNew *words* \n-->"))
        << renewed;
    EXPECT_TRUE(renewed.contains("<em>words</em>"));
    EXPECT_TRUE(view->formattedPage.html.contains("<em>words</em>"));
    EXPECT_EQ(view->modDateOfPresentedDocument, dateOf(path));

    // Shown again, the rendering is current: nothing is written.
    tl::platform::setModificationDate(path, oldDate());
    show(path);
    EXPECT_EQ(dateOf(path), oldDate());

    ASSERT_TRUE(view->tl_togglePlainTextAndFormattedView());
    EXPECT_EQ(view->plainText, "# Doc\n\nNew *words*");
    type("# Doc\n\nNewer --> *words*");
    view->writeTextToFile();
    const QString saved = QString::fromUtf8(tltest::readFile(path));
    EXPECT_TRUE(
        saved.startsWith("<!-- Plain Text Representation:\n# Doc\n\nNewer \\-\\-\\> *words* \n-->"))
        << saved;
}

} // namespace

namespace {

TEST_F(DocumentReload, AReloadOnRequestSavesWhatWasTypedFirst)
{
    const QString path = document("Reloaded.txt", "Not the title");
    view->startObserving();
    show(path);
    type("typed just now");
    tl::NotificationCenter::defaultCenter().post("TLKSReloadCurrentDocument");
    EXPECT_EQ(tltest::readFile(path), "typed just now");
    EXPECT_EQ(view->plainText, "typed just now");
}

} // namespace
