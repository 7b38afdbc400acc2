#pragma once

#include "gang/SerialNumber.h"

#include <QSet>
#include <QString>

namespace gang
{

/// Why the image cannot take a serial number in this place; empty if it can. An image reserves the
/// place with bytes that are all FF or all 00, so that a wrong address shows before it overwrites
/// code, or puts the number where nobody looks for it.
QString slot_problem(const QString& image, const NumberSlot& slot);

/// Writes a copy of the image with `bytes` in the slot's place, which slot_problem() found good.
/// `boundaries` are the addresses at which the tool cuts images. False if a file fails.
bool copy_with_number(const QString& image, const QString& copy, const NumberSlot& slot,
                      const QByteArray& bytes, const QSet<unsigned int>& boundaries);

} // namespace gang
