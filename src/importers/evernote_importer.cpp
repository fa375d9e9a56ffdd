#include "importers/evernote_importer.h"

#include "contexts/tag_database.h"
#include "convert/envelope.h"
#include "convert/style_sheet.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "importers/event_parser.h"
#include "platform/file_ops.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/log.h"
#include "store/mime_types.h"
#include "store/properties.h"
#include "store/safe_names.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

namespace tl::importers {

namespace {

// Exports hold megabytes of base64 in one element; the parser gets pieces.
constexpr qint64 kChunkSize = 256 * 1024;
// Notes whose tags wait to be collected into the tag stores in one batch.
constexpr qsizetype kTaggedNotesPerBatch = 100;

namespace P = keys::property;

TLKSEvernoteImporter *importerOf(void *context)
{
    return EventParser::ownerOf<TLKSEvernoteImporter>(context);
}

QString nameOf(const xmlChar *name)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(name));
}

void onStart(void *context, const xmlChar *localName, const xmlChar *, const xmlChar *, int,
             const xmlChar **, int, int, const xmlChar **)
{
    importerOf(context)->startElement(nameOf(localName));
}

void onEnd(void *context, const xmlChar *localName, const xmlChar *, const xmlChar *)
{
    TLKSEvernoteImporter *importer = importerOf(context);
    importer->endElement(nameOf(localName));
    // A stop ends the parse right behind the element, a note at the most.
    if (importer->isStopped())
        xmlStopParser(static_cast<xmlParserCtxtPtr>(context));
}

void onText(void *context, const xmlChar *text, int length)
{
    importerOf(context)->text(reinterpret_cast<const char *>(text), length);
}

} // namespace

TLKSEvernoteImporter::TLKSEvernoteImporter(const QString &path, const QString &book,
                                           const std::atomic_bool *stop)
    : m_path(path), m_folder(book.isEmpty() ? QFileInfo(path).absolutePath() : book), m_stop(stop)
{
    m_attachmentFolder =
        store::tl_imagesFolderAtMyPath(m_folder + u'/' + QFileInfo(path).fileName());
}

bool TLKSEvernoteImporter::start()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        logLine(QStringLiteral("Evernote import: cannot read %1").arg(m_path));
        return false;
    }
    xmlSAXHandler handler{};
    handler.startElementNs = onStart;
    handler.endElementNs = onEnd;
    handler.characters = onText;
    handler.cdataBlock = onText;
    // Resources over the parser's usual limit for one text are common.
    EventParser parser(handler, this, XML_PARSE_HUGE);
    bool fine = true;
    bool last = false;
    while (fine && !last && !isStopped()) {
        const QByteArray chunk = file.read(kChunkSize);
        last = chunk.size() < kChunkSize;
        fine = parser.feed(chunk.constData(), int(chunk.size()), last);
    }
    // The notes written keep their tags, however the parse ended.
    collectTags();
    return fine && !isStopped();
}

void TLKSEvernoteImporter::startElement(const QString &name)
{
    if (name == u"resource")
        m_processingResources = true;
}

void TLKSEvernoteImporter::text(const char *bytes, int length)
{
    if (!m_currentElement)
        m_currentElement.emplace();
    m_currentElement->append(bytes, length);
}

// White space between elements stays collected into the next element's text.
void TLKSEvernoteImporter::endElement(const QString &name)
{
    const QByteArray collected = m_currentElement.value_or(QByteArray());
    m_currentElement.reset();
    if (!m_processingResources) {
        endNoteElement(name, QString::fromUtf8(collected));
    } else if (name == u"data") {
        m_data = collected.trimmed();
    } else if (name == u"file-name") {
        m_fileName = store::tl_escapeIllegalCharacters(QString::fromUtf8(collected).trimmed())
                         .replace(u' ', u'-');
        if (!m_fileName.isEmpty())
            m_fileName =
                QFileInfo(store::tl_uniqueNameForFileatPath(m_fileName, m_attachmentFolder))
                    .fileName();
    } else if (name == u"mime") {
        m_mime = QString::fromUtf8(collected).trimmed();
    } else if (name == u"resource") {
        endResource();
    }
}

