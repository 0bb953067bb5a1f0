#include "command.h"

#include <iostream>

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    return run_command_line(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr);
}
