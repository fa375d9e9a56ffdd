#include "links/link_forms.h"
#include "links/reference_scan.h"
#include "store/library_fixture.h"

namespace tl::links {
namespace {

using tltest::LibraryTest;

QStringList found(const QString &text)
{
    QStringList list;
    for (const Reference &r : referencesInText(text))
        list << r.path + " " + r.rangeText();
    return list;
}

TEST(ReferenceScan, EachFormWithItsRange)
{
    struct Case
    {
        const char *text;
        QStringList expected;
    };
    const Case cases[] = {
        {"<img src=\"a.png\">", {"a.png {10, 5}"}},
        {"<a href=\"B/c.md\">x</a>", {"B/c.md {9, 6}"}},
        {"[[Target|Label]] [[A]]", {"Target {2, 6}", "A {19, 1}"}},
        {"![](TLImages/p.png)", {"TLImages/p.png {4, 14}"}},
        {"see tavelle://show/B/C.md now", {"tavelle://show/B/C.md {4, 21}"}},
        {"x\n[id]: ../img.png", {"../img.png {8, 10}"}},
        // A definition on the first line has no newline before it.
        {"[id]: ../img.png", {}},
        {"[a](http://x.y) [b](#section) [c](mailto:x)", {"mailto:x {34, 8}"}},
        // Found by the inline form and by the greedy scheme form, which
        // takes the closing parenthesis too: two records over one place.
        {"[a](tavelle://show/B/C.md)",
         {"tavelle://show/B/C.md {4, 21}", "tavelle://show/B/C.md) {4, 22}"}},
        // Equal records once.
        {"<a href=\"tavelle://show/x\">", {"tavelle://show/x {9, 16}"}},
        // UTF-16 places: the emoji counts two.
        {"\xF0\x9F\x98\x80[[x.md]]", {"x.md {4, 4}"}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(found(QString::fromUtf8(c.text)), c.expected) << c.text;
}

using VerifiedReferences = LibraryTest;

TEST_F(VerifiedReferences, ExistingItemsOnlyInTextOrder)
{
    makeFile(inRoot("A/x.md"));
    makeFile(inRoot("A/my doc.md"));
    makeFile(inRoot("A/R&D.md"));
    makeFile(inRoot("B/y.md"));
    const QString doc = makeFile(
        inRoot("A/doc.md"),
        "[[../B/y.md]] [a](x.md#part) [b](my%20doc.md) [c](/B/y.md) [[Missing]] "
        "[d](R%26amp;D.md) tavelle://show/A/x.md tavelle://search%20x [e](.) [f](/nope.md) "
        "[g](http://a.b/x.md)");
    EXPECT_EQ(tl_verifiedArrayOfReferencedDocuments(doc),
              (QStringList{"/B/y.md", "/A/x.md", "/A/my doc.md", "/A/R&D.md", "/A"}));
}

TEST_F(VerifiedReferences, ANameStoredDecomposedIsFoundComposed)
{
    makeFile(inRoot(QString::fromUtf8("A/Cafe\xCC\x81.md")));
    const QString doc = makeFile(inRoot("A/doc.md"), "[c](Caf\xC3\xA9.md)");
    EXPECT_EQ(tl_verifiedArrayOfReferencedDocuments(doc).size(), 1);
}

TEST_F(VerifiedReferences, UnreadableDocumentHasNone)
{
    EXPECT_TRUE(tl_verifiedArrayOfReferencedDocuments(inRoot("gone.md")).isEmpty());
    EXPECT_TRUE(tl_arrayOfAllReferencesInDocument(inRoot("gone.md")).isEmpty());
}

TEST_F(VerifiedReferences, CopyLinkForms)
{
    const QString doc = inRoot("My Book/Doc one.md");
    EXPECT_EQ(tl_copyURLToPastboardText(doc), "tavelle://show/My%20Book/Doc%20one.md");
    EXPECT_EQ(tl_copyURLToPastboardText(doc, "part"), "tavelle://show/My%20Book/Doc%20one.md#part");
    EXPECT_EQ(tl_copyMarkdownLinkText(doc), "[Doc one](tavelle:///My%20Book/Doc%20one.md)");
}

} // namespace
} // namespace tl::links
