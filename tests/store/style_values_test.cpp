#include "library_fixture.h"
#include "platform/fonts.h"
#include "store/properties.h"
#include "store/style_values.h"

namespace {

using namespace tl::store;

class StyleValues : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        tl::platform::setFontCatalog(std::make_shared<tl::platform::FixedFontCatalog>(
            QStringList{"Georgia", "Muli", "Courier New"}));
    }
    void TearDown() override
    {
        tl::platform::setFontCatalog(nullptr);
        LibraryTest::TearDown();
    }
};

TEST_F(StyleValues, FaceInheritsOnlyInstalledFontsThenSettingThenMuli)
{
    const QString doc = makeFile(inRoot("Book/Doc.md"));
    EXPECT_EQ(tl_fontFaceAtPath(doc), "Muli");
    setSetting("notesFontName", "Georgia");
    EXPECT_EQ(tl_fontFaceAtPath(doc), "Georgia");
    tl_setProperty(inRoot("Book"), "Not Installed Sans", "notesFontName");
    EXPECT_EQ(tl_fontFaceAtPath(doc), "Georgia");
    tl_setProperty(inRoot("Book"), "Courier New", "notesFontName");
    EXPECT_EQ(tl_fontFaceAtPath(doc), "Courier New");
}

TEST_F(StyleValues, LogDocumentsAlwaysShowInCourierNew)
{
    tl_setProperty(root_, "Georgia", "notesFontName");
    EXPECT_EQ(tl_fontFaceAtPath(makeFile(inRoot("TLMacLog.txt"))), "Courier New");
    EXPECT_EQ(tl_fontFaceAtPath(makeFile(inRoot("Dropbox Log.txt"))), "Courier New");
    EXPECT_EQ(tl_fontFaceAtPath(makeFile(inRoot("Book/TLMacLog.txt"))), "Georgia");
}

TEST_F(StyleValues, SizeSpacingAndConverterFallBackInOrder)
{
    const QString doc = makeFile(inRoot("Book/Doc.md"));
    EXPECT_EQ(tl_fontSizeAtPath(doc), 14);
    EXPECT_DOUBLE_EQ(tl_linespacingAtPath(doc), 1.0);
    EXPECT_EQ(tl_markdownConverterAtPath(doc), 0);
    setSetting("noteFontSize", qint64(16));
    setSetting("lineSpacing", 1.5);
    setSetting("MarkdownConverter", qint64(1));
    EXPECT_EQ(tl_fontSizeAtPath(doc), 16);
    EXPECT_DOUBLE_EQ(tl_linespacingAtPath(doc), 1.5);
    EXPECT_EQ(tl_markdownConverterAtPath(doc), 1);
    tl_setProperty(inRoot("Book"), qint64(18), "noteFontSize");
    tl_setProperty(inRoot("Book"), "2.0", "lineSpacing");
    tl_setProperty(inRoot("Book"), "0", "MarkdownConverter");
    EXPECT_EQ(tl_fontSizeAtPath(doc), 18);
    EXPECT_DOUBLE_EQ(tl_linespacingAtPath(doc), 2.0);
    EXPECT_EQ(tl_markdownConverterAtPath(doc), 0);
}

TEST_F(StyleValues, FontForPathFallsBackToTheSystemFontWhenNothingIsInstalled)
{
    const QString doc = makeFile(inRoot("Doc.md"));
    tl::platform::setFontCatalog(std::make_shared<tl::platform::FixedFontCatalog>(QStringList{}));
    const FontChoice choice = tl_fontForPath(doc);
    EXPECT_TRUE(choice.family.isEmpty());
    EXPECT_EQ(choice.size, 14);
}

} // namespace
