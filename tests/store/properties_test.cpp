#include "foundation/dates.h"
#include "library_fixture.h"
#include "platform/attributes.h"
#include "platform/file_ops.h"
#include "store/keys.h"
#include "store/properties.h"

#include <QCryptographicHash>
#include <QFileInfo>

namespace tl::store {
namespace {

namespace P = keys::property;
namespace S = keys::setting;

class Properties : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        doc_ = makeFile(inRoot("Book/Doc.md"));
    }

    // The attribute a view-state key is kept under, parsed; nothing when absent.
    static std::optional<QVariant> attribute(const QString &path, const QString &key)
    {
        const auto bytes = platform::readAttribute(path, platform::attributeName(key));
        if (!bytes)
            return std::nullopt;
        return plist::parse(*bytes).value_or(QVariant());
    }

    static std::optional<QDateTime> modified(const QString &path)
    {
        return platform::modificationDate(path);
    }

    QString doc_;
};

TEST_F(Properties, WhereThePropertiesFileIs)
{
    const QString book = inRoot("Book");
    const QString package = makeFolder(inRoot("Book/Slides.key"));
    tl_setProperty(doc_, "d", P::Description);
    tl_setProperty(book, "b", P::Description);
    tl_setProperty(package, "p", P::Description);
    EXPECT_EQ(readPlist(doc_ + ".plist").value(P::Description), "d");
    EXPECT_EQ(readPlist(book + "/BookProperties.plist").value(P::Description), "b");
    EXPECT_EQ(readPlist(package + "/BookProperties.plist").value(P::Description), "p");
}

TEST_F(Properties, ReadWriteRemove)
{
    tl_setProperty(doc_, "Some words", P::Description);
    tl_setProperty(doc_, QStringList{"work", "home"}, P::Tags);
    EXPECT_EQ(tl_propertyForKey(doc_, P::Description), "Some words");
    EXPECT_EQ(tl_propertyForKey(doc_, P::Tags).toStringList(), (QStringList{"work", "home"}));

    tl_removePropertyForKey(doc_, P::Description);
    EXPECT_EQ(tl_propertyForKey(doc_, P::Description), "");
    EXPECT_FALSE(readPlist(doc_ + ".plist").contains(P::Description));
    EXPECT_TRUE(readPlist(doc_ + ".plist").contains(P::Tags));

    // An invalid value means remove.
    tl_setProperty(doc_, QVariant(), P::Tags);
    EXPECT_FALSE(readPlist(doc_ + ".plist").contains(P::Tags));

    tl_setProperty("", "x", P::Description);
    EXPECT_EQ(tl_propertyForKey("", P::Description), "");
}

TEST_F(Properties, DefaultsForMissingKeys)
{
    const struct
    {
        const char *key;
        QVariant expected; // invalid: nothing
    } cases[] = {
        // One key of each kind of default.
        {P::TextColor, {}},          {P::TOC, {}},
        {P::Backlinks, QVariantList{}}, {P::PDFBookmarks, QVariantList{}},
        {P::Mail, distantPast()},    {P::CreationDate, distantPast()},
        {P::Description, QString("")}, {"SomethingElse", QString("")},
    };
    for (const QString &path : {doc_, inRoot("Book"), QString()}) {
        for (const auto &c : cases) {
            const QVariant value = tl_propertyForKey(path, c.key);
            EXPECT_EQ(value.isValid(), c.expected.isValid()) << c.key << " at " << path;
            EXPECT_EQ(value, c.expected) << c.key << " at " << path;
        }
    }
}

TEST_F(Properties, NumbersAndBooleansReadBackAsDecimalText)
{
    writePlist(doc_ + ".plist", QVariantMap{{P::NoteFontSize, qint64(14)},
                                            {P::CharacterOffset, qint64(-3)},
                                            {P::Offset, 2.5},
                                            {P::HyphenateText, true},
                                            {P::TOC, false},
                                            {P::CellColor, "white"},
                                            {P::Description, "white"}});
    const struct
    {
        const char *key;
        const char *expected;
    } cases[] = {
        {P::NoteFontSize, "14"},
        {P::CharacterOffset, "-3"},
        {P::Offset, "2.5"},
        {P::HyphenateText, "1"},
        {P::TOC, "0"},
        {P::CellColor, "default"}, // a stored "white" is no colour
        {P::Description, "white"},
    };
    for (const auto &c : cases) {
        const QVariant value = tl_propertyForKey(doc_, c.key);
        EXPECT_EQ(value.typeId(), QMetaType::QString) << c.key;
        EXPECT_EQ(value, c.expected) << c.key;
    }
}

