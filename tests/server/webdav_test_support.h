#pragma once

// A WebDAV connection over the fake socket, on a small library:
//   Book/note.txt ("hello"), Other/ (empty), "a file & b:c.md".
// Every request is signed with digest credentials taken from a first 401.

#include "server/webdav/dav_connection.h"
#include "server/webdav/request_body.h"
#include "server_test_support.h"
#include "store/library_root.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace servertest {

inline constexpr char kHost[] = "127.0.0.1:8080";

class WebDAVTest : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QString root;
    std::unique_ptr<Harness<server::DAVConnection>> harness;
    DigestClient client;

    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        root = tl::store::resolvingSymlinks(dir.path()) + "/Library";
        QDir().mkpath(root + "/Book");
        QDir().mkpath(root + "/Other");
        write("Book/note.txt", "hello");
        write("a file & b:c.md", "# title");
        harness = std::make_unique<Harness<server::DAVConnection>>(root);
        const auto challenge =
            harness->exchange(QByteArray("OPTIONS / HTTP/1.1\r\nHost: ") + kHost + "\r\n\r\n");
        ASSERT_TRUE(challenge && challenge->status == 401);
        client.takeChallenge(*challenge);
    }

    QString path(const QString &relative) const { return root + "/" + relative; }
    bool exists(const QString &relative) const { return QFileInfo::exists(path(relative)); }
    void write(const QString &relative, const QByteArray &bytes) const
    {
        QFile f(path(relative));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    QByteArray read(const QString &relative) const
    {
        QFile f(path(relative));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    // The head of a signed request; the caller adds the blank line and body.
    QByteArray head(const QByteArray &method, const QByteArray &uri, const QByteArray &headers = {})
    {
        return method + ' ' + uri + " HTTP/1.1\r\nHost: " + kHost +
               "\r\nAuthorization: " + client.authorization(method, uri) + "\r\n" + headers;
    }

    // Sends one signed request; a body gets its Content-Length unless the
    // headers give a transfer encoding.
    std::optional<Response> request(const QByteArray &method, const QByteArray &uri,
                                    const QByteArray &headers = {}, const QByteArray &body = {},
                                    bool withLength = true)
    {
        QByteArray bytes = head(method, uri, headers);
        if (withLength && !headers.contains("Transfer-Encoding"))
            bytes += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
        bytes += "\r\n" + body;
        return harness->exchange(bytes, method != "HEAD");
    }

    static QStringList uploads() { return QDir(server::uploadFolder()).entryList(QDir::Files); }
};

} // namespace servertest
