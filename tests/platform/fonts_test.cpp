#include "platform/fonts.h"

#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>

namespace tl::platform {
namespace {

TEST(Fonts, FixedCatalogIgnoresCase)
{
    FixedFontCatalog catalog({"Muli", "Courier New", "Helvetica-Bold"});
    const struct
    {
        const char *name;
        bool available;
    } cases[] = {{"Muli", true},
                 {"muli", true},
                 {"COURIER NEW", true},
                 {"Helvetica-Bold", true},
                 {"Helvetica", false},
                 {"Courier", false},
                 {"", false}};
    for (const auto &c : cases)
        EXPECT_EQ(catalog.isAvailable(c.name), c.available) << c.name;
}

TEST(Fonts, TheProcessCatalogCanBeReplaced)
{
    setFontCatalog(std::make_shared<FixedFontCatalog>(QStringList{"Only This Font"}));
    EXPECT_TRUE(fontIsAvailable("Only This Font"));
    EXPECT_FALSE(fontIsAvailable("Any Other Font"));
    setFontCatalog(nullptr);
    EXPECT_EQ(dynamic_cast<FixedFontCatalog *>(&fontCatalog()), nullptr);
}

// An installed family as the font tools list it, or nothing.
QString someInstalledFamily()
{
    const QString tool = QStandardPaths::findExecutable("fc-list");
    if (tool.isEmpty())
        return {};
    QProcess process;
    process.start(tool, {":", "family"});
    if (!process.waitForFinished(30000))
        return {};
    const QString first = QString::fromUtf8(process.readAllStandardOutput()).section('\n', 0, 0);
    return first.section(',', 0, 0).trimmed();
}

TEST(Fonts, SystemCatalog)
{
    setFontCatalog(nullptr);
    EXPECT_FALSE(fontIsAvailable("No Such Font Tavelle 9f3a"));
    EXPECT_FALSE(fontIsAvailable(""));
    const QString family = someInstalledFamily();
    if (family.isEmpty())
        GTEST_SKIP() << "no fonts installed";
    EXPECT_TRUE(fontIsAvailable(family)) << family.toStdString();
    EXPECT_TRUE(fontIsAvailable(family.toUpper())) << "family names ignore case";
}

} // namespace
} // namespace tl::platform
