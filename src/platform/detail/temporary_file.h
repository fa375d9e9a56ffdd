#pragma once

// The temporary file beside a target through which a file is replaced whole:
// "." + name + "." + base-36 tag + ".tmp".

#include <QByteArray>
#include <optional>

namespace tl::platform::detail {

inline constexpr char kTemporaryPrefix[] = ".";
inline constexpr char kTemporarySuffix[] = ".tmp";

// The file a write to path lands on: the target of a symbolic link, so that
// the link itself stays.
QByteArray writeTarget(const QByteArray &path);

// The temporary's path beside target for a tag.
QByteArray temporaryBeside(const QByteArray &target, const QByteArray &tag);

struct TemporaryFile
{
    QByteArray path;
    int fd = -1;
};

// A temporary beside target holding data, with the target's permission bits,
// owner (where allowed) and user attributes when the target exists, left
// open for the caller to flush and close. Without a tag a free name is
// picked; with one, a file of that name (left by an interrupted run) is
// replaced. On failure nothing is left behind and errno tells why.
std::optional<TemporaryFile> writeTemporaryBeside(const QByteArray &target, const QByteArray &data,
                                                  const QByteArray &tag = {});

} // namespace tl::platform::detail
