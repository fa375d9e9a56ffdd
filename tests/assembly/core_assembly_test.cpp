#include "assembly/core_assembly.h"
#include "platform/alerts.h"
#include "shell/app_delegate.h"
#include "shell/shell_hooks.h"
#include "store/text_conversions.h"

#include <gtest/gtest.h>

namespace {

using tl::assembly::CoreParts;
using tl::assembly::Host;

TEST(CoreAssembly, NothingAssembledIsNamedAsMissing)
{
    EXPECT_EQ(tl::assembly::missingParts(),
              QStringList{"the core (assembleCore was never called)"});
}

TEST(CoreAssembly, TheCommandIsCompleteWithTheCoreAlone)
{
    tl::assembly::assembleCore({});
    EXPECT_TRUE(tl::assembly::missingParts().isEmpty())
        << tl::assembly::missingParts().join(", ").toStdString();
    EXPECT_TRUE(tl::assembly::checkAssembly());
    EXPECT_TRUE(tl::store::textConversions().markdownToHTML);
    EXPECT_TRUE(tl::store::textConversions().htmlToPlainText);
    EXPECT_FALSE(tl::store::tl_fountainToHTML("INT. HOUSE - DAY\n\nHi.", {}).isEmpty());
    EXPECT_FALSE(tl::shell::shellHooks().serverIsRunning());
}

TEST(CoreAssembly, TheDesktopFailsLoudlyWithoutItsWindowParts)
{
    CoreParts parts;
    parts.host = Host::Desktop;
    parts.showAllPanes = [] {};
    tl::assembly::assembleCore(parts);
    const QStringList missing = tl::assembly::missingParts();
    EXPECT_EQ(missing, (QStringList{"window alert presenter", "showWhatsNew hook",
                                    "effectiveAppearanceName hook", "openDocuments hook",
                                    "showInOpenWindow hook"}));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(tl::assembly::checkAssembly());
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_NE(printed.find("Tavelle cannot start: openDocuments hook is not registered"),
              std::string::npos)
        << printed;
}

TEST(CoreAssembly, TheDesktopsPartsAreInstalled)
{
    int panes = 0;
    auto alerts = std::make_shared<tl::platform::HeadlessAlertPresenter>();
    CoreParts parts;
    parts.host = Host::Desktop;
    parts.launch.chooseLibrary = true;
    parts.alerts = alerts;
    parts.showWhatsNew = [] {};
    parts.showAllPanes = [&panes] { ++panes; };
    parts.effectiveAppearanceName = [] { return QStringLiteral("Dark"); };
    parts.openDocuments = [](const QVariantList &) {};
    parts.showInOpenWindow = [](const QString &) { return true; };
    tl::assembly::assembleCore(parts);
    EXPECT_TRUE(tl::assembly::checkAssembly());
    tl::shell::shellHooks().showAllPanes();
    EXPECT_EQ(panes, 1);
    EXPECT_EQ(tl::shell::shellHooks().effectiveAppearanceName(), "Dark");
    EXPECT_EQ(&tl::platform::alerts(), alerts.get());
    EXPECT_TRUE(tl::shell::appDelegate().options().chooseLibrary);
    tl::platform::setAlertPresenter(nullptr);
}

} // namespace
