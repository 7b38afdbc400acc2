#pragma once

#include "inspect/Plan.h"
#include "inspect/TextPage.h"

#include <QJsonObject>

namespace inspect
{

/// With a list of every command when `with_commands`.
QJsonObject json_of(const Plan& plan, bool with_commands);

void print(TextPage& page, const Plan& plan);

} // namespace inspect
