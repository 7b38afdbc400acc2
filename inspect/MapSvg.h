#pragma once

#include "inspect/MemoryBars.h"

#include <QByteArray>
#include <QString>

namespace inspect
{

/// The memory map as a drawing: each bar to scale, with areas, pages, image, addresses and a
/// legend. It has its own background, and a dark one for viewers that prefer that.
QByteArray svg_of(const MemoryPicture& picture, const QString& title);

} // namespace inspect
