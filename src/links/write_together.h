#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

// Files whose new contents were made in memory, written together through one
// set of staged writes (see platform::StagedWrites): the disk is waited for
// twice, not once for each file. Each file is replaced under its path's lock
// and only if it still holds what was read; a file someone else changed in
// the meantime is left to them.
namespace tl::links {

struct HeldFile
{
    QString path;
    // As read, to tell a change by someone else; nothing: there was no file.
    std::optional<QByteArray> original;
    QByteArray bytes;
};

// One key for each file, however its path was spelt.
QString heldFileKey(const QString &path);

// Writes `files` in their order, their temporaries carrying `tag`, after
// removing what an interrupted run of the tag left beside each of
// `untouched`. `done(i, replaced)` follows each file that was replaced or
// could not be written, on any of the threads that rename. Answers the
// indices of the files changed meanwhile, or nothing when the whole must run
// again: it was interrupted, or the disk did not take the changes.
std::optional<QList<qsizetype>> writeTogether(const QByteArray &tag,
                                              const QList<const HeldFile *> &files,
                                              const QStringList &untouched,
                                              const std::function<void(qsizetype, bool)> &done);

} // namespace tl::links
