#include "command.h"
#include "open_file_limit.h"

#include <iostream>

int main(int argc, char** argv)
{
    raise_open_file_limit();
    std::ios::sync_with_stdio(false);
    return run_command_line(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr);
}
