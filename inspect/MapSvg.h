#pragma once

#include "inspect/MemoryBars.h"

#include <QByteArray>
#include <QString>

namespace inspect
{

/// The picture as a drawing: each bar to scale, with areas, pages, image, addresses and a legend.
/// It brings its own background, and another one where the viewer prefers dark ones.
QByteArray svg_of(const MemoryPicture& picture, const QString& title);

} // namespace inspect
