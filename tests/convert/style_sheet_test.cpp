#include "convert/envelope.h"
#include "convert/references.h"
#include "convert/style_sheet.h"
#include "convert/themes.h"
#include "convert_test_support.h"

namespace {

using namespace tl::convert;

class StyleSheets : public tltest::ConvertTest
{
protected:
    // A sheet of the library, by its reference.
    QString librarySheet(const QString &name, const QByteArray &text)
    {
        makeFile(inRoot("TLResources/CSS/" + name), text);
        return "TLResources/CSS/" + name;
    }
    QString documentWithSheet(const QString &reference)
    {
        const QString doc = makeFile(inRoot("Book/Doc.md"), "x");
        writePlist(inRoot("Book/Doc.md.plist"), QVariantMap{{"CSS", reference}});
        return doc;
    }
};

TEST_F(StyleSheets, TheApplicableSheetFallsBackToTheDefaultTheme)
{
    const QString doc = makeFile(inRoot("Doc.md"), "x");
    EXPECT_EQ(tl_applicableStyleSheet(doc), "CSS/Default Theme.css");
    setSetting("defaultStyleSheet", "CSS/Handbook.css");
    EXPECT_EQ(tl_applicableStyleSheet(doc), "CSS/Handbook.css");
    writePlist(inRoot("BookProperties.plist"), QVariantMap{{"CSS", "TLResources/CSS/gone.css"}});
    EXPECT_EQ(tl_applicableStyleSheet(doc), "CSS/Default Theme.css");
    EXPECT_TRUE(availableStyleSheets().contains("CSS/Minimalist Theme.css"));
}

TEST_F(StyleSheets, ShippedSheetsDefineTheThemeVariablesAndLeaveNoVariableBehind)
{
    for (const QString &sheet : availableStyleSheets()) {
        if (sheet == "CSS/MathJax.css")
            continue;
        const QString css = tl_inheritedStyleSheet(documentWithSheet(sheet));
        const QString dark = tl_formattedDocAdjustedToDarkTheme(css);
        EXPECT_FALSE(css.contains("**Tavelle")) << sheet;
        // Browsers drop a length without its unit.
        for (qsizetype at = css.indexOf("padding-left:"); at >= 0;
             at = css.indexOf("padding-left:", at + 1)) {
            const QString value = css.mid(at + 13, css.indexOf(u';', at) - at - 13).trimmed();
            bool isBareNumber = false;
            value.toDouble(&isBareNumber);
            EXPECT_TRUE(!isBareNumber || value == "0") << sheet << ": " << value;
        }
        EXPECT_TRUE(dark.contains("--theme-color: #afafaf;")) << sheet;
        EXPECT_TRUE(dark.contains("--checkbox-done-color: #afafaf;")) << sheet;
    }
}

TEST_F(StyleSheets, VariablesIncludesAndComments)
{
    librarySheet("b.css", "b { color: red; }\n@tl_include: \"a\";\n");
    librarySheet("c.css", "<style>c {}</style><script>go()</script>");
    const QString a = librarySheet(
        "a.css", "/*-- **TavelleFontSize** --*/\nbody { font-size: **TavelleFontSize**; }\n"
                 "  @TL_INCLUDE: \"b.css\";\nx @tl_include: \"c\";\n@tl_include: \"c\";\n"
                 "i { background: url(\"**TavelleBGImage**\"); } /* kept */\nz {}\n");
    const QString css = tl_inheritedStyleSheet(documentWithSheet(a));
    // a.css is no include of its own, so b brings it in once more; c comes
    // in at its first line-start include, and the second is skipped.
    EXPECT_EQ(css, "<style type=\"text/css\"> body { font-size: 14px; } b { color: red; } body { "
                   "font-size: 14px; }  x @tl_include: \"c\"; c {} z {}   x @tl_include: \"c\";  "
                   "z {} </style>\n<script>go()</script>\n");
}

TEST_F(StyleSheets, TextAlignmentTakesTheStoredValuesByWhatTheyContain)
{
    const QString doc =
        documentWithSheet(librarySheet("t.css", "p { text-align: **TavelleTextAlign**; }"));
    struct Case
    {
        QVariant stored;
        const char *alignment;
    };
    const Case cases[] = {
        {QVariant(), "initial"},  {"Align Left", "left"}, {"Align Right", "right"},
        {"Justified", "justify"}, {"Left", "left"},       {"Right", "right"},
        {"center", "center"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.alignment);
        writePlist(inRoot("Book/BookProperties.plist"),
                   c.stored.isValid() ? QVariantMap{{"TextAlignment", c.stored}} : QVariantMap{});
        EXPECT_TRUE(tl_inheritedStyleSheet(doc).contains(
            QStringLiteral("text-align: %1;").arg(QLatin1String(c.alignment))));
    }
}

TEST_F(StyleSheets, AStyleElementIsEmbeddedAsItStandsAndOnlyTheFirstLosesItsLines)
{
    const QString a = librarySheet("a.css", "<style>\n\ta {}\n</style>\n<style>\nb {}\n</style>");
    EXPECT_EQ(tl_inheritedStyleSheet(documentWithSheet(a)),
              "<style> a {} </style>\n<style>\nb {}\n</style>");
}

TEST_F(StyleSheets, TheEnvelopeAndItsTitle)
{
    const QString doc = makeFile(inRoot("Book/Doc.md"), "x");
    const QString html = tl_createFormattedDocWithBody(doc, "<h1 id=\"t\">The <em>Title</em></h1>");
    EXPECT_TRUE(html.startsWith("<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\">\n"
                                "<head>\n  <!-- Generator: Tavelle for Mac 1.0 -->\n  <title>The "
                                "<em>Title</em></title>\n  <meta http-equiv=\"Content-Type\" "
                                "content=\"text/html; charset=utf-8\">\n<style"));
    EXPECT_TRUE(html.endsWith("</head>\n<body>\n<h1 id=\"t\">The <em>Title</em></h1>\n"
                              "</body>\n</html>"));
    EXPECT_TRUE(tl_generatorIsTavelle(html));
    EXPECT_EQ(tl_removeGeneratorTavelle("a<!-- Generator: Tavelle for Mac 9 -->b"), "ab");
}

TEST_F(StyleSheets, UpdatingTheEmbeddedSheetWritesOnlyOnChange)
{
    const QString doc = inRoot("Page.html");
    makeFile(doc, tl_createFormattedDocWithBody(doc, "<h1>Hi</h1>").toUtf8());
    EXPECT_TRUE(tl_updateEmbeddedStylesheet(doc)); // the title becomes the file name
    EXPECT_FALSE(tl_updateEmbeddedStylesheet(doc));
    writePlist(inRoot("Page.html.plist"), QVariantMap{{"noteFontSize", 20}});
    EXPECT_TRUE(tl_applyCurrentStyle(doc));
    EXPECT_TRUE(QString::fromUtf8(tltest::readFile(doc)).contains("font-size: 20px"));
}

TEST_F(StyleSheets, PlainTextRepresentationRoundTrip)
{
    const QString page = "<html><head><!-- Generator: Tavelle 1.0 --></head></html>";
    const QString stored = withPlainTextRepresentation("a --> b", page);
    EXPECT_EQ(stored, "<!-- Plain Text Representation:\na \\-\\-\\> b \n-->\n\n" + page);
    EXPECT_EQ(tl_stripMarkdownFromHTML(stored), page);
    // The page's own comments after the source are not part of it.
    EXPECT_EQ(tl_plainTextRepresentation(stored), "a --> b");
}

TEST_F(StyleSheets, ReferencesBothWays)
{
    const QString image = makeFile(inRoot("Book/TLImages/p.png"), "png");
    EXPECT_EQ(tl_makeReferencesAbsoluteToTLRoot("<img src=\"" + image + "?TLKS1TLKS\">"),
              "<img src=\"/Book/TLImages/p.png\">");
    const QString shown = tl_makeReferencesAbsoluteToSystemRootAtParentPath(
        "<img src=\"/Book/TLImages/p.png\"><img src=\"http://x/y.png\">", inRoot("Book"));
    EXPECT_TRUE(shown.startsWith("<img src=\"" + image + "?TLKS")) << shown;
    EXPECT_TRUE(shown.endsWith("<img src=\"http://x/y.png\">"));
    EXPECT_EQ(tl_stringByRemovingImageCacheMarkers(shown),
              "<img src=\"" + image + "\"><img src=\"http://x/y.png\">");
}

} // namespace
