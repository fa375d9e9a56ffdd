#pragma once

namespace tl::importers {

// Hands the store the conversions of outlines and mail messages, so
// documents of those kinds show rendered and compile. Called once at start
// by each program.
void registerImportersWithStore();

} // namespace tl::importers
