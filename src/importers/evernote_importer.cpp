#include "importers/evernote_importer.h"

#include "contexts/tag_database.h"
#include "convert/envelope.h"
#include "importers/event_parser.h"
#include "store/item_path.h"
#include "store/log.h"
#include "store/mime_types.h"
#include "store/properties.h"
#include "store/safe_names.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace tl::importers {

namespace {

// Exports hold megabytes of base64 in one element; the parser gets pieces.
constexpr qint64 kChunkSize = 256 * 1024;

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
    importerOf(context)->endElement(nameOf(localName));
}

void onText(void *context, const xmlChar *text, int length)
{
    importerOf(context)->text(reinterpret_cast<const char *>(text), length);
}

bool writeAtomically(const QString &path, const QByteArray &data)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit();
}

} // namespace

TLKSEvernoteImporter::TLKSEvernoteImporter(const QString &path, const QString &book)
    : m_path(path), m_folder(book.isEmpty() ? QFileInfo(path).absolutePath() : book)
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
    while (fine && !last && !m_cancelled) {
        const QByteArray chunk = file.read(kChunkSize);
        last = chunk.size() < kChunkSize;
        fine = parser.feed(chunk.constData(), int(chunk.size()), last);
    }
    return fine && !m_cancelled;
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
    QDir().mkpath(m_attachmentFolder);
    writeAtomically(m_attachmentFolder + u'/' + name, bytes);
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
            store::tl_setCreationDate(m_notePath, dateFromEvernoteDate(trimmed));
    } else if (name == u"updated") {
        if (!text.isEmpty())
            m_modifiedDate = dateFromEvernoteDate(trimmed);
    } else if (name == u"tag") {
        if (!m_notePath.isEmpty() && !text.isEmpty())
            m_tags << trimmed;
    } else if (name == u"source-url") {
        if (!m_notePath.isEmpty())
            store::tl_setProperty(m_notePath, trimmed, QStringLiteral("URL"));
    } else if (name == u"note") {
        writeNote();
    } else if (!m_notePath.isEmpty() && !trimmed.isEmpty()) {
        store::tl_setProperty(m_notePath, trimmed, name);
    }
}

// A note without a title has no path: it is counted, and its write fails.
void TLKSEvernoteImporter::writeNote()
{
    if (!m_notePath.isEmpty() &&
        writeAtomically(m_notePath,
                        evernoteNoteHTML(m_content, m_hashFilenameDictionary).toUtf8())) {
        convert::tl_applyCurrentStyle(m_notePath);
        for (const QString &tag : std::as_const(m_tags))
            contexts::tl_setTag(m_notePath, tag);
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
}

} // namespace tl::importers
