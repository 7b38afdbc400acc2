#include "gang/Program.h"

int main(int argc, char** argv)
{
    return gang::run_program(argc, argv);
}
