// Every WebDAV method and the status it answers, over the fake socket.
#include "webdav_test_support.h"

using namespace servertest;

namespace {

struct StatusCase
{
    const char *name;
    QByteArray method;
    QByteArray uri;
    QByteArray headers;
    QByteArray body;
    int status;
    bool withLength = true;
};

const QByteArray kLockBody =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?>"
    "<D:lockinfo xmlns:D=\"DAV:\"><D:lockscope><D:exclusive/></D:lockscope>"
    "<D:locktype><D:write/></D:locktype></D:lockinfo>";
const QByteArray kSharedLockBody =
    "<D:lockinfo xmlns:D=\"DAV:\"><D:lockscope><D:shared/></D:lockscope>"
    "<D:locktype><D:write/></D:locktype></D:lockinfo>";

// The Destination header of a move or copy.
QByteArray dest(const QByteArray &path, const QByteArray &host = kHost)
{
    return "Destination: http://" + host + path + "\r\n";
}

const QByteArray kNote = "/Book/note.txt";

const StatusCase kCases[] = {
    {"options", "OPTIONS", "/", {}, {}, 200},
    {"get", "GET", kNote, {}, {}, 200},
    {"head", "HEAD", kNote, {}, {}, 200},
    {"get_book_without_index", "GET", "/Book", {}, {}, 404},
    {"proppatch_unsupported", "PROPPATCH", "/Book", {}, {}, 405},
    {"propfind_no_depth", "PROPFIND", "/", {}, {}, 404},
    {"propfind_depth_infinity", "PROPFIND", "/", "Depth: infinity\r\n", {}, 404},
    {"propfind_depth_0", "PROPFIND", "/", "Depth: 0\r\n", {}, 207},
    {"propfind_depth_1_no_length", "PROPFIND", "/Book", "Depth: 1\r\n", {}, 207, false},
    {"propfind_missing", "PROPFIND", "/missing", "Depth: 0\r\n", {}, 404},
    {"mkcol_new", "MKCOL", "/New", {}, {}, 200},
    {"mkcol_existing", "MKCOL", "/Book", {}, {}, 405},
    {"mkcol_missing_parent", "MKCOL", "/Missing/New", {}, {}, 409},
    {"put_new", "PUT", "/new.txt", {}, "new", 201},
    {"put_existing", "PUT", kNote, {}, "changed", 200},
    {"put_content_range", "PUT", kNote, "Content-Range: bytes 0-2/3\r\n", "abc", 400},
    {"put_missing_book", "PUT", "/Missing/x.txt", {}, "x", 403},
    {"put_onto_book", "PUT", "/Book", {}, "x", 403},
    {"put_without_length", "PUT", "/x.txt", {}, {}, 400, false},
    {"delete_file", "DELETE", kNote, {}, {}, 200},
    {"delete_book", "DELETE", "/Book", {}, {}, 200},
    {"delete_missing", "DELETE", "/missing", {}, {}, 404},
    {"move", "MOVE", kNote, dest("/Other/note.txt"), {}, 201},
    {"move_book_trailing_slash", "MOVE", "/Book/", dest("/Other/Book/"), {}, 201},
    {"move_onto_existing",
     "MOVE",
     kNote,
     dest("/a%20file%20&%20b:c.md") + "Overwrite: T\r\n",
     {},
     404},
    {"move_onto_existing_no_overwrite", "MOVE", kNote, dest(kNote) + "Overwrite: F\r\n", {}, 404},
    {"move_other_host", "MOVE", kNote, dest("/Other/note.txt", "example.org"), {}, 404},
    {"move_no_destination", "MOVE", kNote, {}, {}, 404},
    {"move_missing_source", "MOVE", "/missing", dest("/Other/x"), {}, 404},
    {"move_missing_parent", "MOVE", kNote, dest("/Missing/note.txt"), {}, 409},
    {"move_out_of_library", "MOVE", kNote, dest("/../Outside.txt"), {}, 404},
    {"move_out_escaped", "MOVE", kNote, dest("/Book/%2E%2E/%2E%2E/Outside.txt"), {}, 404},
    {"move_to_sibling_prefix", "MOVE", kNote, dest("/../Library2/note.txt"), {}, 404},
    {"copy_no_depth", "COPY", kNote, dest("/Other/note.txt"), {}, 404},
    {"copy_depth_0", "COPY", "/Book", dest("/Other/Book") + "Depth: 0\r\n", {}, 404},
    {"copy", "COPY", "/Book", dest("/Other/Book") + "Depth: infinity\r\n", {}, 201},
    {"copy_onto_existing", "COPY", "/Book", dest("/Other") + "Depth: infinity\r\n", {}, 404},
    {"lock", "LOCK", kNote, "Depth: 0\r\n", kLockBody, 200},
    {"lock_new_name", "LOCK", "/new.txt", "Depth: 0\r\n", kLockBody, 200},
    {"lock_in_missing_book", "LOCK", "/Missing/new.txt", "Depth: 0\r\n", kLockBody, 403},
    {"lock_depth_infinity", "LOCK", "/Book", "Depth: infinity\r\n", kLockBody, 403},
    {"lock_shared", "LOCK", kNote, "Depth: 0\r\n", kSharedLockBody, 403},
    {"lock_without_length", "LOCK", kNote, "Depth: 0\r\n", {}, 400, false},
    {"lock_refresh", "LOCK", kNote, "If: (<urn:uuid:1>)\r\n", {}, 200},
    {"lock_empty_no_if", "LOCK", kNote, "Depth: 0\r\n", {}, 403},
    {"lock_not_lockinfo", "LOCK", kNote, "Depth: 0\r\n", "<propfind/>", 403},
    {"unlock", "UNLOCK", kNote, "Lock-Token: <urn:uuid:1>\r\n", {}, 204},
    {"unlock_without_token", "UNLOCK", kNote, {}, {}, 400},
    {"unlock_missing", "UNLOCK", "/missing", "Lock-Token: <urn:uuid:1>\r\n", {}, 404},
    // The library root itself is never deleted, moved or overwritten.
    {"delete_root", "DELETE", "/", {}, {}, 403},
    {"move_root", "MOVE", "/", dest("/Other/Library"), {}, 403},
    {"move_onto_root", "MOVE", "/Book", dest("/"), {}, 403},
    {"copy_onto_root", "COPY", "/Book", dest("/") + "Depth: infinity\r\n", {}, 403},
    {"put_onto_root", "PUT", "/", {}, "x", 403},
};

class WebDAVStatusTest : public WebDAVTest, public ::testing::WithParamInterface<StatusCase>
{
};

} // namespace

