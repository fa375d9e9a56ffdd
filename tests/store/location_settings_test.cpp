#include "foundation/events.h"
#include "library_fixture.h"
#include "platform/file_ops.h"
#include "store/keys.h"
#include "store/location_settings.h"
#include "support/event_recorder.h"

#include <QFileInfo>

namespace tl::store {
namespace {

namespace S = keys::setting;
using namespace TLStaticFunctions;

class LocationSettings : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        file_ = root_ + "/TLResources/Misc/Settings.txt";
        for (const char *key : {S::DefaultInbox, S::ManageLinks, S::ContextsEnabled,
                                S::ExtractContextsAutomatically, S::ContextMarkers})
            platform::settings().remove(key);
    }

    QString file_;
};

TEST_F(LocationSettings, WritesTheFiveKeysWithBooleansAsNumbers)
{
    setSetting(S::DefaultInbox, inRoot("Inbox"));
    setSetting(S::ManageLinks, true);
    setSetting(S::ContextsEnabled, false);
    setSetting(S::ExtractContextsAutomatically, "YES");
    writePlist(file_, QVariantMap{{"Other", "kept"}});

    tl_writeLocationSpecificSettings();
    const QVariantMap table = readPlist(file_);
    EXPECT_EQ(table.value(S::DefaultInbox), inRoot("Inbox"));
    EXPECT_EQ(table.value(S::ContextMarkers), ""); // unset
    const struct
    {
        const char *key;
        qint64 expected;
    } numbers[] = {
        {S::ManageLinks, 1}, {S::ContextsEnabled, 0}, {S::ExtractContextsAutomatically, 1}};
    for (const auto &n : numbers) {
        const QVariant value = table.value(n.key);
        EXPECT_TRUE(value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int)
            << n.key << " is " << value.typeName();
        EXPECT_EQ(value.toLongLong(), n.expected) << n.key;
    }
    EXPECT_EQ(table.value("Other"), "kept");
}

TEST_F(LocationSettings, WritesOnlyOnChange)
{
    setSetting(S::ContextMarkers, "@");
    tl_writeLocationSpecificSettings();
    ASSERT_TRUE(QFileInfo::exists(file_));
    ASSERT_TRUE(platform::setModificationDate(file_, oldDate()));

    tl_writeLocationSpecificSettings();
    EXPECT_EQ(platform::modificationDate(file_), oldDate());

    setSetting(S::ContextMarkers, "@#");
    tl_writeLocationSpecificSettings();
    EXPECT_NE(platform::modificationDate(file_), oldDate());
    EXPECT_EQ(readPlist(file_).value(S::ContextMarkers), "@#");
}

TEST_F(LocationSettings, ReadCopiesTheFileIntoTheSettings)
{
    writePlist(file_, QVariantMap{{S::DefaultInbox, inRoot("Inbox")},
                                  {S::ContextMarkers, "+"},
                                  {S::ManageLinks, qint64(1)},
                                  {S::ContextsEnabled, true}});
    setSetting(S::ExtractContextsAutomatically, true);
    tl_readLocationSpecificSettings();
    platform::Settings &settings = platform::settings();
    EXPECT_EQ(settings.string(S::DefaultInbox), inRoot("Inbox"));
    EXPECT_EQ(settings.string(S::ContextMarkers), "+");
    EXPECT_TRUE(settings.boolValue(S::ManageLinks));
    EXPECT_TRUE(settings.boolValue(S::ContextsEnabled));
    EXPECT_FALSE(settings.boolValue(S::ExtractContextsAutomatically)); // missing reads false

    // Empty texts remove the settings.
    writePlist(file_, QVariantMap{{S::DefaultInbox, ""}, {S::ContextMarkers, ""}});
    tl_readLocationSpecificSettings();
    EXPECT_FALSE(settings.contains(S::DefaultInbox));
    EXPECT_FALSE(settings.contains(S::ContextMarkers));
    EXPECT_FALSE(settings.boolValue(S::ManageLinks));
}

TEST_F(LocationSettings, EventsOnlyWhenInboxOrContextsChange)
{
    const struct
    {
        const char *name;
        QVariantMap file;
        int inboxEvents;
        int contextEvents;
    } cases[] = {
        // Settings start empty and off.
        {"nothing changes", {}, 0, 0},
        {"links alone", {{S::ManageLinks, qint64(1)}}, 0, 0},
        {"new inbox", {{S::DefaultInbox, "/Inbox"}}, 1, 0},
        {"same inbox", {{S::DefaultInbox, "/Inbox"}}, 0, 0},
        {"contexts on", {{S::DefaultInbox, "/Inbox"}, {S::ContextsEnabled, qint64(1)}}, 0, 1},
        {"both change", {{S::DefaultInbox, "/Other"}}, 1, 1},
        {"inbox removed", {}, 1, 0},
    };
    for (const auto &c : cases) {
        writePlist(file_, c.file);
        tltest::EventRecorder posted;
        tl_readLocationSpecificSettings();
        EXPECT_EQ(posted.count(events::UpdateDefaultInbox), c.inboxEvents) << c.name;
        EXPECT_EQ(posted.count(events::ReloadContextSmartBook), c.contextEvents) << c.name;
    }
}

TEST_F(LocationSettings, OneKeyAtATime)
{
    tl_setLocationSpecificSetting("/Inbox", S::DefaultInbox);
    tl_setLocationSpecificSetting(qint64(1), S::ManageLinks);
    EXPECT_EQ(tl_locationSpecificSettingForKey(S::DefaultInbox), "/Inbox");
    EXPECT_EQ(tl_locationSpecificSettingForKey(S::ManageLinks).toLongLong(), 1);
    EXPECT_EQ(readPlist(file_).value(S::DefaultInbox), "/Inbox");

    tl_setLocationSpecificSetting(QVariant(), S::DefaultInbox);
    EXPECT_FALSE(tl_locationSpecificSettingForKey(S::DefaultInbox).isValid());
    EXPECT_FALSE(readPlist(file_).contains(S::DefaultInbox));
    EXPECT_TRUE(readPlist(file_).contains(S::ManageLinks));
}

} // namespace
} // namespace tl::store
