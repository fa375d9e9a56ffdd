#include "cli_support.h"
#include "support/test_environment.h"

#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

TEST(DuplicateAsCommand, MarkdownBecomesAFormattedDocumentThroughTheConverter)
{
    if (!tltest::tavelleAvailable())
        GTEST_SKIP() << "TAVELLE_CLI is not set";
    const QString home = tltest::makeTemporaryFolder("dup-home");
    const QString library = home + "/Library";
    ASSERT_EQ(tltest::runTavelle(home, {"init", library}).exitCode, 0);
    ASSERT_TRUE(tltest::writeFile(library + "/Report.md", "# Report\n\n- [x] done\n"));
    const auto r = tltest::runTavelle(home, {"dup", library + "/Report.md", "--as", "html"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QString html = QString::fromUtf8(tltest::readFile(library + "/Report.html"));
    EXPECT_TRUE(html.contains("<!-- Generator: Tavelle "));
    EXPECT_TRUE(html.contains("<h1"));
    EXPECT_TRUE(html.contains("tl_checkbox_done"));
    // The source stays as it was.
    EXPECT_EQ(tltest::readFile(library + "/Report.md"), "# Report\n\n- [x] done\n");
}

} // namespace
