#include "links/link_rewrite.h"
#include "platform/file_ops.h"
#include "store/library_fixture.h"

namespace tl::links {
namespace {

class LinkRewrite : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        for (const char *file : {"A/y.md", "A/new doc.md", "A/x.md.bak", "A/TLImages/p.png",
                                 "A/Q/x.md", "C/other.md", "B/x.md"})
            makeFile(inRoot(file));
    }
};

struct Case
{
    const char *name;
    const char *document;
    const char *text;
    const char *from;
    const char *to;
    const char *expected;
};

TEST_F(LinkRewrite, EachCaseEditsOnlyInsideItsRange)
{
    const Case cases[] = {
        {"A absolute", "B/z.md", "[l](/A/x.md) and /A/x.md in prose", "/A/x.md", "/A/y.md",
         "[l](/A/y.md) and /A/x.md in prose"},
        {"A scheme link", "B/z.md", "see tavelle://show/A/x.md", "/A/x.md", "/A/y.md",
         "see tavelle://show/A/y.md"},
        {"A inline and greedy scheme records edited once", "B/z.md", "[a](tavelle://show/A/x.md)",
         "/A/x.md", "/A/y.md", "[a](tavelle://show/A/y.md)"},
        {"A guard: already at the target", "B/z.md", "[l](/A/x.md.bak)", "/A/x.md", "/A/x.md.bak",
         "[l](/A/x.md.bak)"},
        {"A guard lifted when the old path lies under the new", "C/z.md", "[l](/A/Q/x.md)", "/A/Q",
         "/A", "[l](/A/x.md)"},
        {"B absolute, encoded", "B/z.md", "[l](/A/my%20doc.md)", "/A/my doc.md", "/A/new doc.md",
         "[l](/A/new%20doc.md)"},
        {"C other root path", "B/z.md", "[l](/C/other.md)", "/A/x.md", "/A/y.md",
         "[l](/C/other.md)"},
        {"D own link to an attachment left behind", "B/x.md", "![](TLImages/p.png)", "/A/x.md",
         "/B/x.md", "![](../A/TLImages/p.png)"},
        {"D own link that still works", "B/x.md", "[o](../C/other.md)", "/A/x.md", "/B/x.md",
         "[o](../C/other.md)"},
        {"E into a moved book", "C/z.md", "[l](../A/B/x.md)", "/A/B", "/A/Q", "[l](../A/Q/x.md)"},
        {"F names the item, relative", "B/z.md", "[[../A/x.md]]", "/A/x.md", "/A/y.md",
         "[[../A/y.md]]"},
        {"F names the item, same folder", "A/z.md", "[[x.md|X]]", "/A/x.md", "/A/y.md",
         "[[y.md|X]]"},
        // The suffix test is as it stands: any tail of the old path counts.
        {"F suffix pinned", "B/z.md", "[l](md)", "/A/x.md", "/A/y.md", "[l](../A/y.md)"},
        {"G relative prefix with anchor", "C/z.md", "[l](../A/x.md#sec)", "/A/x.md", "/A/y.md",
         "[l](../A/y.md#sec)"},
        {"H relative prefix, encoded", "C/z.md", "[l](../A/my%20doc.md#s)", "/A/my doc.md",
         "/A/new doc.md", "[l](../A/new%20doc.md#s)"},
        {"unrelated", "C/z.md", "[l](../A/w.md) http://a/x.md", "/A/x.md", "/A/y.md",
         "[l](../A/w.md) http://a/x.md"},
    };
    for (const Case &c : cases) {
        const QString document = inRoot(c.document);
        EXPECT_EQ(textWithLinksRenamed(QString::fromUtf8(c.text), document, c.from, c.to),
                  QString::fromUtf8(c.expected))
            << c.name;
    }
}

TEST_F(LinkRewrite, RewrittenOnceAndUnchangedDocumentsKeepTheirDate)
{
    const QString linker = makeFile(inRoot("B/z.md"), "[l](/A/x.md)");
    const QString other = makeFile(inRoot("B/w.md"), "[l](/A/other.md)");
    platform::setModificationDate(other, oldDate());
    EXPECT_TRUE(tl_renameLinksInDocumentFrom(linker, inRoot("A/x.md"), inRoot("A/x.md.bak")));
    EXPECT_FALSE(tl_renameLinksInDocumentFrom(linker, inRoot("A/x.md"), inRoot("A/x.md.bak")));
    EXPECT_EQ(tltest::readFile(linker), "[l](/A/x.md.bak)");
    EXPECT_FALSE(tl_renameLinksInDocumentFrom(other, inRoot("A/x.md"), inRoot("A/y.md")));
    EXPECT_EQ(platform::modificationDate(other), oldDate());
    EXPECT_FALSE(tl_renameLinksInDocumentFrom(inRoot("B/gone.md"), "/A/x.md", "/A/y.md"));
}

TEST_F(LinkRewrite, KeepsTheDocumentsEncoding)
{
    const QString linker = makeFile(inRoot("B/latin.md"), "caf\xE9 [l](/A/x.md)");
    EXPECT_TRUE(tl_renameLinksInDocumentFrom(linker, "/A/x.md", "/A/y.md"));
    EXPECT_EQ(tltest::readFile(linker), QByteArray("caf\xE9 [l](/A/y.md)"));
}

} // namespace
} // namespace tl::links
