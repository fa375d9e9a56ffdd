#pragma once

struct sqlite3;

// The index's words are folded and joined by blanks before they are stored,
// and the terms of a query alike: its tokenizer only splits at blanks, with
// nothing to fold or copy.
namespace tl::search::detail {

// Makes the tokenizer "blank" known to the connection; false when it could not.
bool registerBlankTokenizer(sqlite3 *db);

} // namespace tl::search::detail
