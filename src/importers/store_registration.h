#pragma once

namespace tl::importers {

// Hands the store the conversions of outlines, mail messages and web
// archives, so documents of those kinds show rendered, compile and
// duplicate. Called once at start by each program.
void registerImportersWithStore();

} // namespace tl::importers
