#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <atomic>
#include <functional>
#include <optional>

// Evernote exports into a book: every note one HTML document, every
// resource one file in the book's attachment folder. The export is read in
// pieces by an event parser, never whole, so resources of any size pass.
namespace tl::importers {

class TLKSEvernoteImporter
{
public:
    // Notes go into the folder of `book`, resources into its attachment
    // folder; without a book, the folder that holds the export. Once `stop`
    // is set, from any thread, the parse ends; the notes written stay.
    explicit TLKSEvernoteImporter(const QString &path, const QString &book = {},
                                  const std::atomic_bool *stop = nullptr);

    // Called with each note's file name as it is written.
    std::function<void(const QString &fileName)> progress;

    // Parses the whole export; a malformed or cut file keeps the notes
    // finished before the fault. Answers whether the end was reached.
    bool start();
    bool isStopped() const { return m_stop && m_stop->load(); }

    int noteCount() const { return m_noteCount; }
    // The documents written, in order.
    const QStringList &notes() const { return m_notes; }

    // The parser's events.
    void startElement(const QString &name);
    void text(const char *bytes, int length);
    void endElement(const QString &name);

private:
    void endResource();
    void endNoteElement(const QString &name, const QString &text);
    void writeNote();
    QString noteDocument();
    void collectTags();

    QString m_path;
    QString m_folder;
    QString m_attachmentFolder;
    QString m_content;
    QString m_mime;
    QByteArray m_data;
    QString m_fileName;
    QString m_notePath;
    // Properties and tags wait for the note's file, which takes them in one
    // write; the tag stores take the tags of many notes at once.
    QVariantMap m_properties;
    QStringList m_tags;
    QStringList m_taggedNotes;
    std::optional<QString> m_styleSheet;
    std::optional<QByteArray> m_currentElement;
    bool m_processingResources = false;
    QHash<QString, QString> m_hashFilenameDictionary;
    std::optional<QDateTime> m_modifiedDate;
    int m_noteCount = 0;
    QStringList m_notes;
    const std::atomic_bool *m_stop;
};

// The note's content as the document's HTML, its media as images, audio or
// video of the resources by their hash.
QString evernoteNoteHTML(const QString &content, const QHash<QString, QString> &hashFilenames);

// The three date forms of exports; the current date when none fits.
QDateTime dateFromEvernoteDate(const QString &text);

} // namespace tl::importers
