// Files handed over from outside, and the services offered as commands.
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "platform/alerts.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "platform/settings.h"
#include "shell/app_delegate.h"
#include "shell/shell_keys.h"
#include "shell/url_actions.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/first_line.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/safe_names.h"

#include <QFileInfo>

namespace tl::shell {

namespace {

namespace S = keys::setting;

} // namespace

QString defaultInboxOrRoot()
{
    const QString root = store::libraryRoot();
    const QString inbox = platform::settings().string(QLatin1String(S::DefaultInbox));
    const QString book = path::appendingComponent(root, inbox);
    return !inbox.isEmpty() && QFileInfo(book).isDir() ? book : root;
}

namespace {

bool hasInbox()
{
    return defaultInboxOrRoot() != store::libraryRoot();
}

void openInExtraWindow(const QString &path)
{
    NotificationCenter::defaultCenter().post(events::OpenItemsInNewWindow,
                                             {{"paths", QStringList{path}}});
}

// Copies the file into the folder under a free name; the copy's path, or "".
QString copyInto(const QString &path, const QString &folder)
{
    const QString target = store::tl_uniqueNameForFileatPath(path::lastComponent(path), folder);
    if (!platform::copyItem(path, target))
        return {};
    NotificationCenter::defaultCenter().post(events::HandleFileModificationInstantly,
                                             {{"path", target}});
    return target;
}

void askToChangeHome(const QString &folder)
{
    const store::ContextMenuLabel label = store::tl_pathFormattedForContextMenu(folder, 1);
    QString shown = label.faintPart + label.normalPart;
    shown.remove(u' ');
    if (platform::alerts().run({QLatin1String(kChangeHome),
                                QStringLiteral("Switch to folder %1?").arg(shown),
                                {QStringLiteral("Change"), QStringLiteral("Cancel")}}) == 0)
        tl_setRootToPath(folder);
}

// Copies a file from outside to the inbox; one from the temporary folder is
// then opened from its new place.
void takeIntoInbox(const QString &path)
{
    const QString copy = copyInto(path, defaultInboxOrRoot());
    if (!copy.isEmpty() && path.startsWith(platform::temporaryFolder() + u'/'))
        openInExtraWindow(copy);
}

void askHowToProceed(const QString &path)
{
    const bool isStyle = store::lowerCasedExtension(path) == u"css";
    QStringList buttons{QStringLiteral("Open in Extra Window"),
                        hasInbox() ? QStringLiteral("Add to Inbox")
                                   : QStringLiteral("Add to Tavelle' Top Level")};
    if (isStyle)
        buttons << QStringLiteral("Add as Document Style");
    buttons << QStringLiteral("Cancel");
    const QString answer = buttons.value(
        platform::alerts().run({QLatin1String(kHowToProceed),
                                QStringLiteral("\"%1\"").arg(path::lastComponent(path)), buttons}));
    if (answer == u"Open in Extra Window")
        openInExtraWindow(path);
    else if (answer.startsWith(u"Add to"))
        takeIntoInbox(path);
    else if (answer == u"Add as Document Style") {
        const QString styles = store::libraryRoot() + QStringLiteral("/TLResources/CSS");
        platform::makeFolder(styles);
        copyInto(path, styles);
    }
}

} // namespace

bool applicationOpenFile(const QString &path, bool askHow)
{
    platform::Settings &settings = platform::settings();
    if (settings.boolValue(QLatin1String(S::IgnoreDroppedFilesOnLaunch)))
        return false;
    const QString root = store::libraryRoot();
    if (QFileInfo(path).isDir()) {
        if (path != root)
            askToChangeHome(path);
        return true;
    }
    const bool inside = !root.isEmpty() && path.startsWith(root + u'/');
    if (inside)
        openInExtraWindow(path);
    else if (askHow || store::lowerCasedExtension(path) == u"css")
        askHowToProceed(path);
    else if (settings.boolValue(QLatin1String(S::AddDroppedItemsToInbox)) ||
             path.startsWith(platform::temporaryFolder() + u'/'))
        takeIntoInbox(path);
    else
        openInExtraWindow(path);
    return true;
}

QString addSelection(const QString &text, bool asRTF)
{
    if (text.isEmpty())
        return {};
    const QString name = store::tl_escapeIllegalCharacters(store::tl_firstLineOfText(text));
    const QString path = store::tl_uniqueNameForFileatPath(
        path::appendingExtension(name, asRTF ? QStringLiteral("rtf") : QStringLiteral("txt")),
        defaultInboxOrRoot());
    return store::tl_writeToFile(text, path, false, store::TextEncoding::UTF8) ? path : QString();
}

} // namespace tl::shell
