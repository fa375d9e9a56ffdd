#include "platform/text_recognizer.h"

#include <QLocale>
#include <mutex>

namespace tl::platform {

namespace {

// The installed language named by the code itself, else the first of its
// variants ("chi" finds "chi_sim").
QString installedLanguageFor(const QString &code, const QStringList &installed)
{
    if (code.isEmpty())
        return {};
    if (installed.contains(code))
        return code;
    for (const QString &name : installed)
        if (name.startsWith(code + u'_'))
            return name;
    return {};
}

struct Slot
{
    std::mutex mutex;
    std::shared_ptr<TextRecognizer> recognizer;
};

Slot &slot()
{
    static Slot instance;
    return instance;
}

} // namespace

TextRecognizer::~TextRecognizer() = default;

QString recognitionLanguages(const QStringList &preferredLocales, const QStringList &installed)
{
    QStringList chosen;
    const auto add = [&chosen](const QString &name) {
        if (!name.isEmpty() && !chosen.contains(name))
            chosen << name;
    };
    for (const QString &locale : preferredLocales) {
        const QLocale::Language language = QLocale(locale).language();
        if (language == QLocale::C || language == QLocale::AnyLanguage)
            continue;
        // The engine names most languages by their terminology code ("deu"),
        // a few by their bibliographic one ("chi_sim").
        QString name = installedLanguageFor(
            QLocale::languageToCode(language, QLocale::ISO639Part2T), installed);
        if (name.isEmpty())
            name = installedLanguageFor(QLocale::languageToCode(language, QLocale::ISO639Part2B),
                                        installed);
        add(name);
    }
    if (installed.contains(u"eng"))
        add(QStringLiteral("eng"));
    return chosen.join(u'+');
}

std::shared_ptr<TextRecognizer> textRecognizer()
{
    std::lock_guard lock(slot().mutex);
    if (!slot().recognizer)
        slot().recognizer = std::make_shared<TesseractTextRecognizer>();
    return slot().recognizer;
}

void setTextRecognizer(std::shared_ptr<TextRecognizer> recognizer)
{
    std::lock_guard lock(slot().mutex);
    slot().recognizer = std::move(recognizer);
}

} // namespace tl::platform
