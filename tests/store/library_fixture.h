#pragma once

// A fresh library folder per test, below a folder of its own so that a test
// can put files above the root too, with the settings store put back as it
// was after each test (the store is shared by the whole process).

#include "foundation/clock.h"
#include "foundation/plist.h"
#include "platform/cloud.h"
#include "platform/settings.h"
#include "store/library_root.h"
#include "support/test_environment.h"

#include <QDir>
#include <QStringList>
#include <QVariantMap>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>

// Readable failure messages for texts, in values and in trace messages.
inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}
inline std::ostream &operator<<(std::ostream &os, const QString &text)
{
    return os << text.toStdString();
}

namespace tltest {

class LibraryTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        static int counter = 0;
        home_ =
            tl::store::resolvingSymlinks(sandboxRoot()) + "/store/" + QString::number(++counter);
        QDir().mkpath(home_ + "/Library");
        root_ = home_ + "/Library";
        savedSettings_ = tl::platform::settings().all();
        tl::store::setLibraryRootOverride(root_);
    }

    void TearDown() override
    {
        tl::platform::Settings &settings = tl::platform::settings();
        const QVariantMap now = settings.all();
        for (auto it = now.cbegin(); it != now.cend(); ++it) {
            if (!savedSettings_.contains(it.key()))
                settings.remove(it.key());
        }
        for (auto it = savedSettings_.cbegin(); it != savedSettings_.cend(); ++it) {
            if (now.value(it.key()) != it.value())
                settings.set(it.key(), it.value());
        }
        tl::store::setLibraryRootOverride({});
        tl::platform::setCloudIdentityForTesting(std::nullopt);
        tl::setClock(std::make_shared<tl::SystemClock>());
    }

    static void setSetting(const QString &key, const QVariant &value)
    {
        tl::platform::settings().set(key, value);
    }

    // A path below the library root.
    QString inRoot(const QString &relative) const { return root_ + "/" + relative; }
    // A path beside the library root, outside it.
    QString outside(const QString &relative) const { return home_ + "/Outside/" + relative; }

    static QString makeFile(const QString &path, const QByteArray &bytes = "text")
    {
        EXPECT_TRUE(writeFile(path, bytes)) << path.toStdString();
        return path;
    }
    static QString makeFolder(const QString &path)
    {
        EXPECT_TRUE(QDir().mkpath(path)) << path.toStdString();
        return path;
    }
    static void writePlist(const QString &path, const QVariant &value)
    {
        ASSERT_TRUE(writeFile(path, tl::plist::toXml(value))) << path.toStdString();
    }
    static QVariantMap readPlist(const QString &path)
    {
        return tl::plist::parse(readFile(path)).value_or(QVariant()).toMap();
    }

    tl::ManualClock &useManualClock(const QDateTime &start)
    {
        auto clock = std::make_shared<tl::ManualClock>(start);
        tl::setClock(clock);
        return *clock;
    }

    // A date far enough back that any write moves the file past it.
    static QDateTime oldDate() { return QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6), Qt::UTC); }

    QString home_;
    QString root_;

private:
    QVariantMap savedSettings_;
};

} // namespace tltest
