#include "store/open_documents.h"

#include <QList>
#include <algorithm>
#include <mutex>

namespace tl::store {

namespace {

struct Registry
{
    std::mutex mutex;
    QList<const OpenDocumentSession *> sessions;
};

Registry &registry()
{
    static Registry instance;
    return instance;
}

} // namespace

OpenDocumentSession::OpenDocumentSession(const QString &path) : m_path(path)
{
    std::lock_guard lock(registry().mutex);
    registry().sessions.append(this);
}

OpenDocumentSession::~OpenDocumentSession()
{
    std::lock_guard lock(registry().mutex);
    registry().sessions.removeOne(this);
}

QString OpenDocumentSession::path() const
{
    std::lock_guard lock(registry().mutex);
    return m_path;
}

void OpenDocumentSession::setPath(const QString &path)
{
    std::lock_guard lock(registry().mutex);
    m_path = path;
}

bool documentIsShown(const QString &path)
{
    std::lock_guard lock(registry().mutex);
    const QList<const OpenDocumentSession *> &sessions = registry().sessions;
    return std::any_of(sessions.begin(), sessions.end(),
                       [&](const OpenDocumentSession *s) { return s->m_path == path; });
}

} // namespace tl::store
