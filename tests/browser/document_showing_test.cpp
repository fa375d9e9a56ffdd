#include "browser/browser_keys.h"
#include "document_view_test_support.h"
#include "foundation/events.h"
#include "store/keys.h"
#include "store/properties.h"

namespace {

using tl::browser::DocumentLock;
using tl::browser::TLKSDocumentViewController;
namespace S = tl::keys::setting;

struct ViewCase
{
    const char *name;
    QByteArray contents;
    bool toggled;
    int view;
    // What the formatted page is made of: "html", "url" or "" for none.
    const char *page;
    bool scripts;
    bool editable;
    const char *toggleTitle;
    const char *setting = nullptr; // a setting turned on for the row
};

const QByteArray kHTML = "<html><head><title>x</title></head><body><p>Hi</p></body></html>";
const QByteArray kWebloc =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">"
    "<dict><key>URL</key><string>https://example.org/</string></dict></plist>";
const QByteArray kScene = "INT. HOUSE - DAY\n\nHi.";
const QByteArray kOPML = "<opml><body><outline text=\"x\"/></body></opml>";
const char *kPlainSetting = S::ShowMarkdownAsPlainText;
const char *kToFormatted = "Switch to formatted view";
const char *kSource = "Show HTML source code";

const ViewCase kViewCases[] = {
    {"a.md", "# A", false, 2, "html", true, false, ""},
    {"a.md", "# A", true, 1, "", false, false, ""},
    {"a.md", "# A", false, 1, "", false, false, "", kPlainSetting},
    {"a.md", "# A", true, 2, "html", true, false, "", kPlainSetting},
    {"a.fountain", kScene, false, 2, "html", false, false, ""},
    {"a.fountain", kScene, true, 1, "", false, false, ""},
    {"a.opml", kOPML, false, 2, "html", false, false, ""},
    {"a.txt", "text", false, 1, "", false, false, kToFormatted},
    {"a.txt", "text", true, 2, "url", false, false, kToFormatted},
    {"a.html", kHTML, false, 2, "html", false, true, kSource},
    {"a.html", kHTML, true, 1, "", false, false, kSource},
    {"a.pdf", "%PDF-1.4", false, 3, "", false, false, ""},
    {"a.pdf", "%PDF-1.4", true, 3, "", false, false, ""},
    {"a.webloc", kWebloc, false, 2, "url", true, false, ""},
    {"a.url", "[InternetShortcut]\nURL=http://example.org/x\n", false, 2, "url", true, false, ""},
    {"b.url", "[InternetShortcut]\nURL=ftp://example.org/x\n", false, 5, "", false, false, ""},
    {"a.eml", "Subject: x\n\nbody", false, 2, "html", false, false, ""},
    {"a.enex", "<en-export/>", false, 2, "html", false, false, ""},
    {"a.png", "png", false, 2, "html", false, false, ""},
    {"a.heic", "heic", false, 5, "", false, false, ""},
    {"a.xyz", "xyz", false, 5, "", false, false, ""},
    {"a.webarchive", "bplist", false, 5, "", false, false, ""},
    {"a.webarchive", "bplist", false, 2, "html", false, false, "",
     S::OpenWebarchivesWithTLKSMethods},
};

using DocumentShowing = tltest::DocumentViewTest;

TEST_F(DocumentShowing, EachKindTakesTheViewOfTheTable)
{
    tl::store::textConversions().emlToHTML = [](const QString &) {
        return QStringLiteral("<p>m</p>");
    };
    tl::store::textConversions().webarchiveToHTML = [](const QString &) {
        return QStringLiteral("<p>w</p>");
    };
    for (const ViewCase &c : kViewCases) {
        SCOPED_TRACE(QStringLiteral("%1 toggled %2 %3")
                         .arg(QLatin1String(c.name))
                         .arg(c.toggled)
                         .arg(QLatin1String(c.setting)));
        if (c.setting)
            setSetting(c.setting, true);
        view->path = document(QLatin1String(c.name), c.contents);
        view->presentingToggledView = c.toggled;
        view->showDocument();
        EXPECT_EQ(view->viewThatIsVisible, c.view);
        const QString page = QLatin1String(c.page);
        EXPECT_EQ(!view->formattedPage.html.isEmpty(), page == u"html");
        EXPECT_EQ(!view->formattedPage.url.isEmpty(), page == u"url");
        EXPECT_EQ(view->formattedPage.documentScriptsAllowed, c.scripts);
        EXPECT_EQ(view->formattedPage.editable, c.editable);
        EXPECT_EQ(view->toggleTitle, QLatin1String(c.toggleTitle));
        if (c.setting)
            tl::platform::settings().remove(c.setting);
    }
    tl::store::textConversions().emlToHTML = nullptr;
    tl::store::textConversions().webarchiveToHTML = nullptr;
}

TEST_F(DocumentShowing, AKindWithoutItsConverterShowsAsAPreview)
{
    show(document("a.eml", "Subject: x\n\nbody"));
    EXPECT_EQ(view->viewThatIsVisible, 5);
}

TEST_F(DocumentShowing, PlainTextShowsTheFileInItsEncodingAndNotesTheFirstLineTitle)
{
    const QString path = document("Groceries.txt", "Groceries\nmilk\n");
    show(path);
    EXPECT_EQ(view->plainText, "Groceries\nmilk\n");
    EXPECT_TRUE(view->titleIsFirstLineOfText);
    EXPECT_TRUE(view->md5hash.isEmpty()) << "the hash waits for the first edit";

    const QString other = document("Other.txt", "Groceries\n");
    show(other);
    EXPECT_FALSE(view->titleIsFirstLineOfText);
}

TEST_F(DocumentShowing, MarkdownIsRenderedWithItsScriptsAllowed)
{
    show(document("Notes.md", "# Title\n\nSome *text*."));
    EXPECT_TRUE(view->formattedPage.html.contains("<em>text</em>"));
    EXPECT_TRUE(view->formattedPage.baseUrl.startsWith("file://"));
}

TEST_F(DocumentShowing, EvernoteExportShowsTheImportPage)
{
    show(document("Export.enex", "<en-export/>"));
    EXPECT_TRUE(
        view->formattedPage.html.contains("This file contains notes exported from Evernote."));
    EXPECT_TRUE(view->formattedPage.html.contains("Click to extract and import..."));
}

TEST_F(DocumentShowing, MailMarkersTakeTheDocumentsFont)
{
    tl::store::textConversions().emlToHTML = [](const QString &) {
        return QStringLiteral("<body style=\"font:**TavelleFontSize**px **TavelleFont**\"></body>");
    };
    const QString path = document("Mail.eml", "Subject: x\n\nbody");
    tl::store::tl_setProperty(path, QStringLiteral("System Monospaced"),
                              QLatin1String(tl::keys::property::NotesFontName));
    tl::store::tl_setProperty(path, 17, QLatin1String(tl::keys::property::NoteFontSize));
    show(path);
    tl::store::textConversions().emlToHTML = nullptr;
    EXPECT_TRUE(view->formattedPage.html.contains("font:17px")) << view->formattedPage.html;
}

TEST_F(DocumentShowing, TheLockRuleFollowsTheReadOnlyPropertyAndVersionsPaths)
{
    const QString path = document("Locked.txt", "Locked");
    tl::store::tl_setProperty(path, QStringLiteral("1"),
                              QLatin1String(tl::keys::property::ReadOnly));
    show(path);
    EXPECT_EQ(view->lock, DocumentLock::ReadOnlyProperty);

    const QString version = makeFile(inRoot("Book/com.apple.documentVersions/v.txt"));
    show(version);
    EXPECT_EQ(view->lock, DocumentLock::VersionsPath);
    EXPECT_FALSE(view->textShouldBeginEditing());
    EXPECT_TRUE(alerts->shownAlerts().isEmpty()) << "no alert in a versions path";
}

TEST_F(DocumentShowing, AKeyOnALockedDocumentAsksToUnlock)
{
    const QString path = document("Locked.txt", "Locked");
    tl::store::tl_setProperty(path, QStringLiteral("1"),
                              QLatin1String(tl::keys::property::ReadOnly));
    show(path);
    alerts->pushAnswer(0);
    EXPECT_FALSE(view->textShouldBeginEditing());
    ASSERT_EQ(alerts->shownAlerts().size(), 1);
    const tl::platform::Alert alert = alerts->shownAlerts().first();
    EXPECT_EQ(alert.message, "This Document is Read Only");
    EXPECT_EQ(alert.informativeText, "If you want to make changes to this document, click Unlock.");
    EXPECT_EQ(alert.buttons, (QStringList{"OK", "Unlock"}));
    EXPECT_TRUE(view->isLocked());

    alerts->pushAnswer(1);
    EXPECT_TRUE(view->textShouldBeginEditing());
    EXPECT_FALSE(view->isLocked());
    EXPECT_TRUE(
        tl::store::tl_propertyForKey(path, tl::keys::property::ReadOnly).toString().isEmpty());
}

TEST_F(DocumentShowing, OffsetsAreRememberedPerViewAndRestored)
{
    const QString text = document("Long.txt", "Long text");
    show(text);
    view->characterOffset = 42;
    view->saveCurrentDocumentOffset();
    EXPECT_EQ(tl::store::tl_propertyForKey(text, "CharacterOffset").toLongLong(), 42);

    const QString pdf = document("Paper.pdf", "%PDF-1.4");
    show(pdf);
    view->currentPDFPage = 3;
    view->saveCurrentDocumentOffset();
    EXPECT_EQ(tl::store::tl_propertyForKey(pdf, "CurrentPDFPage").toString(), "3");

    show(text);
    EXPECT_EQ(view->characterOffset, 42);
    show(pdf);
    EXPECT_EQ(view->currentPDFPage, 3);
}

TEST_F(DocumentShowing, SelectingTheDocumentAgainInItsToggledViewReturnsToItsOwnView)
{
    const QString path = document("Notes.md", "# Notes");
    view->selectNewDocument(path);
    EXPECT_EQ(view->viewThatIsVisible, 2);
    EXPECT_TRUE(view->tl_togglePlainTextAndFormattedView());
    EXPECT_EQ(view->viewThatIsVisible, 1);
    view->selectNewDocument(path);
    EXPECT_EQ(view->viewThatIsVisible, 1) << "the return waits 0.2 seconds";
    advance(0.2);
    EXPECT_EQ(view->viewThatIsVisible, 2);
}

TEST_F(DocumentShowing, ToggleIsIgnoredOutsideTheKeyWindowAndWaitsForASave)
{
    const QString path = document("Notes.md", "# Notes");
    show(path);
    view->isKeyWindow = false;
    EXPECT_FALSE(view->tl_togglePlainTextAndFormattedView());
    EXPECT_EQ(view->viewThatIsVisible, 2);

    view->isKeyWindow = true;
    ASSERT_TRUE(view->tl_togglePlainTextAndFormattedView());
    type("# Notes\nmore");
    EXPECT_FALSE(view->tl_togglePlainTextAndFormattedView()) << "an edited window saves first";
    EXPECT_EQ(tltest::readFile(path), "# Notes\nmore");
    advance(0.2);
    EXPECT_EQ(view->viewThatIsVisible, 2);
}

TEST_F(DocumentShowing, AnEmptySelectionClearsTheViewWhenBooksHideDocuments)
{
    setSetting(S::HideDocumentWhenChangingBook, true);
    show(document("a.txt", "a"));
    view->selectNewDocument(QString());
    EXPECT_EQ(view->viewThatIsVisible, 1);
    advance(0.1);
    EXPECT_EQ(view->viewThatIsVisible, 0);
    EXPECT_TRUE(view->path.isEmpty());
}

TEST_F(DocumentShowing, AnchorsAndSearchKeysAreTakenFromTheSelection)
{
    const QString path = document("a.md", "# a");
    view->selectNewDocument(path + "#part", "\"*word*\"");
    EXPECT_EQ(view->path, path);
    EXPECT_EQ(view->anchor, "part");
    EXPECT_EQ(view->searchKey, "word");
}

} // namespace

