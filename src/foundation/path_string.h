#pragma once

#include <QString>
#include <QStringList>

// The classic path-string operations item paths are built with. They work
// on the text alone and never touch the disk.
namespace tl::path {

// "/tmp/scratch.tiff" -> "scratch.tiff"; trailing slashes are ignored;
// "/" stays "/".
QString lastComponent(const QString &path);
// "/tmp/scratch.tiff" -> "/tmp"; "/tmp" -> "/"; "scratch" -> "".
QString deletingLastComponent(const QString &path);
// Joins with exactly one "/" between; an empty base gives the component.
QString appendingComponent(const QString &path, const QString &component);
// What follows the last "." of the last component; empty for none and for
// a name whose only dot leads it.
QString extension(const QString &path);
QString deletingExtension(const QString &path);
QString appendingExtension(const QString &path, const QString &extension);
// "/tmp/scratch" -> {"/", "tmp", "scratch"}; a trailing slash adds "/".
QStringList components(const QString &path);
// Inverse of components for absolute lists.
QString joinedComponents(const QStringList &components);

} // namespace tl::path
