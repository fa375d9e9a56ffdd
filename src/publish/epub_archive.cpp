#include "publish/epub_archive.h"

#include "store/log.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
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

} // namespace

bool writeEPubArchive(const QString &tree, const QString &archivePath)
{
    QFile::remove(archivePath);
    int error = 0;
    zip_t *archive =
        zip_open(QFile::encodeName(archivePath).constData(), ZIP_CREATE | ZIP_EXCL, &error);
    if (!archive) {
        logLine(QStringLiteral("e-book: cannot create %1 (%2)").arg(archivePath).arg(error));
        return false;
    }
    QStringList files;
    QDirIterator it(tree, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(tree).relativeFilePath(it.next());
    files.removeAll(QStringLiteral("mimetype"));
    files.sort();
    bool added = addFile(archive, tree, QStringLiteral("mimetype"), true);
    for (const QString &file : std::as_const(files))
        added = added && addFile(archive, tree, file, false);
    if (!added) {
        zip_discard(archive);
        return false;
    }
    if (zip_close(archive) != 0) {
        logLine(QStringLiteral("e-book: cannot write %1").arg(archivePath));
        zip_discard(archive);
        QFile::remove(archivePath);
        return false;
    }
    return true;
}

} // namespace tl::publish
