#pragma once

#include "app/Settings.h"

#include <string>

namespace test
{

/// All settings, one a line, for comparing them as a whole.
std::string text_of(const Settings& settings);

} // namespace test
