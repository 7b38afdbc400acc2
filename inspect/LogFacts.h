#pragma once

#include "inspect/LogSummary.h"
#include "inspect/TextPage.h"

#include <QJsonObject>

namespace inspect
{

/// A log in numbers. Byte addresses need a profile, which may be null.
QJsonObject json_of(const LogSummary& log, const Profile* profile);

/// Each frame, the runs, what they add up to, and what no log can show.
void print(TextPage& page, const LogSummary& log, const Profile* profile);

} // namespace inspect
