#pragma once

#include "inspect/ImageWatch.h"

namespace inspect
{

/// What text between the records of a file is about: the first line of each kind of problem.
std::vector<Problem> examine_gaps(const QString& path, const std::vector<ImageWatch::Gap>& gaps);

} // namespace inspect
