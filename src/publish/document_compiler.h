#pragma once

#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <optional>

// Many documents and books become one new document in the library, or an
// e-book beside them. A run works on the caller's thread, which is a worker
// for the desktop program; the progress sheet's calls come from that thread,
// so a window hops to its own thread itself. Stop is raised from anywhere
// and read between documents: a late read costs one more document.
namespace tl::publish {

// The progress sheet: shown at the start of a run, updated with a
// percentage after each document, hidden at the end.
struct ProgressSheet
{
    std::function<void()> show;
    std::function<void(double percent)> update;
    std::function<void()> hide;
};

// The details sheet of an e-book. Empty fields take their defaults.
struct EBookAttributes
{
    QString title;
    QString author;
    QString subject;
    QString description;
    QString rights;
    // An image that becomes the cover, whatever its name.
    QString cover;
};

class TLKSDocumentCompiler
{
public:
    // Where the result and its TLImages folder go; the library root when
    // the folder does not exist.
    QString basePath;
    // Where a PDF goes.
    QString targetPath;
    // "html", "md" or "txt" chosen outright; empty follows auto format.
    QString outputKind;
    std::atomic<bool> stopProcess{false};
    bool creatingeBook = false;

    void setProgressSheet(ProgressSheet sheet);

    // Folders replaced by all their documents in reading order.
    static QStringList listOfDocumentsByExpandingBooksInArray(const QStringList &paths);

    // Joins the documents into a new file in the base folder and answers
    // its path. The separator is taken and not used: documents are always
    // separated by two empty lines.
    QString tl_createHTMLFromDocuments(const QStringList &paths, const QString &title,
                                       const QString &separator, bool autoFormat);
    // The finished e-book's path, or nothing when the run was stopped.
    std::optional<QString> tl_makeePubWithAttributes(const EBookAttributes &attributes,
                                                     const QStringList &paths);

    // Used by the runs.
    QString effectiveBasePath() const;
    void showSheet();
    void updateProgress(double percent);
    void hideSheet();

private:
    ProgressSheet m_sheet;
};

} // namespace tl::publish
