#include "foundation/plist.h"
#include "platform/settings.h"
#include "support/test_environment.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <gtest/gtest.h>

using tl::platform::Settings;

namespace {

QString freshStorePath(const char *name)
{
    const QString path = tltest::sandboxRoot() + "/settings-" + name + ".plist";
    QFile::remove(path);
    return path;
}

struct CoercionCase
{
    const char *label;
    QVariant stored;
    bool asBool;
    qint64 asInteger;
    double asReal;
    QString asString;
};

class SettingsCoercion : public ::testing::TestWithParam<CoercionCase>
{
};

TEST_P(SettingsCoercion, TypedReadersCoerceLikeTheDefaultsStore)
{
    const CoercionCase &c = GetParam();
    Settings settings(freshStorePath(c.label));
    if (c.stored.isValid())
        settings.set("key", c.stored);
    EXPECT_EQ(settings.boolValue("key"), c.asBool);
    EXPECT_EQ(settings.integer("key"), c.asInteger);
    EXPECT_DOUBLE_EQ(settings.real("key"), c.asReal);
    EXPECT_EQ(settings.string("key"), c.asString);
}

INSTANTIATE_TEST_SUITE_P(
    Values, SettingsCoercion,
    ::testing::Values(CoercionCase{"missing", QVariant(), false, 0, 0.0, ""},
                      CoercionCase{"yes", QString("YES"), true, 0, 0.0, "YES"},
                      CoercionCase{"lowertrue", QString("true"), true, 0, 0.0, "true"},
                      CoercionCase{"one", QString("1"), true, 1, 1.0, "1"},
                      CoercionCase{"twelveabc", QString("12abc"), true, 12, 0.0, "12abc"},
                      CoercionCase{"no", QString("NO"), false, 0, 0.0, "NO"},
                      CoercionCase{"int", qint64(7), true, 7, 7.0, "7"},
                      CoercionCase{"zero", qint64(0), false, 0, 0.0, "0"},
                      CoercionCase{"real", 2.5, true, 2, 2.5, "2.5"},
                      CoercionCase{"booltrue", true, true, 1, 1.0, "1"},
                      CoercionCase{"array", QVariantList{1}, false, 0, 0.0, ""}),
    [](const auto &info) { return std::string(info.param.label); });

TEST(Settings, WritesThroughAndAnotherInstanceSeesTheChange)
{
    const QString path = freshStorePath("shared");
    Settings writer(path);
    Settings reader(path);
    EXPECT_FALSE(reader.contains("TavelleFolder"));
    writer.set("TavelleFolder", QString("/data/Library"));
    EXPECT_EQ(reader.string("TavelleFolder"), "/data/Library");
    writer.remove("TavelleFolder");
    EXPECT_FALSE(reader.contains("TavelleFolder"));
}

TEST(Settings, FileIsAnXmlPropertyListOfTheValues)
{
    const QString path = freshStorePath("format");
    Settings settings(path);
    settings.set("count", qint64(3));
    settings.set("flag", true);
    const auto parsed = tl::plist::parse(tltest::readFile(path));
    ASSERT_TRUE(parsed.has_value());
    const QVariantMap map = parsed->toMap();
    EXPECT_EQ(map.value("count").toLongLong(), 3);
    EXPECT_EQ(map.value("flag").typeId(), QMetaType::Bool);
    EXPECT_TRUE(tltest::readFile(path).startsWith("<?xml"));
}

TEST(Settings, InvalidValueRemovesAndUnchangedValueDoesNotRewrite)
{
    const QString path = freshStorePath("rewrite");
    Settings settings(path);
    settings.set("k", QString("v"));
    const QDateTime old = QDateTime::currentDateTimeUtc().addDays(-3);
    {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        ASSERT_TRUE(f.setFileTime(old, QFileDevice::FileModificationTime));
    }
    // The same value again must not write: the modification date stays.
    settings.set("k", QString("v"));
    EXPECT_EQ(QFileInfo(path).lastModified().toSecsSinceEpoch(), old.toSecsSinceEpoch());
    settings.set("k", QVariant());
    EXPECT_FALSE(settings.contains("k"));
}

TEST(Settings, UnreadableFileReadsAsEmpty)
{
    const QString path = freshStorePath("garbage");
    ASSERT_TRUE(tltest::writeFile(path, "not a property list"));
    Settings settings(path);
    EXPECT_FALSE(settings.contains("anything"));
    settings.set("k", qint64(1));
    EXPECT_EQ(settings.integer("k"), 1);
}

TEST(Settings, ContainersReadBackWhole)
{
    Settings settings(freshStorePath("containers"));
    const QVariantList homes{QString("/a"), QString("/b")};
    settings.set("previouslySelectedHomes", homes);
    settings.set("dict", QVariantMap{{"x", qint64(1)}});
    EXPECT_EQ(settings.array("previouslySelectedHomes"), homes);
    EXPECT_EQ(settings.dictionary("dict").value("x").toLongLong(), 1);
    EXPECT_TRUE(settings.array("dict").isEmpty());
}

} // namespace
