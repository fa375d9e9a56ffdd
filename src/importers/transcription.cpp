#include "importers/transcription.h"

#include "platform/file_ops.h"
#include "platform/speech_recognizer.h"
#include "store/item_path.h"
#include "store/safe_names.h"

#include <QFileInfo>
#include <QLocale>
#include <spdlog/spdlog.h>

namespace tl::importers {

QString transcriptionLocale()
{
    const QLocale system = QLocale::system();
    if (system.language() == QLocale::C)
        return QStringLiteral("en-US");
    return system.name().replace(u'_', u'-');
}

bool tl_speechIsAuthorized(const QString &locale)
{
    return platform::speechRecognizer().isAvailable(locale);
}

QString transcriptionStatusText(const QString &locale)
{
    // The identifier with "-" as "." loses its last part as an extension would.
    const QString dotted = QString(locale).replace(u'-', u'.');
    const qsizetype dot = dotted.lastIndexOf(u'.');
    const QString language = dot < 0 ? dotted : dotted.left(dot);
    return QStringLiteral("Transcription in progress") +
           QStringLiteral(" (%1)").arg(language.toUpper());
}

std::optional<QString> tl_saveTranscript(const QString &recording, const QStringList &results)
{
    QString text;
    for (const QString &result : results)
        text += u'\n' + result;
    if (text.trimmed().isEmpty())
        return std::nullopt;
    const QFileInfo source(recording);
    const QString target = store::tl_uniqueNameForFileatPath(
        source.completeBaseName() + QStringLiteral(" %1.md").arg(QStringLiteral("transcript")),
        source.path());
    const QString content = QFileInfo(target).completeBaseName() +
                            QStringLiteral("\n\n<audio src=\"%1\" controls></audio>\n\n%2")
                                .arg(store::percentEncodedForPath(source.fileName()), text);
    if (!platform::writeFileAtomically(target, content.toUtf8())) {
        spdlog::warn("transcription: cannot write {}", target.toStdString());
        return std::nullopt;
    }
    return target;
}

std::optional<QString> tl_transcribeAudioWithLocale(const QString &recording, const QString &locale,
                                                    const std::function<void(double)> &progress,
                                                    const std::atomic<bool> *cancelled)
{
    platform::SpeechRecognizer &recognizer = platform::speechRecognizer();
    if (!recognizer.isAvailable(locale))
        return std::nullopt;
    const std::optional<QStringList> results =
        recognizer.transcribe({recording, locale, progress, cancelled});
    if (!results) {
        spdlog::info("transcription: nothing recognised in {}", recording.toStdString());
        return std::nullopt;
    }
    return tl_saveTranscript(recording, *results);
}

} // namespace tl::importers
