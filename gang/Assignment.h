#pragma once

#include "gang/Arguments.h"
#include "gang/Inputs.h"
#include "gang/NumberFile.h"

#include <QString>

namespace gang
{

/// What all runs of a gang have in common.
struct Assignment {
    const Arguments& arguments;
    QString tool; ///< the program to run
    const Inputs& inputs;
    NumberFile* numbers = nullptr; ///< null: no serial numbers
};

} // namespace gang
