#include "tests/support/precompiled.h"
