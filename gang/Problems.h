#pragma once

#include "inspect/Problem.h"

#include <QString>

namespace gang
{

/// Whether a gang does not start because of it: errors, and the warnings that part of an image may
/// be missing, which no upload and no verification would notice.
bool stops(const inspect::Problem& problem);

/// One line about a problem, and the same with its place in the file that the user knows by this
/// name.
QString text_of(const inspect::Problem& problem);
QString line_of(const inspect::Problem& problem, const QString& file);

} // namespace gang
