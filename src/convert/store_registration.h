#pragma once

namespace tl::convert {

// Hands the store the conversions its duplicates are made with. Called once
// at start by each program.
void registerConversionsWithStore();

} // namespace tl::convert
