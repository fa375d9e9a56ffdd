#pragma once

// Libraries made on disk for the benchmarks, and the floor they are measured
// against: a plain walk that stats every entry and reads every properties
// file once.
#include "foundation/plist.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QVariantMap>
#include <sys/stat.h>

namespace bench {

inline void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    if (f.open(QIODevice::WriteOnly))
        f.write(bytes);
}

// A book at `path` of `documents` Markdown documents, each with a properties
// file of `properties` and a creation date, and an order list naming them all.
inline void makeBook(const QString &path, int documents, QVariantMap properties)
{
    QDir().mkpath(path);
    properties.insert(QStringLiteral("CreationDate"), QDateTime::currentDateTimeUtc());
    const QByteArray propertiesFile = tl::plist::toXml(properties);
    QVariantList notes;
    for (int d = 0; d < documents; ++d) {
        const QString name = QStringLiteral("Document %1.md").arg(d);
        notes.prepend(name);
        writeBytes(path + u'/' + name, "# A document\n\nSome text.\n");
        writeBytes(path + u'/' + name + QStringLiteral(".plist"), propertiesFile);
    }
    writeBytes(path + QStringLiteral("/BookProperties.plist"),
               tl::plist::toXml(QVariantMap{{"Notes", notes}, {"sortOrderForNotes", "custom"}}));
}

// The floor: every entry below `root` stat-ed, every properties file parsed.
inline qint64 plainWalk(const QString &root)
{
    qint64 parsed = 0;
    QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        struct stat st
        {
        };
        ::stat(QFile::encodeName(path).constData(), &st);
        if (path.endsWith(u".plist")) {
            QFile f(path);
            if (f.open(QIODevice::ReadOnly))
                parsed += tl::plist::parse(f.readAll()) ? 1 : 0;
        }
    }
    return parsed;
}

} // namespace bench
