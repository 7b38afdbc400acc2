#pragma once

#include "gang/Arguments.h"
#include "gang/Inputs.h"
#include "gang/NumberFile.h"

#include <QString>

namespace gang
{

/// Settings and inputs that all runs of a gang share.
struct Assignment {
    const Arguments& arguments;
    QString tool; ///< path of the zserial program
    const Inputs& inputs;
    NumberFile* numbers = nullptr; ///< null: no serial numbers
};

} // namespace gang
