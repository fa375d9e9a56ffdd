#pragma once

#include "convert/restarting_loop.h"

// The steps of the way to Markdown that repeat "as long as a match is
// found", each with the replacement of one match.
namespace tl::convert::detail {

const RestartingLoop &paragraphLoop();
// The innermost quotation first.
const RestartingLoop &quotationLoop();
// The innermost list first, its items numbered or dashed, sub-lists indented.
const RestartingLoop &listLoop();
const RestartingLoop &headingLoop();
const RestartingLoop &tableLoop();
const RestartingLoop &linkLoop();
const RestartingLoop &imageLoop();
const RestartingLoop &definitionListLoop();

} // namespace tl::convert::detail