TEST_F(Properties, OtherValueKindsReadBackAsStored)
{
    const QDateTime date(QDate(2020, 1, 2), QTime(3, 4, 5), Qt::UTC);
    const QVariantMap dictionary{{"a", "b"}};
    const QByteArray data("\x01\x02", 2);
    writePlist(doc_ + ".plist", QVariantMap{{P::Mail, date},
                                            {"Dict", dictionary},
                                            {"Data", data},
                                            {P::Backlinks, QVariantList{"/x.md"}}});
    EXPECT_EQ(tl_propertyForKey(doc_, P::Mail).toDateTime(), date);
    EXPECT_EQ(tl_propertyForKey(doc_, "Dict").toMap(), dictionary);
    EXPECT_EQ(tl_propertyForKey(doc_, "Data").toByteArray(), data);
    EXPECT_EQ(tl_propertyForKey(doc_, P::Backlinks).toList(), QVariantList{"/x.md"});
}

TEST_F(Properties, ExternalDocumentsKeepOnlyAFewKeys)
{
    const QString external = makeFile(outside("Doc.md"));
    const struct
    {
        const char *key;
        bool stored;
    } cases[] = {
        {P::CSS, true},          {P::MarkdownConverter, true},
        {P::Description, false}, {P::TextColor, false},
        {P::Tags, false},        {P::Offset, false}, // a view-state key, but not one of the few
    };
    for (const auto &c : cases) {
        tl_setProperty(external, "1", c.key);
        EXPECT_EQ(readPlist(external + ".plist").contains(c.key), c.stored) << c.key;
    }
    EXPECT_FALSE(attribute(external, P::Offset).has_value());
}

TEST_F(Properties, ViewStateStaysInThePropertiesFileInsideALocalLibrary)
{
    platform::setCloudIdentityForTesting(false);
    for (const char *key : {P::CharacterOffset, P::CurrentPDFPage, P::Offset, P::Markdown}) {
        tl_setProperty(doc_, "7", key);
        EXPECT_EQ(readPlist(doc_ + ".plist").value(key), "7") << key;
        EXPECT_FALSE(attribute(doc_, key).has_value()) << key;
        EXPECT_EQ(tl_propertyForKey(doc_, key), "7") << key;
    }
}

TEST_F(Properties, ViewStateOfExternalDocumentsGoesToAttributes)
{
    const QString external = makeFile(outside("Doc.md"));
    tl_setProperty(external, qint64(42), P::CharacterOffset);
    EXPECT_FALSE(QFileInfo::exists(external + ".plist"));
    ASSERT_TRUE(attribute(external, P::CharacterOffset).has_value());
    EXPECT_EQ(attribute(external, P::CharacterOffset)->toLongLong(), 42);
    EXPECT_EQ(tl_propertyForKey(external, P::CharacterOffset).toLongLong(), 42);
    // An absent attribute reads as nothing, not as the plist default.
    EXPECT_FALSE(tl_propertyForKey(external, P::CurrentPDFPage).isValid());

    // Outside the cloud a removal goes to the properties file: the attribute stays.
    tl_removePropertyForKey(external, P::CharacterOffset);
    EXPECT_EQ(tl_propertyForKey(external, P::CharacterOffset).toLongLong(), 42);
}

