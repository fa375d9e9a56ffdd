// transcribe, location: text out of recordings, and positions put into
// documents.
#include "cli.h"
#include "importers/location.h"
#include "importers/transcription.h"

#include <QFileInfo>

namespace tl::cli {

namespace {

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
