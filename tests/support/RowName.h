#pragma once

#include <string>

namespace test
{

/// Names the tests over a table of rows by the rows' `name`.
inline constexpr auto row_name = [](const auto& info) -> std::string {
    return info.param.name;
};

} // namespace test
