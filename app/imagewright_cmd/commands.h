#ifndef COMMANDS_H
#define COMMANDS_H

#include "command.h"

std::unique_ptr<COMMAND> make_cmd_generate();
std::unique_ptr<COMMAND> make_cmd_check();
std::unique_ptr<COMMAND> make_cmd_show();
std::unique_ptr<COMMAND> make_cmd_map();
std::unique_ptr<COMMAND> make_cmd_verify();
std::unique_ptr<COMMAND> make_cmd_convert();
std::unique_ptr<COMMAND> make_cmd_edit();
std::unique_ptr<COMMAND> make_cmd_pack();
std::unique_ptr<COMMAND> make_cmd_sample();
std::unique_ptr<COMMAND> make_cmd_key();
std::unique_ptr<COMMAND> make_cmd_firmware();
std::unique_ptr<COMMAND> make_cmd_chain();
std::unique_ptr<COMMAND> make_cmd_finalize();
std::unique_ptr<COMMAND> make_cmd_inspect();
std::unique_ptr<COMMAND> make_cmd_list();
std::unique_ptr<COMMAND> make_cmd_completion();

#endif
