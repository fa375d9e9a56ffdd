#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>

class QLocalServer;

// One running desktop program per user: it listens on a local socket in
// $XDG_RUNTIME_DIR, and a later start hands its addresses and paths over
// instead of opening a second window.
namespace tl::shell {

// The socket's path: $XDG_RUNTIME_DIR, else the temporary folder.
QString instanceSocketPath();

// Gives the requests (tavelle:// addresses and absolute paths) to the running
// program; false when none runs or it did not take them in time.
bool handOverToRunningInstance(const QStringList &requests, int timeoutMilliseconds = 2000);

// Whether a request is an address rather than a path.
bool isTavelleAddress(const QString &request);

// The services as requests, beside addresses and absolute paths: the quick
// entry window, and text to insert into the document in front.
inline constexpr char kQuickEntryRequest[] = "quickEntry";
QString insertRequest(const QString &text);
// The text of an insert request; nothing for any other request.
std::optional<QString> textToInsert(const QString &request);

class InstanceServer : public QObject
{
    Q_OBJECT
public:
    explicit InstanceServer(QObject *parent = nullptr);
    ~InstanceServer() override;

    // Starts listening; false when another program already listens. A socket
    // left behind by a program that ended is taken over.
    bool listen();

Q_SIGNALS:
    void requestsReceived(const QStringList &requests);

private:
    QLocalServer *m_server;
};

} // namespace tl::shell
