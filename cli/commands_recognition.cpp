// ocr, transcribe, location: text out of images, PDFs and recordings, and
// positions put into documents.
#include "cli.h"
#include "importers/location.h"
#include "importers/text_recognition.h"
#include "importers/transcription.h"

#include <QFileInfo>

namespace tl::cli {

namespace {

int recognizeText(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("ocr takes one PATH"), Usage);
    const bool save = parser.isSet(QStringLiteral("save"));
    // The new document links to its source through the library.
    const std::optional<QString> source =
        save ? itemInLibrary(in.arguments.first(), Inside::BelowRoot)
             : absolutePath(in.arguments.first());
    if (!source)
        return Failure;
    if (!QFileInfo(*source).isFile())
        return fail(QStringLiteral("Cannot read %1").arg(in.arguments.first()));
    if (!importers::tl_canRecognizeText(*source))
        return fail(QStringLiteral("Not an image or a PDF: %1").arg(in.arguments.first()));
    importers::RecognitionRun run;
    const QString text = importers::tl_recognizeText(*source, run);
    if (text.isEmpty())
        return fail(QStringLiteral("No text recognised in %1").arg(in.arguments.first()));
    const QString document = save ? importers::tl_saveRecognizedText(*source, text) : QString();
    if (save && document.isEmpty())
        return fail(QStringLiteral("Cannot save the text of %1").arg(in.arguments.first()));
    if (in.json)
        printValue(save ? QVariantMap{{"text", text}, {"document", document}}
                        : QVariantMap{{"text", text}},
                   true);
    else
        printLine(save ? document : text);
    return Success;
}

int transcribe(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("transcribe takes one PATH"), Usage);
    const QString recording = absolutePath(in.arguments.first());
    if (!QFileInfo(recording).isFile())
        return fail(QStringLiteral("Cannot read %1").arg(in.arguments.first()));
    const QString locale = parser.isSet(QStringLiteral("locale"))
                               ? parser.value(QStringLiteral("locale"))
                               : importers::transcriptionLocale();
    if (!importers::tl_speechIsAuthorized(locale))
        return fail(QStringLiteral("Transcription is not available for %1: no speech model for "
                                   "its language is installed")
                        .arg(locale));
    const std::optional<QString> transcript =
        importers::tl_transcribeAudioWithLocale(recording, locale);
    if (!transcript)
        return fail(QStringLiteral("No speech recognised in %1").arg(in.arguments.first()));
    printValue(*transcript, in.json);
    return Success;
}

int location(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("location takes one MAPS-LINK"), Usage);
    const std::optional<importers::LocationFix> fix =
        importers::tl_locationFromString(in.arguments.first());
    if (!fix)
        return fail(QStringLiteral("No position in %1").arg(in.arguments.first()));
    const QString document = parser.isSet(QStringLiteral("document"))
                                 ? absolutePath(parser.value(QStringLiteral("document")))
                                 : QString();
    if (!document.isEmpty() && !QFileInfo(document).isFile())
        return fail(QStringLiteral("Cannot read %1").arg(parser.value(QStringLiteral("document"))));
    const bool markdown = parser.isSet(QStringLiteral("markdown"));
    const std::optional<QString> text = importers::tl_locationTextForDocument(
        *fix, document,
        markdown ? importers::LocationForm::Markdown : importers::LocationForm::HTML);
    if (!text)
        return fail(QStringLiteral("Cannot insert the location %1").arg(in.arguments.first()));
    printValue(*text, in.json);
    return Success;
}

} // namespace

const std::vector<Command> &recognitionCommands()
{
    static const std::vector<Command> commands{
        {"ocr", "The text of an image or PDF, kept as its OCR property", false,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(QStringLiteral("PATH"),
                                          QStringLiteral("The image or PDF."));
             parser.addOption({QStringLiteral("save"),
                               QStringLiteral("Make a document of the text beside it, in the "
                                              "library, and print its path.")});
         },
         recognizeText},
        {"transcribe", "A recording's speech into a Markdown transcript beside it", false,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(QStringLiteral("PATH"), QStringLiteral("The recording."));
             parser.addOption({QStringLiteral("locale"),
                               QStringLiteral("The language spoken (default: the user's)."),
                               QStringLiteral("LOCALE")});
         },
         transcribe},
        {"location", "The text that inserts the position of a maps link into a document", false,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(
                 QStringLiteral("MAPS-LINK"),
                 QStringLiteral("A maps link with ll, daddr or q (and utc, acc)."));
             parser.addOption(
                 {QStringLiteral("markdown"), QStringLiteral("As Markdown (default: HTML).")});
             parser.addOption({QStringLiteral("document"),
                               QStringLiteral("Save the map picture in this document's "
                                              "attachment folder and link it."),
                               QStringLiteral("PATH")});
         },
         location},
    };
    return commands;
}

} // namespace tl::cli
