#pragma once

#include "inspect/Problem.h"

#include <QString>

namespace gang
{

/// True if the problem keeps a gang from starting: errors, and the warnings that part of an image
/// may be missing, which no upload and no verification would notice.
bool prevents_start(const inspect::Problem& problem);

/// Returns a line about a problem; line_of() adds its place in `file`, as the user named it.
QString text_of(const inspect::Problem& problem);
QString line_of(const inspect::Problem& problem, const QString& file);

} // namespace gang
