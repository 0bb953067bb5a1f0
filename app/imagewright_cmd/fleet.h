#ifndef FLEET_H
#define FLEET_H

#include "command.h"
#include "setup_argument.h"
#include "signing_desk.h"

#include <string>
#include <vector>

/// What a run over many setups does.
struct FLEET_OPTIONS {
    std::string output_directory; ///< as for a single setup
    PASSWORD_OPTION passwords;    ///< for every setup
    SIGNING_DESK desk;            ///< for every setup
    unsigned jobs = 0; ///< at most so many setups and files at once; 0 for as many as the machine runs
};

/// Which part of a list a run takes: every `count`th entry from `index` (from 1) on.
struct SHARD {
    unsigned index = 1;
    unsigned count = 1;
};

/// "2/5". False with a sentence when the text is no shard.
bool parse_shard(const std::string& text, SHARD& shard, std::string& message);

/// The setups that arguments name, sorted by their bytes and each once: files as they are, and for a
/// directory the setup files that lie in it. False with a sentence when a directory cannot be read or has
/// none.
bool list_setups(const std::vector<std::string>& arguments, std::vector<std::string>& setups,
                 std::string& message);

/// What a shard has of a list. The shards of one list are disjoint, and together they are the list.
std::vector<std::string> shard_of(const std::vector<std::string>& setups, const SHARD& shard);

/// Generates all setups, several at once, and goes on behind one that fails. Two setups that would write one
/// file are refused. The document is an array with an entry for each setup in the order of the list. The
/// worst exit code of all.
EXIT_CODE generate_fleet(const COMMAND_CONTEXT& context, const std::vector<std::string>& setups,
                         const FLEET_OPTIONS& options);

#endif
