#pragma once

#include <QString>

// Documents on screen. A document view holds a session for the document it
// shows; moves of such a document are handed to the main queue so the view
// keeps its text while the file moves.
namespace tl::store {

class OpenDocumentSession
{
public:
    explicit OpenDocumentSession(const QString &path);
    ~OpenDocumentSession();
    OpenDocumentSession(const OpenDocumentSession &) = delete;
    OpenDocumentSession &operator=(const OpenDocumentSession &) = delete;

    QString path() const;
    // The view follows its document after a move.
    void setPath(const QString &path);

private:
    friend bool documentIsShown(const QString &path);
    QString m_path;
};

bool documentIsShown(const QString &path);

} // namespace tl::store
