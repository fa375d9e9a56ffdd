#include "search/blank_tokenizer.h"

#include <cstring>
#include <sqlite3.h>

namespace tl::search::detail {

namespace {

// The tokenizer keeps no state: every instance is this one.
char instance;

int create(void *, const char **, int, Fts5Tokenizer **tokenizer)
{
    *tokenizer = reinterpret_cast<Fts5Tokenizer *>(&instance);
    return SQLITE_OK;
}

void destroy(Fts5Tokenizer *)
{
}

int tokenize(Fts5Tokenizer *, void *context, int, const char *text, int size,
             int (*token)(void *, int, const char *, int, int, int))
{
    for (int start = 0; start < size;) {
        const void *const blank = std::memchr(text + start, ' ', size_t(size - start));
        const int end = blank ? int(static_cast<const char *>(blank) - text) : size;
        if (end > start) {
            if (const int code = token(context, 0, text + start, end - start, start, end);
                code != SQLITE_OK)
                return code;
        }
        start = end + 1;
    }
    return SQLITE_OK;
}

fts5_api *fts5Of(sqlite3 *db)
{
    fts5_api *api = nullptr;
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(db, "SELECT fts5(?1)", -1, &statement, nullptr) == SQLITE_OK) {
        sqlite3_bind_pointer(statement, 1, static_cast<void *>(&api), "fts5_api_ptr", nullptr);
        sqlite3_step(statement);
    }
    sqlite3_finalize(statement);
    return api;
}

} // namespace

bool registerBlankTokenizer(sqlite3 *db)
{
    fts5_api *const api = fts5Of(db);
    static fts5_tokenizer blank{create, destroy, tokenize};
    return api && api->xCreateTokenizer(api, "blank", nullptr, &blank, nullptr) == SQLITE_OK;
}

} // namespace tl::search::detail
