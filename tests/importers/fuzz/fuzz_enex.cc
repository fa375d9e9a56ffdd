// libFuzzer target: an Evernote export imported into a book of a library,
// whole and cut in half. Whatever the input, notes and resources stay inside
// their book, and the cut export keeps every note finished before the cut,
// the same as the whole export made it.
#include "importers/evernote_importer.h"
#include "store/library_root.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <cstddef>
#include <cstdint>

namespace {

const QDir::Filters kAll = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;

const QString &library()
{
    static const QString root = [] {
        const QString path = QDir::homePath() + QStringLiteral("/library");
        QDir(path).removeRecursively();
        QDir().mkpath(path);
        tl::store::setLibraryRootOverride(path);
        return path;
    }();
    return root;
}

// The book holds files, and its attachment folder files only.
void checkBook(const QString &book)
{
    for (const QFileInfo &entry : QDir(book).entryInfoList(kAll)) {
        if (entry.isSymLink())
            __builtin_trap();
        if (entry.isDir() && entry.fileName() != u"TLImages")
            __builtin_trap();
    }
    for (const QFileInfo &entry : QDir(book + QStringLiteral("/TLImages")).entryInfoList(kAll))
        if (!entry.isFile() || entry.isSymLink())
            __builtin_trap();
}

struct Note
{
    QString name;
    QByteArray text;
    bool operator==(const Note &) const = default;
};

QList<Note> imported(const QByteArray &exported, const QString &bookName)
{
    const QString book = library() + u'/' + bookName;
    QDir(book).removeRecursively();
    QDir().mkpath(book);
    const QString path = library() + QStringLiteral("/notes.enex");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        __builtin_trap();
    file.write(exported);
    file.close();
    tl::importers::TLKSEvernoteImporter importer(path, book);
    importer.start();
    if (importer.noteCount() < importer.notes().size())
        __builtin_trap();
    QList<Note> notes;
    for (const QString &note : importer.notes()) {
        QFile written(note);
        if (QFileInfo(note).absolutePath() != book || !written.open(QIODevice::ReadOnly))
            __builtin_trap();
        notes.append({QFileInfo(note).fileName(), written.readAll()});
    }
    checkBook(book);
    return notes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray exported(reinterpret_cast<const char *>(data), qsizetype(size));
    const QList<Note> whole = imported(exported, QStringLiteral("Whole"));
    const QList<Note> cut = imported(exported.left(exported.size() / 2), QStringLiteral("Cut"));
    if (cut.size() > whole.size() || whole.mid(0, cut.size()) != cut)
        __builtin_trap();
    // Beside the books only the export and the program's own folder.
    for (const QString &entry : QDir(library()).entryList(kAll))
        if (entry != u"Whole" && entry != u"Cut" && entry != u"notes.enex" &&
            entry != u"TLResources")
            __builtin_trap();
    return 0;
}