TEST_F(Properties, ViewStateWithACloudIdentity)
{
    platform::setCloudIdentityForTesting(true);
    // The library is not in the cloud container: inside it, plist; outside, attributes.
    setSetting(S::UbiquityContainerPath, home_ + "/Cloud/Container");
    const QString external = makeFile(outside("Doc.md"));
    tl_setProperty(doc_, "EDITING", P::Markdown);
    tl_setProperty(external, qint64(3), P::CharacterOffset);
    EXPECT_EQ(readPlist(doc_ + ".plist").value(P::Markdown), "EDITING");
    EXPECT_FALSE(attribute(doc_, P::Markdown).has_value());
    EXPECT_EQ(attribute(external, P::CharacterOffset)->toLongLong(), 3);

    // The library inside the container: attributes, and removal blanks them.
    setSetting(S::UbiquityContainerPath, home_ + "/Container");
    EXPECT_TRUE(rootIsInCloudContainer());
    tl_setProperty(doc_, "5", P::CurrentPDFPage);
    tl_setProperty(doc_, 120.5, P::Offset);
    EXPECT_FALSE(readPlist(doc_ + ".plist").contains(P::CurrentPDFPage));
    EXPECT_EQ(attribute(doc_, P::CurrentPDFPage), QVariant("5"));
    EXPECT_EQ(tl_propertyForKey(doc_, P::Offset).toDouble(), 120.5);
    // The attribute store wins over the plist for reading.
    EXPECT_FALSE(tl_propertyForKey(doc_, P::Markdown).isValid());

    tl_removePropertyForKey(doc_, P::CurrentPDFPage);
    EXPECT_EQ(attribute(doc_, P::CurrentPDFPage), QVariant(""));
}

TEST_F(Properties, WritesThatChangeNothingLeaveTheFileAlone)
{
    const QString plist = doc_ + ".plist";
    const struct
    {
        const char *key;
        QVariant value;
    } cases[] = {
        {P::Description, "Same"},
        {P::NoteFontSize, qint64(12)},
        {P::Tags, QStringList{"a", "b"}},
        {P::Tags, QVariantList{"a", "b"}},
        {P::CreationDate, QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5), Qt::UTC)},
    };
    for (const auto &c : cases) {
        tl_setProperty(doc_, c.value, c.key);
        ASSERT_TRUE(platform::setModificationDate(plist, oldDate()));
        tl_setProperty(doc_, c.value, c.key);
        EXPECT_EQ(modified(plist), oldDate()) << c.key;
    }
    // Removing an absent key writes nothing either.
    tl_removePropertyForKey(doc_, "Absent");
    EXPECT_EQ(modified(plist), oldDate());

    // A real change does write.
    tl_setProperty(doc_, "Other", P::Description);
    EXPECT_NE(modified(plist), oldDate());
}

TEST_F(Properties, NothingIsStoredForANoteBeingCreated)
{
    const QString tmp = makeFile(inRoot("Book/__NewNoteTmp 1.md"));
    tl_setProperty(tmp, "x", P::Description);
    EXPECT_FALSE(QFileInfo::exists(tmp + ".plist"));

    // The name must start with it.
    const QString other = makeFile(inRoot("Book/Draft__NewNoteTmp.md"));
    tl_setProperty(other, "x", P::Description);
    EXPECT_TRUE(QFileInfo::exists(other + ".plist"));
}

TEST_F(Properties, HiddenPropertiesFilesWhenAsked)
{
    tl_setProperty(doc_, "x", P::Description);
    EXPECT_FALSE(platform::isHidden(doc_ + ".plist"));
    setSetting(S::HideSystemFiles, true);
    tl_setProperty(doc_, "y", P::Description);
    EXPECT_TRUE(platform::isHidden(doc_ + ".plist"));
}

TEST_F(Properties, InheritanceFromTheNearestAncestorUpToTheRoot)
{
    const QString deep = makeFile(inRoot("A/B/C/Deep.md"));
    writePlist(root_ + "/BookProperties.plist",
               QVariantMap{{P::CellColor, "blue"}, {P::CSS, "Root.css"}, {P::TextColor, "root"}});
    writePlist(inRoot("A/BookProperties.plist"), QVariantMap{{P::CSS, "A.css"}});
    writePlist(inRoot("A/B/BookProperties.plist"), QVariantMap{{P::CSS, ""}});
    writePlist(deep + ".plist", QVariantMap{{P::TextColor, "own"}});
    // Above the root: never reached.
    writePlist(home_ + "/BookProperties.plist",
               QVariantMap{{P::NotesFontName, "Above"}, {P::CellColor, "red"}});

    EXPECT_EQ(tl_inheritedPropertyForKey(deep, P::CellColor), "blue");
    EXPECT_EQ(tl_inheritedPropertyForKey(deep, P::CSS), "A.css"); // empty text is no value
    EXPECT_EQ(tl_inheritedPropertyForKey(deep, P::TextColor), "own");
    EXPECT_EQ(tl_inheritedPropertyForKey(deep, P::NotesFontName), "");
    EXPECT_EQ(tl_inheritedPropertyForKey(root_, P::NotesFontName), "");
    EXPECT_EQ(tl_inheritedPropertyForKey(inRoot("A"), P::CSS), "A.css");
}

