#include "library_fixture.h"
#include "store/colors.h"
#include "store/properties.h"

namespace {

using namespace tl::store;

using Colors = tltest::LibraryTest;

TEST_F(Colors, OutsideTheLibraryBlackOnWhite)
{
    const DocumentColors c = tl_colorsAtPath(makeFile(outside("Doc.md")));
    EXPECT_EQ(c.text, (RGBA{0, 0, 0, 1}));
    EXPECT_EQ(c.background, (RGBA{1, 1, 1, 1}));
    EXPECT_TRUE(c.backgroundImage.isEmpty());
}

TEST_F(Colors, TextInheritsAndBackgroundStopsAtTheFirstLevelWithColourOrImage)
{
    const QString doc = makeFile(inRoot("Book/Sub/Doc.md"));
    tl_setProperty(root_, "0.1000 0.2000 0.3000 1.0000", "TextColor");
    tl_setProperty(inRoot("Book"), "0.5000 0.5000 0.5000 1.0000", "BackgroundColor");
    tl_setProperty(inRoot("Book/Sub"), "TLResources/BG/paper.png", "BackgroundImage");
    const DocumentColors c = tl_colorsAtPath(doc);
    EXPECT_EQ(c.text, (RGBA{0.1, 0.2, 0.3, 1}));
    // The image level stops the walk before the book's colour is seen.
    EXPECT_EQ(c.backgroundImage, "TLResources/BG/paper.png");
    EXPECT_EQ(c.background, (RGBA{1, 1, 1, 1}));
}

TEST_F(Colors, ImageOutsideResourcesIsCutToItsNameAndSettingsFillTheGaps)
{
    const QString doc = makeFile(inRoot("Book/Doc.md"));
    setSetting("BackgroundImage", "/usr/share/backgrounds/linen.png");
    setSetting("BackgroundColor", "0.9000 0.9000 0.8000 1.0000");
    setSetting("TextColor", "0.2000 0.2000 0.2000 1.0000");
    const DocumentColors c = tl_colorsAtPath(doc);
    EXPECT_EQ(c.backgroundImage, "linen.png");
    EXPECT_EQ(c.background, (RGBA{0.9, 0.9, 0.8, 1}));
    EXPECT_EQ(c.text, (RGBA{0.2, 0.2, 0.2, 1}));
}

TEST_F(Colors, SolarizedThemeReplacesShownColoursButKeepsThePlainOnes)
{
    const QString doc = makeFile(inRoot("Doc.md"));
    tl_setProperty(doc, "0.1000 0.1000 0.1000 1.0000", "TextColor");
    setSetting("useSolarizedTheme", true);
    setSetting("darkTheme", true);
    DocumentColors c = tl_colorsAtPath(doc);
    EXPECT_EQ(c.text, (RGBA{0.5137, 0.5803, 0.5882, 1}));
    EXPECT_EQ(c.background, (RGBA{0.0, 0.1686, 0.2118, 1}));
    EXPECT_EQ(c.plainText, (RGBA{0.1, 0.1, 0.1, 1}));
    EXPECT_EQ(c.plainBackground, (RGBA{1, 1, 1, 1}));
    setSetting("darkTheme", false);
    c = tl_colorsAtPath(doc);
    EXPECT_EQ(c.background, (RGBA{0.9921, 0.9647, 0.8901, 1}));
}

TEST(ColorText, ParsesTheStoredFormatAndRejectsOthers)
{
    EXPECT_EQ(colorFromString("1.0000 0.5000 0.0000 0.2500"), (RGBA{1, 0.5, 0, 0.25}));
    EXPECT_FALSE(colorFromString("red").has_value());
    EXPECT_FALSE(colorFromString("1 2 3").has_value());
    EXPECT_EQ(stringFromColor({1, 0.5, 0, 0.25}), "1.0000 0.5000 0.0000 0.2500");
}

} // namespace
