#pragma once

#include <QString>
#include <optional>

// The doors into the running program from outside: tavelle:// addresses,
// files handed over by the desktop, and the services offered as commands.
namespace tl::shell {

// The pieces of a tavelle:// address, cut by hand: the host keeps its case,
// since it may be a book's name.
struct TavelleURL
{
    QString host;
    QString path;
    QString query;
    QString fragment;
    bool hasFragment = false;
};
// Nothing for a string that is not a tavelle:// address.
std::optional<TavelleURL> parsedTavelleURL(const QString &url);

// The system's URL event: marks the launch as one for a URL, so it does not
// show the recent document, then runs tavelle:// addresses.
void handleGetURLEvent(const QString &url);
bool isHandlingURLEvent();
// Marks the launch as one for a URL before its event is run.
void setHandlingURLEvent();
// Runs a tavelle:// address: download, note, search, refusal or an item to show.
void handleTavelleURL(const QString &url);

// Downloads still under way, for a headless caller that waits for them.
int downloadsInFlight();

// How a file from outside is taken in; `askHow` stands for the Option key.
// False when files handed over at launch are to be ignored.
bool applicationOpenFile(const QString &path, bool askHow = false);

// A plain document of the body, UTF-8, in the book (the root when the book is
// not a folder below it), named by the title or else the body's first line,
// with "/" made "-" and "txt" added unless the name has a known extension.
// The path made, or "" for an empty body.
QString addNote(const QString &body, const QString &title, const QString &book);

// The default inbox when one is set and exists, else the root.
QString defaultInboxOrRoot();

// The services: a plain document from the given text in the root or the
// default inbox, named after its first line; nothing for an empty text. The
// path made, or "" for none.
QString addSelection(const QString &text, bool asRTF);

// The texts of the scheme and of the questions, as the user sees them.
inline constexpr char kUnsupportedScheme[] = "Unsupported URL Scheme";
inline constexpr char kUnsupportedSchemeInfo[] =
    "This scheme is intended for Tavelle on an iPad or iPhone.";
inline constexpr char kImportComplete[] = "Import Complete";
inline constexpr char kChangeHome[] = "Change Tavelle Home";
inline constexpr char kHowToProceed[] = "How Do You Wish to Proceed?";

} // namespace tl::shell