namespace {

using DocumentHistory = tltest::DocumentViewTest;

TEST_F(DocumentHistory, BackAndForwardFollowSelectionsRenamesAndNewDocuments)
{
    const QString a = document("a.txt", "not a title");
    const QString b = document("b.txt", "b");
    view->selectNewDocument(a);
    view->selectNewDocument(b);
    EXPECT_EQ(view->backForwardList(), (QStringList{a, b}));
    EXPECT_TRUE(view->canGoBack());
    EXPECT_FALSE(view->canGoForward());

    view->goBack();
    EXPECT_EQ(view->path, a);
    EXPECT_TRUE(view->canGoForward());

    // The first line renames b while it is in the list.
    view->goForward();
    type("bee");
    view->writeTextToFile();
    EXPECT_EQ(view->backForwardList(), (QStringList{a, book + "/bee.txt"}));

    view->newDocumentInBook(book);
    type("Fresh");
    view->writeTextToFile();
    EXPECT_EQ(view->backForwardList().last(), book + "/Fresh.txt");

    // A selection after going back drops what lay ahead; gone documents are passed over.
    view->goBack();
    EXPECT_EQ(view->path, book + "/bee.txt");
    view->selectNewDocument(a);
    EXPECT_EQ(view->backForwardList(), (QStringList{a, book + "/bee.txt", a}));
    QFile::remove(book + "/bee.txt");
    view->goBack();
    EXPECT_EQ(view->path, a);
    EXPECT_EQ(view->backForwardList().indexOf(a), 0);
}

} // namespace