TEST_F(Properties, ExternalDocumentsInheritFromTheRootAlone)
{
    const QString external = makeFile(outside("Doc.md"));
    writePlist(root_ + "/BookProperties.plist", QVariantMap{{P::CSS, "Root.css"}});
    writePlist(outside("BookProperties.plist"),
               QVariantMap{{P::CSS, "Outside.css"}, {P::NotesFontName, "Outside"}});
    EXPECT_EQ(tl_inheritedPropertyForKey(external, P::CSS), "Root.css");
    EXPECT_EQ(tl_inheritedPropertyForKey(external, P::NotesFontName), "");
}

TEST_F(Properties, CellColorFallsBackToTheFinderLabel)
{
    const char *colours[] = {"", "gray", "green", "purple", "blue", "yellow", "red", "orange"};
    for (int label = 0; label < 8; ++label) {
        ASSERT_TRUE(platform::setLabelNumber(doc_, label));
        EXPECT_EQ(tl_inheritedPropertyForKey(doc_, P::CellColor), colours[label]) << label;
    }
    writePlist(inRoot("Book/BookProperties.plist"), QVariantMap{{P::CellColor, "white"}});
    EXPECT_EQ(tl_inheritedPropertyForKey(doc_, P::CellColor), "default");
}

TEST_F(Properties, ConverterAndPreviewFallBackToTheSettings)
{
    EXPECT_EQ(tl_inheritedPropertyForKey(doc_, P::MarkdownConverter), "0");
    setSetting(S::MarkdownConverter, 2);
    setSetting(S::ShowPreviewForNotes, "3");
    EXPECT_EQ(tl_inheritedPropertyForKey(doc_, P::MarkdownConverter), "2");
    EXPECT_EQ(tl_inheritedPropertyForKey(doc_, P::ShowPreviewForNotes), "3");
    writePlist(inRoot("Book/BookProperties.plist"),
               QVariantMap{{P::MarkdownConverter, "1"}, {P::ShowPreviewForNotes, "0"}});
    EXPECT_EQ(tl_inheritedPropertyForKey(doc_, P::MarkdownConverter), "1");
    EXPECT_EQ(tl_inheritedPropertyForKey(doc_, P::ShowPreviewForNotes), "0");
}

TEST_F(Properties, ProtectionNeedsTheSettingAndAnInheritedTrueValue)
{
    writePlist(inRoot("Book/BookProperties.plist"), QVariantMap{{P::IsProtected, true}});
    EXPECT_FALSE(tl_isProtected(doc_));
    setSetting(S::ProtectionEnabled, true);
    EXPECT_TRUE(tl_isProtected(doc_));
    EXPECT_TRUE(tl_isProtected(inRoot("Book")));
    EXPECT_FALSE(tl_isProtected(makeFile(inRoot("Other.md"))));
    writePlist(inRoot("Book/BookProperties.plist"), QVariantMap{{P::IsProtected, false}});
    EXPECT_FALSE(tl_isProtected(doc_));
}

TEST_F(Properties, CreationDateRules)
{
    const QDateTime stored(QDate(2019, 6, 1), QTime(8, 0), Qt::UTC);
    const QString plist = doc_ + ".plist";
    const auto storedDate = [&] { return readPlist(plist).value(P::CreationDate); };

    // A stored date wins and nothing is written.
    writePlist(plist, QVariantMap{{P::CreationDate, stored}});
    EXPECT_EQ(tl_creationDate(doc_), stored);
    QFile::remove(plist);

    // No properties file and the setting off: nothing stored.
    const QDateTime fileDate = tl_creationDate(doc_);
    EXPECT_TRUE(fileDate.isValid());
    EXPECT_FALSE(isDistantPast(fileDate));
    EXPECT_FALSE(QFileInfo::exists(plist));

    // The setting on, but a sync running: still nothing.
    setSetting(S::AlwaysSaveCreationDate, true);
    setSetting(S::ICloudSyncProgress, 1);
    tl_creationDate(doc_);
    EXPECT_FALSE(QFileInfo::exists(plist));

    // No sync: stored.
    setSetting(S::ICloudSyncProgress, 0);
    const QDateTime saved = tl_creationDate(doc_);
    ASSERT_TRUE(storedDate().isValid());
    EXPECT_EQ(storedDate().toDateTime().toSecsSinceEpoch(), saved.toSecsSinceEpoch());
}

