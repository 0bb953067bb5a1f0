#include "commands.h"

std::vector<std::unique_ptr<COMMAND>> make_commands()
{
    std::vector<std::unique_ptr<COMMAND>> commands;
    commands.push_back(make_cmd_generate());
    commands.push_back(make_cmd_convert());
    commands.push_back(make_cmd_check());
    commands.push_back(make_cmd_show());
    commands.push_back(make_cmd_edit());
    commands.push_back(make_cmd_verify());
    commands.push_back(make_cmd_map());
    commands.push_back(make_cmd_inspect());
    commands.push_back(make_cmd_pack());
    commands.push_back(make_cmd_sample());
    commands.push_back(make_cmd_key());
    commands.push_back(make_cmd_firmware());
    commands.push_back(make_cmd_chain());
    commands.push_back(make_cmd_finalize());
    commands.push_back(make_cmd_list());
    commands.push_back(make_cmd_completion());
    return commands;
}