TEST_P(WebDAVStatusTest, AnswersTheStatus)
{
    const StatusCase &c = GetParam();
    const auto r = request(c.method, c.uri, c.headers, c.body, c.withLength);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, c.status) << r->raw.toStdString();
    // Nothing is ever written beside the library, and the library stays.
    EXPECT_TRUE(QFileInfo(root).isDir());
    EXPECT_FALSE(QFileInfo::exists(root + "/../Outside.txt"));
    EXPECT_FALSE(QFileInfo::exists(root + "2"));
}

INSTANTIATE_TEST_SUITE_P(Methods, WebDAVStatusTest, ::testing::ValuesIn(kCases),
                         [](const auto &info) { return std::string(info.param.name); });

TEST_F(WebDAVTest, WritesLandOnDisk)
{
    ASSERT_EQ(request("PUT", "/Book/new.txt", {}, "body")->status, 201);
    EXPECT_EQ(read("Book/new.txt"), "body");
    const auto mkcol = request("MKCOL", "/Book/Sub");
    ASSERT_EQ(mkcol->status, 200);
    EXPECT_TRUE(mkcol->body.isEmpty());
    EXPECT_TRUE(QFileInfo(path("Book/Sub")).isDir());
    ASSERT_EQ(request("MOVE", "/Book/new.txt", dest("/Book/Sub/moved%20text.txt"))->status, 201);
    EXPECT_FALSE(exists("Book/new.txt"));
    EXPECT_EQ(read("Book/Sub/moved text.txt"), "body");
    ASSERT_EQ(request("COPY", "/Book/Sub", dest("/Other/Sub") + "Depth: infinity\r\n")->status,
              201);
    EXPECT_EQ(read("Other/Sub/moved text.txt"), "body");
    EXPECT_EQ(read("Book/Sub/moved text.txt"), "body");
    ASSERT_EQ(request("DELETE", "/Book")->status, 200);
    EXPECT_FALSE(exists("Book"));
}

TEST_F(WebDAVTest, RefusedMovesLeaveBothSides)
{
    ASSERT_EQ(request("MOVE", "/Book/note.txt", dest("/a%20file%20&%20b:c.md") + "Overwrite: T\r\n")
                  ->status,
              404);
    EXPECT_EQ(read("Book/note.txt"), "hello");
    EXPECT_EQ(read("a file & b:c.md"), "# title");
}

TEST_F(WebDAVTest, OptionsTellsClassTwoOnlyToTheFileSystemClient)
{
    const auto plain = request("OPTIONS", "/", "User-Agent: cadaver/0.24\r\n");
    EXPECT_EQ(plain->header("DAV"), "1");
    const auto mounter =
        request("OPTIONS", "/", "User-Agent: WebDAVFS/3.0.0 (03008000) Darwin/22.1.0\r\n");
    EXPECT_EQ(mounter->header("DAV"), "1, 2");
    EXPECT_EQ(mounter->header("Content-Length"), "0");
}
