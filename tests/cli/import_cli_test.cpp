#include "cli_support.h"
#include "foundation/plist.h"
#include "support/test_environment.h"

#include <QDir>
#include <gtest/gtest.h>

namespace {

using tltest::runTavelle;

class ImportCommand : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!tltest::tavelleAvailable())
            GTEST_SKIP() << "TAVELLE_CLI is not set";
        home = tltest::makeTemporaryFolder("import-home");
        library = home + "/Library";
        QDir().mkpath(library + "/Book");
        ASSERT_TRUE(tltest::writeFile(home + "/Note.eml",
                                      "Subject: Hi\nContent-Type: text/html\n\n<p>hello</p>\n"));
        ASSERT_TRUE(tltest::writeFile(home + "/Plan.opml",
                                      "<opml><body><outline text=\"a\"/></body></opml>"));
        ASSERT_TRUE(tltest::writeFile(library + "/Book/Note.eml", "taken"));
    }
    tltest::CommandResult run(QStringList args) const
    {
        return runTavelle(home, QStringList{"--library", library} + args);
    }
    QString home;
    QString library;
};

TEST_F(ImportCommand, MailAndOutlinesComeInUnderFreeNames)
{
    const auto r =
        run({"import", home + "/Note.eml", home + "/Plan.opml", "--into", library + "/Book"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, library + "/Book/Note 1.eml\n" + library + "/Book/Plan.opml\n");
}

TEST_F(ImportCommand, EvernoteNotesComeInAsDocuments)
{
    ASSERT_TRUE(tltest::writeFile(home + "/n.enex",
                                  "<en-export><note><title>One</title><content>&lt;en-note&gt;"
                                  "x&lt;/en-note&gt;</content></note></en-export>"));
    const auto r = run({"import", home + "/n.enex"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, library + "/One.html\n");
}

TEST_F(ImportCommand, OtherKindsAreRefusedAndTheRestComesIn)
{
    ASSERT_TRUE(tltest::writeFile(home + "/a.txt", "a"));
    const auto r = run({"import", home + "/a.txt", home + "/Plan.opml"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, library + "/Plan.opml\n");
    EXPECT_FALSE(QFile::exists(library + "/a.txt"));
}

TEST_F(ImportCommand, ConversionsPrintTheHTMLShown)
{
    const auto mail = run({"eml2html", home + "/Note.eml"});
    ASSERT_EQ(mail.exitCode, 0) << mail.err.toStdString();
    EXPECT_TRUE(mail.out.contains("font-weight: bold;\">Hi</div>")) << mail.out.toStdString();
    const auto outline = run({"opml2html", home + "/Plan.opml"});
    ASSERT_EQ(outline.exitCode, 0) << outline.err.toStdString();
    EXPECT_EQ(outline.out, "\n<ul>\n\n<li>a</li>\n</ul>\n\n");
}

TEST_F(ImportCommand, WebArchivesShowOrBecomeDocuments)
{
    const QVariantMap page{{"WebResourceURL", "https://x.org/p"},
                           {"WebResourceMIMEType", "text/html"},
                           {"WebResourceData", QByteArray("<p>saved</p>")}};
    ASSERT_TRUE(tltest::writeFile(library + "/Book/Page.webarchive",
                                  tl::plist::toBinary(QVariantMap{{"WebMainResource", page}})));
    const auto shown = run({"webarchive2html", library + "/Book/Page.webarchive"});
    ASSERT_EQ(shown.exitCode, 0) << shown.err.toStdString();
    EXPECT_EQ(shown.out, "<p>saved</p>\n");
    const auto saved = run({"webarchive2html", "--save", library + "/Book/Page.webarchive"});
    ASSERT_EQ(saved.exitCode, 0) << saved.err.toStdString();
    EXPECT_EQ(saved.out, library + "/Book/Page.html\n");
    EXPECT_TRUE(tltest::readFile(library + "/Book/Page.html").contains("<p>saved</p>"));

    const auto junk = run({"webarchive2html", home + "/Plan.opml"});
    EXPECT_EQ(junk.exitCode, 1);
    EXPECT_EQ(junk.err.count('\n'), 1) << junk.err.toStdString();
    EXPECT_EQ(run({"webarchive2html", "--save", "-o", "x", home + "/Plan.opml"}).exitCode, 2);
}

} // namespace
