#pragma once

#include <QString>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>
#include <mutex>
#include <sys/types.h>

namespace tl::platform {

// Typed key and value pairs shared by the desktop program and the command.
// Kept as an XML property list in the config folder, written through on every
// change and re-read whenever the file changed on disk, so a value set by one
// process is seen at the next read in another. Readers coerce as the classic
// defaults store does: a missing key reads false, 0 or empty.
class Settings
{
public:
    explicit Settings(QString filePath);

    QString filePath() const { return m_path; }

    bool contains(const QString &key);
    QVariant object(const QString &key);
    bool boolValue(const QString &key);
    qint64 integer(const QString &key);
    double real(const QString &key);
    QString string(const QString &key);
    QVariantList array(const QString &key);
    QVariantMap dictionary(const QString &key);
    QVariantMap all();

    // An invalid value removes the key.
    void set(const QString &key, const QVariant &value);
    void remove(const QString &key);
    // Re-reads the file now; writes are already on disk.
    void synchronize();

private:
    struct FileIdentity
    {
        ino_t inode = 0;
        qint64 size = -1;
        qint64 modifiedNs = 0;
        bool operator==(const FileIdentity &) const = default;
    };
    FileIdentity currentIdentity() const;
    void reloadIfChanged();
    void write();

    QString m_path;
    std::recursive_mutex m_mutex;
    QVariantMap m_values;
    FileIdentity m_loaded;
    bool m_everLoaded = false;
};

// The process's store, in $XDG_CONFIG_HOME/com.tavelle.app. The file is chosen
// at first use from the environment of that moment.
Settings &settings();

// Coercions of one stored value, as the store's typed readers apply them.
bool boolFromValue(const QVariant &value);
qint64 integerFromValue(const QVariant &value);
double realFromValue(const QVariant &value);
QString stringFromValue(const QVariant &value);

} // namespace tl::platform