TEST_F(Properties, CreationDateIsStoredWhenAPropertiesFileExists)
{
    tl_setProperty(doc_, "x", P::Description);
    const QDateTime date = tl_creationDate(doc_);
    ASSERT_TRUE(readPlist(doc_ + ".plist").contains(P::CreationDate));
    EXPECT_EQ(readPlist(doc_ + ".plist").value(P::CreationDate).toDateTime().toSecsSinceEpoch(),
              date.toSecsSinceEpoch());
}

TEST_F(Properties, CreationDateStoresNothingForPlistsAndExternalItems)
{
    setSetting(S::AlwaysSaveCreationDate, true);
    const QString plist = makeFile(inRoot("Book/Other.md.plist"));
    EXPECT_TRUE(isDistantPast(tl_creationDate(plist)));
    EXPECT_FALSE(QFileInfo::exists(plist + ".plist"));

    const QString external = makeFile(outside("Doc.md"));
    EXPECT_FALSE(isDistantPast(tl_creationDate(external)));
    EXPECT_FALSE(QFileInfo::exists(external + ".plist"));
}

TEST_F(Properties, SetCreationDateForANewItem)
{
    const QDateTime now(QDate(2024, 3, 4), QTime(5, 6, 7), Qt::UTC);
    useManualClock(now);
    tl_setCreationDate(doc_);
    EXPECT_EQ(readPlist(doc_ + ".plist").value(P::CreationDate).toDateTime(), now);

    // Present already: kept.
    useManualClock(now.addDays(1));
    tl_setCreationDate(doc_);
    EXPECT_EQ(tl_creationDate(doc_), now);

    const QDateTime given(QDate(2000, 1, 1), QTime(0, 0), Qt::UTC);
    tl_setCreationDate(doc_, given);
    EXPECT_EQ(tl_creationDate(doc_), given);
}

TEST_F(Properties, Pins)
{
    const QString composed = QString::fromUtf8("Caf\xc3\xa9.md");
    const QString decomposed = QString::fromUtf8("Cafe\xcc\x81.md");
    writePlist(inRoot("Book/BookProperties.plist"),
               QVariantMap{{P::Pinned, QStringList{"Doc.md", decomposed, "Sub"}}});
    const struct
    {
        QString path;
        bool pinned;
    } cases[] = {
        {doc_, true},
        {inRoot("Book/") + composed, true},
        {inRoot("Book/Sub"), true},
        {inRoot("Book/doc.md"), false},
        {inRoot("Book/Other.md"), false},
        {inRoot("Doc.md"), false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_isPinned(c.path), c.pinned) << c.path;
}

TEST_F(Properties, ColorLabel)
{
    tl_setColorLabel(doc_, "green");
    EXPECT_EQ(tl_propertyForKey(doc_, P::CellColor), "green");
    tl_setColorLabel(doc_, "default");
    EXPECT_EQ(tl_propertyForKey(doc_, P::CellColor), "default");
    tl_setColorLabel(doc_, "Auto");
    EXPECT_FALSE(readPlist(doc_ + ".plist").contains(P::CellColor));
}

TEST_F(Properties, SidecarPathBelowTheCachesFolderOfThisLibrary)
{
    const QString key =
        QCryptographicHash::hash(root_.toUtf8(), QCryptographicHash::Md5).toHex().toUpper();
    const QString expected =
        qEnvironmentVariable("XDG_CACHE_HOME") + "/com.tavelle.app/" + key + "/Book/Doc.md";
    EXPECT_EQ(tl_sideCarPath(doc_), expected);
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(expected).path()));
    EXPECT_EQ(tl_sideCarPathCreatingParentIfNeeded(doc_), expected);
    EXPECT_TRUE(QFileInfo(QFileInfo(expected).path()).isDir());
}

} // namespace
} // namespace tl::store
