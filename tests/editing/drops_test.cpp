#include "editing/drops.h"
#include "store/library_root.h"
#include "support/test_environment.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace tl::editing;

namespace {

struct DropCase
{
    const char *name;
    const char *path; // "~" is the library root
    bool mayCopy;
    bool markdownDocument;
    bool commandAlone;
    const char *text;
};

const DropCase dropCases[] = {
    {"library document in Markdown", "~/My Book/Doc.md", false, true, false,
     "[Doc](/My%20Book/Doc.md)"},
    {"library document elsewhere", "~/My Book/Doc.md", false, false, false,
     "tavelle://My%20Book/Doc.md"},
    {"outside document in Markdown", "/tmp/Report.pdf", false, true, false,
     "[Report](/tmp/Report.pdf)"},
    {"outside document elsewhere", "/tmp/Report.pdf", false, false, false,
     "file:///tmp/Report.pdf"},
    {"image in Markdown", "~/Pic.png", false, true, false, "[!Pic](/Pic.png)"},
    {"image with Ctrl alone", "~/Pic.png", false, true, true, "[Pic](/Pic.png)"},
    {"copied other file attaches", "/tmp/Report.pdf", true, true, false, ""},
};

// The library root of a test, given back afterwards.
struct RootOverride
{
    explicit RootOverride(const QString &root) { tl::store::setLibraryRootOverride(root); }
    ~RootOverride() { tl::store::setLibraryRootOverride(QString()); }
};

TEST(Drops, TextForEachKindOfFile)
{
    const QString root = QStringLiteral("/home/u/Library");
    const RootOverride library(root);
    for (const DropCase &c : dropCases) {
        SCOPED_TRACE(c.name);
        QString path = QString::fromUtf8(c.path);
        path.replace(u'~', root);
        const DroppedText dropped =
            textForDroppedFile(path, {c.mayCopy, c.markdownDocument, c.commandAlone, root});
        EXPECT_EQ(dropped.text.toStdString(), c.text);
        EXPECT_EQ(dropped.attach, c.mayCopy);
    }
}

TEST(Drops, CopiedTextFileGoesInWhole)
{
    const QString folder = tltest::makeTemporaryFolder(QStringLiteral("Drop"));
    ASSERT_TRUE(tltest::writeFile(folder + QStringLiteral("/note.txt"), "some words\n"));
    const DroppedText dropped =
        textForDroppedFile(folder + QStringLiteral("/note.txt"), {true, true, false, QString()});
    EXPECT_EQ(dropped.text, QStringLiteral("some words\n"));
    EXPECT_FALSE(dropped.attach);
}

TEST(Drops, AttachmentsAreCopiedOnceAndLinkedByKind)
{
    const QString library = tltest::makeTemporaryFolder(QStringLiteral("Library"));
    const QString outside = tltest::makeTemporaryFolder(QStringLiteral("Outside"));
    const QString document = library + QStringLiteral("/Book/Doc.md");
    QDir().mkpath(library + QStringLiteral("/Book"));
    ASSERT_TRUE(tltest::writeFile(outside + QStringLiteral("/my photo.jpg"), "jpeg bytes"));
    ASSERT_TRUE(tltest::writeFile(outside + QStringLiteral("/same.jpg"), "jpeg bytes"));
    const auto first =
        insertImageSavingToTLImages(outside + QStringLiteral("/my photo.jpg"), true, document);
    ASSERT_TRUE(first);
    EXPECT_EQ(*first,
              QStringLiteral("[![my-photo.jpg](TLImages/my-photo.jpg)](TLImages/my-photo.jpg)"));
    // The same bytes under another name use the attachment already there.
    EXPECT_EQ(insertImageSavingToTLImages(outside + QStringLiteral("/same.jpg"), true, document),
              first);
    EXPECT_FALSE(
        insertImageSavingToTLImages(outside + QStringLiteral("/gone.jpg"), true, document));

    EXPECT_EQ(attachmentMarkdown(QStringLiteral("TLImages/clip.wav")),
              QStringLiteral("clip.wav<video src=\"TLImages/clip.wav\" controls></video>"));
    EXPECT_EQ(attachmentMarkdown(QStringLiteral("TLImages/song.mp3")),
              QStringLiteral("song.mp3<audio src=\"TLImages/song.mp3\" controls></audio>"));
    EXPECT_EQ(attachmentMarkdown(QStringLiteral("TLImages/paper.pdf")),
              QStringLiteral("[paper.pdf](TLImages/paper.pdf)"));
}

TEST(PasteAsMarkdown, LinksHtmlAndText)
{
    const QString root = QStringLiteral("/home/u/Library");
    const RootOverride library(root);
    const QString doc = root + QStringLiteral("/Doc.md");
    EXPECT_EQ(tl_pasteAsMarkdown({{}, QStringLiteral("https://example.org/a"), {}},
                                 QStringLiteral("the site"), doc, root),
              QStringLiteral("[the site](https://example.org/a)"));
    EXPECT_EQ(tl_pasteAsMarkdown(
                  {{}, QStringLiteral("https://example.org/p.png"), QStringLiteral("Picture")},
                  QString(), doc, root),
              QStringLiteral("![Picture](https://example.org/p.png)"));
    EXPECT_EQ(tl_pasteAsMarkdown({{}, QStringLiteral("file:///home/u/Library/B/x.md"), {}},
                                 QStringLiteral("x"), doc, root),
              QStringLiteral("[x](/B/x.md)"));
    EXPECT_EQ(
        tl_pasteAsMarkdown({QStringLiteral("<p><b>bold</b></p>"), {}, {}}, QString(), doc, root)
            .trimmed(),
        QStringLiteral("**bold**"));
}

} // namespace
