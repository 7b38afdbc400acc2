#include "app/RunSequence.h"

int main(int argc, char** argv)
{
    return run_sequence(argc, argv);
}
