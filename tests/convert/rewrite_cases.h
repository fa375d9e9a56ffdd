#pragma once

// Rows of a rewrite table's test: each text in, the text out, named.

#include "convert_test_support.h"

#include <vector>

namespace tltest {

template <typename Convert> void expectEachRow(const std::vector<TextCase> &cases, Convert convert)
{
    for (const TextCase &c : cases)
        EXPECT_EQ(convert(c.input), c.expected) << c.name;
}

} // namespace tltest
