#include "platform/attributes.h"
#include "platform_test_support.h"

#include <QFile>
#include <gtest/gtest.h>
#include <sys/xattr.h>

namespace tl::platform {
namespace {

class Attributes : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!tltest::sandboxTakesUserAttributes())
            GTEST_SKIP() << "no user attributes here";
        path_ = tltest::freshFolder("attributes") + "/Note.md";
        tltest::writeFile(path_, "text");
    }

    // The value as the kernel holds it, under its full name.
    std::optional<QByteArray> onDisk(const char *fullName) const
    {
        char buffer[4096];
        const ssize_t size =
            ::getxattr(QFile::encodeName(path_).constData(), fullName, buffer, sizeof buffer);
        return size < 0 ? std::nullopt : std::optional(QByteArray(buffer, size));
    }

    QString path_;
};

TEST(AttributeName, MarksTheKeysThatSurviveSynchronisation)
{
    const struct
    {
        const char *key;
        const char *name;
    } cases[] = {
        {"CharacterOffset", "com.tavelle.app.CharacterOffset#S"},
        {"CurrentPDFPage", "com.tavelle.app.CurrentPDFPage#S"},
        {"Offset", "com.tavelle.app.Offset"},
        {"Markdown", "com.tavelle.app.Markdown"},
        {"characterOffset", "com.tavelle.app.characterOffset"}, // keys are case-sensitive
        {"CharacterOffset#S", "com.tavelle.app.CharacterOffset#S"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(attributeName(c.key), c.name) << c.key;
}

TEST_F(Attributes, RoundTripUnderTheUserNamespace)
{
    // Binary, and longer than a first guess at the size would hold.
    const QByteArray binary = QByteArray("bplist00\0\x10\x07", 11) + QByteArray(2000, 'v');
    ASSERT_TRUE(writeAttribute(path_, attributeName("CharacterOffset"), binary));
    ASSERT_TRUE(writeAttribute(path_, "com.tavelle.app.Markdown", "EDITING"));
    ASSERT_TRUE(writeAttribute(path_, "com.tavelle.app.Empty", ""));

    EXPECT_EQ(onDisk("user.com.tavelle.app.CharacterOffset#S"), binary);
    EXPECT_EQ(readAttribute(path_, "com.tavelle.app.CharacterOffset#S"), binary);
    EXPECT_EQ(readAttribute(path_, "com.tavelle.app.Empty"), QByteArray());
    EXPECT_EQ(readAttribute(path_, "com.tavelle.app.Absent"), std::nullopt);
    const QMap<QString, QByteArray> all = {{"com.tavelle.app.CharacterOffset#S", binary},
                                           {"com.tavelle.app.Markdown", "EDITING"},
                                           {"com.tavelle.app.Empty", ""}};
    EXPECT_EQ(attributes(path_), all);

    ASSERT_TRUE(writeAttribute(path_, "com.tavelle.app.Markdown", "1"));
    EXPECT_EQ(readAttribute(path_, "com.tavelle.app.Markdown"), "1");

    EXPECT_TRUE(removeAttribute(path_, "com.tavelle.app.Markdown"));
    EXPECT_TRUE(removeAttribute(path_, "com.tavelle.app.Markdown")) << "absent counts as removed";
    EXPECT_EQ(onDisk("user.com.tavelle.app.Markdown"), std::nullopt);
    EXPECT_EQ(attributes(path_).size(), 2);
}

TEST_F(Attributes, MissingItem)
{
    const QString missing = path_ + ".missing";
    EXPECT_EQ(readAttribute(missing, "com.tavelle.app.Offset"), std::nullopt);
    EXPECT_FALSE(writeAttribute(missing, "com.tavelle.app.Offset", "1"));
    EXPECT_FALSE(removeAttribute(missing, "com.tavelle.app.Offset"));
    EXPECT_TRUE(attributes(missing).isEmpty());
    EXPECT_EQ(labelNumber(missing), 0);
    EXPECT_FALSE(isHidden(missing));
}

TEST_F(Attributes, LabelNumbers)
{
    for (int label = 7; label >= 0; --label) {
        ASSERT_TRUE(setLabelNumber(path_, label));
        EXPECT_EQ(labelNumber(path_), label);
    }
    EXPECT_EQ(onDisk("user.com.tavelle.app.label"), std::nullopt) << "label 0 leaves nothing";

    ASSERT_TRUE(setLabelNumber(path_, 5));
    EXPECT_EQ(onDisk("user.com.tavelle.app.label"), "5");
    EXPECT_FALSE(setLabelNumber(path_, 8));
    EXPECT_FALSE(setLabelNumber(path_, -1));
    EXPECT_EQ(labelNumber(path_), 5) << "a refused label changes nothing";
}

TEST_F(Attributes, StoredValuesThatAreNoLabel)
{
    for (const char *stored : {"8", "-2", "red", "", "3x"}) {
        ASSERT_TRUE(writeAttribute(path_, kLabelAttribute, stored));
        EXPECT_EQ(labelNumber(path_), 0) << stored;
    }
}

TEST_F(Attributes, HiddenFlag)
{
    EXPECT_FALSE(isHidden(path_));
    ASSERT_TRUE(setHidden(path_, true));
    EXPECT_TRUE(isHidden(path_));
    EXPECT_EQ(onDisk("user.com.tavelle.app.hidden"), "1");
    ASSERT_TRUE(setHidden(path_, false));
    EXPECT_FALSE(isHidden(path_));
    EXPECT_EQ(onDisk("user.com.tavelle.app.hidden"), std::nullopt);
    // A folder takes the flag as well.
    const QString folder = tltest::freshFolder("hidden-book");
    ASSERT_TRUE(setHidden(folder, true));
    EXPECT_TRUE(isHidden(folder));
}

} // namespace
} // namespace tl::platform