void TLKSEvernoteImporter::endResource()
{
    m_processingResources = false;
    const QByteArray bytes = QByteArray::fromBase64(m_data);
    m_data.clear();
    const QString hash =
        QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
    QString name = m_fileName;
    if (!name.isEmpty()) {
        m_hashFilenameDictionary.insert(hash, name);
    } else {
        name = hash;
        const QString extension = store::tl_extensionForMimeType(m_mime);
        if (!m_mime.isEmpty() && !extension.isEmpty())
            name += u'.' + extension;
    }
    platform::writeCopyAtomically(m_attachmentFolder + u'/' + name, bytes);
    m_fileName.clear();
    m_mime.clear();
}

void TLKSEvernoteImporter::endNoteElement(const QString &name, const QString &text)
{
    const QString trimmed = text.trimmed();
    if (name == u"title") {
        m_notePath = store::tl_uniqueNameForFileatPath(
            store::tl_escapeIllegalCharacters(trimmed + QStringLiteral(".html")), m_folder);
    } else if (name == u"content") {
        m_content = text;
    } else if (name == u"created") {
        if (!m_notePath.isEmpty() && !text.isEmpty())
            m_properties.insert(QLatin1String(P::CreationDate), dateFromEvernoteDate(trimmed));
    } else if (name == u"updated") {
        if (!text.isEmpty())
            m_modifiedDate = dateFromEvernoteDate(trimmed);
    } else if (name == u"tag") {
        if (!m_notePath.isEmpty() && !text.isEmpty() && !m_tags.contains(trimmed))
            m_tags << trimmed;
    } else if (name == u"source-url") {
        if (!m_notePath.isEmpty())
            m_properties.insert(QLatin1String(P::URL), trimmed);
    } else if (name == u"note") {
        writeNote();
    } else if (!m_notePath.isEmpty() && !trimmed.isEmpty()) {
        m_properties.insert(name, trimmed);
    }
}

// The note with the book's style embedded at once, as every note shares it.
QString TLKSEvernoteImporter::noteDocument()
{
    const QString html = evernoteNoteHTML(m_content, m_hashFilenameDictionary);
    if (html.isEmpty())
        return html;
    if (!m_styleSheet)
        m_styleSheet = convert::tl_inheritedStyleSheet(m_notePath);
    return convert::withEmbeddedStylesheet(m_notePath, html, *m_styleSheet);
}

// A note without a title has no path: it is counted, and its write fails.
void TLKSEvernoteImporter::writeNote()
{
    if (!m_notePath.isEmpty() &&
        platform::writeCopyAtomically(m_notePath, noteDocument().toUtf8())) {
        NotificationCenter::defaultCenter().post(QLatin1String(events::FileModifiedOnDisk),
                                                 {{QStringLiteral("path"), m_notePath}});
        // The note's properties file is written once, its tags with the rest.
        if (!m_tags.isEmpty()) {
            m_properties.insert(QLatin1String(P::Tags), m_tags);
            m_taggedNotes << m_notePath;
        }
        store::tl_setProperties(m_notePath, m_properties);
        if (m_taggedNotes.size() >= kTaggedNotesPerBatch)
            collectTags();
        if (m_modifiedDate) {
            QFile note(m_notePath);
            if (note.open(QIODevice::ReadWrite))
                note.setFileTime(*m_modifiedDate, QFileDevice::FileModificationTime);
        }
        m_notes << m_notePath;
    }
    ++m_noteCount;
    if (progress)
        progress(QFileInfo(m_notePath).fileName());
    m_notePath.clear();
    m_tags.clear();
    m_properties.clear();
}

void TLKSEvernoteImporter::collectTags()
{
    contexts::tl_collectTagsInPlists(m_taggedNotes);
    m_taggedNotes.clear();
}

} // namespace tl::importers
