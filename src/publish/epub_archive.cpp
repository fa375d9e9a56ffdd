#include "publish/epub_archive.h"

#include "store/log.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSaveFile>
#include <zip.h>

namespace tl::publish {

namespace {

bool addFile(zip_t *archive, const QString &tree, const QString &relative, bool stored)
{
    const QByteArray source = QFile::encodeName(tree + u'/' + relative);
    zip_source_t *data = zip_source_file(archive, source.constData(), 0, -1);
    if (!data)
        return false;
    const zip_int64_t index =
        zip_file_add(archive, relative.toUtf8().constData(), data, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(data);
        return false;
    }
    return zip_set_file_compression(archive, zip_uint64_t(index),
                                    stored ? ZIP_CM_STORE : ZIP_CM_DEFLATE, stored ? 0 : 9) == 0;
}

// Writes what the buffer holds to the file, replacing it only once whole.
bool saveBuffer(zip_source_t *buffer, const QString &path)
{
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_source_stat(buffer, &stat) != 0 || !(stat.valid & ZIP_STAT_SIZE) ||
        zip_source_open(buffer) != 0)
        return false;
    QByteArray bytes(qsizetype(stat.size), Qt::Uninitialized);
    const zip_int64_t read = zip_source_read(buffer, bytes.data(), stat.size);
    zip_source_close(buffer);
    if (read != zip_int64_t(stat.size))
        return false;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

} // namespace

// The archive is put together in memory and saved whole: a failure leaves no
// half-written book, and libzip's temporary file beside the book, named from
// OpenSSL's random bytes, is not needed. OpenSSL's per-thread state on a
// worker thread raced with its clean-up at exit.
bool writeEPubArchive(const QString &tree, const QString &archivePath)
{
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t *buffer = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_t *archive = buffer ? zip_open_from_source(buffer, ZIP_TRUNCATE, &error) : nullptr;
    if (!archive) {
        logLine(QStringLiteral("e-book: cannot create %1 (%2)")
                    .arg(archivePath, QString::fromUtf8(zip_error_strerror(&error))));
        zip_error_fini(&error);
        zip_source_free(buffer);
        return false;
    }
    zip_error_fini(&error);
    // Kept past zip_close, which would otherwise free it with the archive.
    zip_source_keep(buffer);
    QStringList files;
    QDirIterator it(tree, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(tree).relativeFilePath(it.next());
    files.removeAll(QStringLiteral("mimetype"));
    files.sort();
    bool added = addFile(archive, tree, QStringLiteral("mimetype"), true);
    for (const QString &file : std::as_const(files))
        added = added && addFile(archive, tree, file, false);
    const bool closed = added && zip_close(archive) == 0;
    if (!closed)
        zip_discard(archive);
    const bool saved = closed && saveBuffer(buffer, archivePath);
    zip_source_free(buffer);
    if (!saved)
        logLine(QStringLiteral("e-book: cannot write %1").arg(archivePath));
    return saved;
}

} // namespace tl::publish
