#include "store/itmz_preview.h"

#include "platform/file_ops.h"
#include "platform/folders.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <memory>
#include <zip.h>

namespace tl::store {

namespace {

constexpr char kPreviewEntry[] = "preview.png";
// A preview larger than this is no preview.
constexpr zip_uint64_t kLargestPreview = 64 * 1024 * 1024;

struct ArchiveCloser
{
    void operator()(zip_t *archive) const { zip_discard(archive); }
};
struct EntryCloser
{
    void operator()(zip_file_t *entry) const { zip_fclose(entry); }
};

std::optional<QByteArray> previewBytes(const QString &path)
{
    int error = 0;
    const std::unique_ptr<zip_t, ArchiveCloser> archive(
        zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &error));
    if (!archive)
        return std::nullopt;
    const zip_int64_t index = zip_name_locate(archive.get(), kPreviewEntry, 0);
    zip_stat_t stat;
    if (index < 0 || zip_stat_index(archive.get(), zip_uint64_t(index), 0, &stat) != 0 ||
        !(stat.valid & ZIP_STAT_SIZE) || stat.size > kLargestPreview)
        return std::nullopt;
    const std::unique_ptr<zip_file_t, EntryCloser> entry(
        zip_fopen_index(archive.get(), zip_uint64_t(index), 0));
    if (!entry)
        return std::nullopt;
    QByteArray bytes(qsizetype(stat.size), Qt::Uninitialized);
    if (zip_fread(entry.get(), bytes.data(), stat.size) != zip_int64_t(stat.size))
        return std::nullopt;
    return bytes;
}

} // namespace

std::optional<QString> tl_pathToPreviewOfITMZ(const QString &path)
{
    const std::optional<QByteArray> bytes = previewBytes(path);
    if (!bytes)
        return std::nullopt;
    // One folder per archive, so previews of different files never mix.
    const QString folder =
        QDir(platform::temporaryFolder())
            .filePath(
                QStringLiteral("ITMZ/") +
                QString::fromLatin1(
                    QCryptographicHash::hash(path.toUtf8(), QCryptographicHash::Md5).toHex()));
    const QString preview = QDir(folder).filePath(QLatin1String(kPreviewEntry));
    if (!platform::writeFileAtomically(preview, *bytes))
        return std::nullopt;
    return preview;
}

} // namespace tl::store
