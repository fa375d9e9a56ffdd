#include "foundation/path_string.h"
#include "publish/compile_text.h"
#include "publish_test_support.h"
#include "store/keys.h"
#include "store/properties.h"

#include <QFileInfo>

using namespace tltest;
using tl::publish::TLKSDocumentCompiler;

namespace {

// Two PNG files that differ only in their last byte.
const QByteArray kImage = QByteArray("\x89PNG\r\n\x1a\nimage-a", 15);
const QByteArray kOtherImage = QByteArray("\x89PNG\r\n\x1a\nimage-b", 15);

class CompileTest : public PublishTest
{
protected:
    QString compile(const QStringList &paths, bool autoFormat = true,
                    const QString &title = QStringLiteral("Out"))
    {
        return compiler_.tl_createHTMLFromDocuments(paths, title, QStringLiteral("<hr>"),
                                                    autoFormat);
    }
    static QString text(const QString &path) { return QString::fromUtf8(readFile(path)); }
};

struct FormatCase
{
    const char *name;
    QStringList documents;
    bool autoFormat;
    const char *extension;
};

TEST_F(CompileTest, OutputKindFollowsTheDocuments)
{
    const FormatCase cases[] = {
        {"markdown only", {"a.md", "b.markdown"}, true, "md"},
        {"one formatted among Markdown", {"a.md", "b.html", "c.md"}, true, "html"},
        {"a mail makes HTML", {"a.txt", "m.eml"}, true, "html"},
        {"text only", {"a.txt", "b.txt"}, true, "txt"},
        {"Markdown last still counts", {"a.txt", "b.txt", "c.md"}, true, "md"},
        {"auto format off", {"a.txt"}, false, "html"},
    };
    for (const FormatCase &c : cases) {
        SCOPED_TRACE(c.name);
        QStringList paths;
        for (const QString &name : c.documents)
            paths << doc(name, "text");
        const QString result = compile(paths, c.autoFormat, QString::fromLatin1(c.name));
        EXPECT_EQ(tl::path::extension(result), QString::fromLatin1(c.extension));
    }
}

TEST_F(CompileTest, DocumentsAreJoinedByTwoEmptyLinesWhateverTheSeparator)
{
    const QString result = compile({doc("a.txt", "one"), doc("b.txt", "two")});
    EXPECT_EQ(text(result), "one\n\n\ntwo\n\n\n");
}

TEST_F(CompileTest, ImageReferencesAreRenumberedAcrossDocuments)
{
    const QString first = doc("a.md", "![x][TLI1] ![y][TLI2]\n\n[TLI1]: TLImages/x.png\n"
                                      "[TLI2]: TLImages/y.png\n");
    const QString second = doc("b.md", "![z][TLI1]\n\n[TLI1]: TLImages/z.png\n");
    EXPECT_EQ(text(compile({first, second})),
              "![x][TLI1] ![y][TLI2]\n\n[TLI1]: TLImages/x.png\n[TLI2]: TLImages/y.png\n\n\n\n"
              "![z][TLI3]\n\n[TLI3]: TLImages/z.png\n\n\n\n");
}

TEST_F(CompileTest, CoverComesFirstAndPngWins)
{
    const QString a = doc("a.txt", "A");
    const QString jpg = doc("Cover.jpg", kImage);
    const QString png = doc("Cover.png", kOtherImage);
    const QString result = compile({a, jpg, png});
    EXPECT_TRUE(text(result).startsWith(tl::publish::compiledImageLine("Cover.png")))
        << text(result);
}

TEST_F(CompileTest, TitleInUseGetsAFreeName)
{
    const QString existing = doc("Out.txt", "keep me");
    const QString result = compile({doc("a.txt", "new")});
    EXPECT_EQ(tl::path::lastComponent(result), "Out 1.txt");
    EXPECT_EQ(readFile(existing), "keep me");
}

TEST_F(CompileTest, HTMLHasTheHeadAndTail)
{
    const QString result = compile({doc("a.md", "# Hello")}, false);
    const QString html = text(result);
    EXPECT_TRUE(html.startsWith(
        "<!DOCTYPE html PUBLIC \"-//W3C//DTD XHTML 1.0 Transitional//EN\" "
        "\"http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd\">\n"
        "<html xmlns=\"http://www.w3.org/1999/xhtml\">\n<head>\n  <!-- Generator: Tavelle"));
    EXPECT_TRUE(html.contains("  <title>Book</title>\n<style")) << html;
    EXPECT_TRUE(html.contains("</head>\n<body>\n<h1"));
    EXPECT_TRUE(html.endsWith("Hello</h1>\n\n\n</body>\n</html>")) << html;
}

TEST_F(CompileTest, ImagesAreCopiedOnceAndRecorded)
{
    makeFile(inRoot("Pictures/p.png"), kImage);
    makeFile(inRoot("Other/q.png"), kImage); // the same picture under another name
    makeFile(inRoot("Other/r.png"), kOtherImage);
    const QString a = doc("a.md", "![](../Pictures/p.png)");
    const QString b = makeFile(inRoot("Other/b.md"), "![](q.png) ![](r.png) ![](/Pictures/p.png)");
    const QString result = compile({a, b});
    EXPECT_EQ(imagesIn(book_), QStringList({"p.png", "r.png"}));
    EXPECT_EQ(text(result), "![](TLImages/p.png)\n\n\n"
                            "![](TLImages/p.png) ![](TLImages/r.png) ![](TLImages/p.png)\n\n\n");
    EXPECT_EQ(tl::store::tl_propertyForKey(result, "Embedded Photos").toStringList(),
              QStringList({"TLImages/p.png", "TLImages/r.png"}));
}

TEST_F(CompileTest, StopAfterTheFirstOfThreeClosesTheDocument)
{
    compiler_.setProgressSheet({{}, [this](double) { compiler_.stopProcess = true; }, {}});
    const QString result =
        compile({doc("a.md", "one"), doc("b.md", "two"), doc("c.md", "three")}, false);
    const QString html = text(result);
    EXPECT_TRUE(html.contains("one"));
    EXPECT_FALSE(html.contains("two"));
    EXPECT_TRUE(html.endsWith("</body>\n</html>"));
}

} // namespace
