// libFuzzer target: a mail message through the walker. Whatever the input,
// every attachment lands as a plain file inside the attachment folder and
// nothing else is written beside it.
#include "importers/mail_message.h"

#include <QDir>
#include <QFileInfo>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // The folder lies two levels down, so a name that climbed out of it
    // would show in the levels above.
    static const QString mail = QDir::homePath() + QStringLiteral("/mail");
    static const QString folder = mail + QStringLiteral("/inbox/attachments");
    QDir(mail).removeRecursively();
    QDir().mkpath(folder);
    tl::importers::tl_emlToHTML(
        QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size)), folder);
    const QDir::Filters all = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;
    if (QDir(mail).entryList(all) != QStringList{QStringLiteral("inbox")} ||
        QDir(mail + QStringLiteral("/inbox")).entryList(all) !=
            QStringList{QStringLiteral("attachments")})
        __builtin_trap();
    for (const QFileInfo &file : QDir(folder).entryInfoList(all))
        if (!file.isFile() || file.isSymLink())
            __builtin_trap();
    return 0;
}
