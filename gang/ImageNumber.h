#pragma once

#include "gang/SerialNumber.h"

#include <QSet>
#include <QString>

namespace gang
{

/// Returns why the image cannot take a serial number in this slot; empty if it can. The image must
/// reserve the slot with bytes that are all FF or all 00: this detects a wrong address before a
/// number overwrites code or ends up where nobody looks for it.
QString slot_problem(const QString& image, const NumberSlot& slot);

/// Writes a copy of the image with `bytes` in the slot, for which slot_problem() must be empty.
/// `boundaries` are the byte addresses at which zserial splits images. False if a file cannot be
/// read or written.
bool copy_with_number(const QString& image, const QString& copy, const NumberSlot& slot,
                      const QByteArray& bytes, const QSet<unsigned int>& boundaries);

} // namespace gang
