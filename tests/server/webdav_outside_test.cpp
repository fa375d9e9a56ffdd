// Nothing outside the library is reached through the server: symbolic links
// that lead out answer 404 to every method, and links inside the library are
// replaced by an upload rather than written through.
#include "webdav_test_support.h"

using namespace servertest;

namespace {

constexpr qsizetype kSecretSize = 12345;

class WebDAVOutsideTest : public WebDAVTest
{
protected:
    QString outside;

    void SetUp() override
    {
        WebDAVTest::SetUp();
        outside = tl::store::resolvingSymlinks(dir.path()) + "/Outside";
        QDir().mkpath(outside + "/Folder");
        QFile secret(outside + "/secret.txt");
        ASSERT_TRUE(secret.open(QIODevice::WriteOnly));
        secret.write(QByteArray(kSecretSize, 's'));
        secret.close();
        ASSERT_TRUE(QFile::link(outside + "/secret.txt", path("out-file")));
        ASSERT_TRUE(QFile::link(outside, path("out-dir")));
        ASSERT_TRUE(QFile::link(outside + "/Folder", path("Book/deep-out")));
        ASSERT_TRUE(QFile::link(path("Book/note.txt"), path("in-link")));
    }

    QStringList outsideEntries() const
    {
        return QDir(outside).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    }
};

struct OutsideCase
{
    const char *name;
    QByteArray method;
    QByteArray uri;
    QByteArray headers;
    QByteArray body;
};

// The response of one href in a multistatus body.
QByteArray responseOf(const QByteArray &multistatus, const QByteArray &href)
{
    const qsizetype at = multistatus.indexOf("<D:href>" + href + "</D:href>");
    return at < 0 ? QByteArray()
                  : multistatus.mid(at, multistatus.indexOf("</D:response>", at) - at);
}

QByteArray destination(const QByteArray &path)
{
    return QByteArray("Destination: http://") + kHost + path + "\r\n";
}

const QByteArray kLockBody =
    "<D:lockinfo xmlns:D=\"DAV:\"><D:lockscope><D:exclusive/></D:lockscope>"
    "<D:locktype><D:write/></D:locktype></D:lockinfo>";

const OutsideCase kOutsideCases[] = {
    {"get_file", "GET", "/out-file", {}, {}},
    {"get_through_folder", "GET", "/out-dir/secret.txt", {}, {}},
    {"head_file", "HEAD", "/out-file", {}, {}},
    {"propfind_folder", "PROPFIND", "/out-dir", "Depth: 1\r\n", {}},
    {"propfind_file", "PROPFIND", "/out-dir/secret.txt", "Depth: 0\r\n", {}},
    {"put_onto_link", "PUT", "/out-file", {}, "overwritten"},
    {"put_through_folder", "PUT", "/out-dir/new.txt", {}, "new"},
    {"put_through_deeper_link", "PUT", "/Book/deep-out/new.txt", {}, "new"},
    {"mkcol_through_deeper_link", "MKCOL", "/Book/deep-out/Missing/New", {}, {}},
    {"mkcol_through_folder", "MKCOL", "/out-dir/New", {}, {}},
    {"delete_through_folder", "DELETE", "/out-dir/secret.txt", {}, {}},
    {"delete_folder_link", "DELETE", "/out-dir/Folder", {}, {}},
    {"copy_from_outside",
     "COPY",
     "/out-file",
     destination("/copied.txt") + "Depth: infinity\r\n",
     {}},
    {"copy_to_outside",
     "COPY",
     "/Book/note.txt",
     destination("/out-dir/copied.txt") + "Depth: infinity\r\n",
     {}},
    {"move_from_outside", "MOVE", "/out-dir/secret.txt", destination("/moved.txt"), {}},
    {"move_to_outside", "MOVE", "/Book/note.txt", destination("/out-dir/moved.txt"), {}},
    {"lock_through_folder", "LOCK", "/out-dir/locked.txt", "Depth: 0\r\n", kLockBody},
    {"unlock_file", "UNLOCK", "/out-file", "Lock-Token: <urn:uuid:1>\r\n", {}},
};

class OutsideMethodTest : public WebDAVOutsideTest,
                          public ::testing::WithParamInterface<OutsideCase>
{
};

} // namespace

TEST_P(OutsideMethodTest, AnswersNotFoundAndTouchesNothing)
{
    const OutsideCase &c = GetParam();
    const auto r = request(c.method, c.uri, c.headers, c.body);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, 404) << r->raw.toStdString();
    EXPECT_EQ(outsideEntries(), QStringList({"Folder", "secret.txt"}));
    EXPECT_TRUE(QDir(outside + "/Folder").isEmpty());
    EXPECT_EQ(QFileInfo(outside + "/secret.txt").size(), kSecretSize);
    EXPECT_EQ(read("Book/note.txt"), "hello");
    EXPECT_FALSE(exists("copied.txt") || exists("moved.txt"));
}

INSTANTIATE_TEST_SUITE_P(Methods, OutsideMethodTest, ::testing::ValuesIn(kOutsideCases),
                         [](const auto &info) { return std::string(info.param.name); });

TEST_F(WebDAVOutsideTest, LinksInsideTheLibraryServeAndAreReplacedByAnUpload)
{
    EXPECT_EQ(request("GET", "/in-link")->body, "hello");
    EXPECT_EQ(request("PUT", "/in-link", {}, "replaced")->status, 200);
    EXPECT_FALSE(QFileInfo(path("in-link")).isSymLink());
    EXPECT_EQ(read("in-link"), "replaced");
    EXPECT_EQ(read("Book/note.txt"), "hello") << "the link's target is left alone";
}

TEST_F(WebDAVOutsideTest, ALinkLeadingOutIsListedAsItself)
{
    const auto r = request("PROPFIND", "/", "Depth: 1\r\n");
    ASSERT_EQ(r->status, 207);
    const QByteArray file = responseOf(r->body, "/out-file");
    ASSERT_FALSE(file.isEmpty());
    EXPECT_FALSE(file.contains("<D:getcontentlength>" + QByteArray::number(kSecretSize) + "<"));
    EXPECT_TRUE(responseOf(r->body, "/out-dir").contains("<D:resourcetype/>"));
    EXPECT_TRUE(
        responseOf(r->body, "/in-link").contains("<D:getcontentlength>5</D:getcontentlength>"))
        << "a link inside the library is followed";
}
