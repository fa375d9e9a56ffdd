// Group headers and the texts of an empty list.
#include "browser/document_list.h"
#include "browser/smart_books.h"

namespace tl::browser {

namespace {

// "%lu %@" with the count, or the bare word for one.
QString countedHeader(qsizetype count, const QString &word)
{
    if (count == 0)
        return {};
    const QString text = count == 1 ? word : QStringLiteral("%1 %2").arg(count).arg(word);
    return text.toUpper();
}

} // namespace

QString TLKSDocumentListViewController::smartBooksHeader() const
{
    if (smartBooksList.isEmpty())
        return {};
    return (smartBookType == Contexts ? QStringLiteral("Contexts") : QStringLiteral("Smart Books"))
        .toUpper();
}

QString TLKSDocumentListViewController::booksHeader() const
{
    return countedHeader(booksList.size(), QStringLiteral("Books"));
}

QString TLKSDocumentListViewController::documentsHeader() const
{
    return countedHeader(documentsList.size(),
                         isTaskList() ? QStringLiteral("Tasks") : QStringLiteral("Documents"));
}

QList<ListEntry> TLKSDocumentListViewController::entries() const
{
    QList<ListEntry> result;
    const auto section = [&result](const QString &header, const QList<store::ListRow> &rows) {
        if (rows.isEmpty())
            return;
        result << ListEntry{header, std::nullopt};
        for (const store::ListRow &row : rows)
            result << ListEntry{{}, row};
    };
    section(smartBooksHeader(), smartBooksList);
    section(booksHeader(), booksList);
    section(documentsHeader(), documentsList);
    return result;
}

QString TLKSDocumentListViewController::emptyListText() const
{
    if (!smartBooksList.isEmpty() || !booksList.isEmpty() || !documentsList.isEmpty())
        return {};
    if (numberOfHiddenDoneTasks > 0)
        return QStringLiteral("%1 %2")
            .arg(numberOfHiddenDoneTasks)
            .arg(QStringLiteral("Done Tasks"));
    if (!searchFilter.isEmpty())
        return QStringLiteral("No filtered results.\n\nType Return to start a search.");
    if (smartBookType == SearchResults)
        return QStringLiteral("No search results");
    return QStringLiteral("No Documents to Display");
}

} // namespace tl::browser
