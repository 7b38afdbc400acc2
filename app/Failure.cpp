#include "app/Failure.h"

#include "app/Console.h"
#include "app/UsageText.h"

#include <cstdlib>

void refuse_and_exit(const Refusal& refusal)
{
    out << refusal.message;
    if (refusal.with_usage) {
        print_syntax();
    }
    std::exit(EXIT_FAILURE);
}

void fail(const QString& message)
{
    refuse_and_exit({message, false});
}
