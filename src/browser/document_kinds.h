#pragma once

#include <QString>

// Which view takes a document, by its kind and the settings: the table the
// document view decides by, kept as data beside its one reader.
namespace tl::browser {

// Where the formatted view's page comes from.
enum class FormattedSource {
    None,
    // The program renders the text (Markdown, Fountain, OPML).
    Rendered,
    // The file itself, as HTML (or as plain text shown in the web view).
    File,
    // A Markdown document kept as HTML with its source in a comment.
    PlainTextRepresentation,
    // A screenplay in Final Draft form, through the style sheet.
    FinalDraft,
    WebArchive,
    WebLocation,
    Mail,
    EvernoteExport,
    Image,
    MindMapPreview,
};

struct ViewDecision
{
    // 1 plain text, 2 formatted, 3 PDF, 5 preview.
    int view = 0;
    FormattedSource source = FormattedSource::None;
    // The toggle's label where the kind has one beside the plain/formatted flip.
    QString toggleTitle;
    // Whether the toggle flips this kind at all.
    bool toggles = false;
    bool readOnly = false;
};

// The view for the document at path; toggled is the user's flip between
// plain text and formatted.
ViewDecision decideView(const QString &path, bool toggled);

// The address a web location file points to ("webloc" property list or
// "url" shortcut); empty when there is none.
QString tl_embeddedURL(const QString &path);

} // namespace tl::browser
