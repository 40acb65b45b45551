#include "app/program.h"

int main(int argc, char **argv)
{
    return zelvaro::runProgram(argc, argv);
}
