#pragma once

#include "app/Settings.h"

#include <string>

/// All settings, one a line, for comparing them as a whole.
std::string text_of(const Settings& settings);
