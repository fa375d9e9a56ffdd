#pragma once

// Reading a made e-book back: its entries in archive order and their text.

#include <QProcess>
#include <QString>
#include <QStringList>

namespace tltest {

inline QByteArray unzipOutput(const QStringList &arguments)
{
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"), arguments);
    unzip.waitForFinished();
    return unzip.readAllStandardOutput();
}

inline QStringList zipEntries(const QString &archive)
{
    return QString::fromUtf8(unzipOutput({"-Z1", archive})).split(u'\n', Qt::SkipEmptyParts);
}

inline QString zipEntry(const QString &archive, const QString &entry)
{
    return QString::fromUtf8(unzipOutput({"-p", archive, entry}));
}

} // namespace tltest
