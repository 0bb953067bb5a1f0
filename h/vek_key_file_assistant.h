#ifndef VEK_KEY_FILE_ASSISTANT_H
#define VEK_KEY_FILE_ASSISTANT_H

#include <map>
#include <string>

/// Reader of key files (.key). Format: docs/formats/key-file.md.
class VEK_KEY_FILE_ASSISTANT
{
public:
    /// Reads the keys of the file at `path` (local encoding) into `keys`, from name to hexadecimal digits as
    /// the file has them; each key has key_bits / 4 digits. A file without keys is a good file.
    ///
    /// On false the problem has been reported through the message service, with the number of the bad line
    /// and never a part of a key, and `keys` is untouched. All copies that the reader makes are wiped; the
    /// values in `keys` are the caller's to wipe (wipe_keys).
    static bool parse_key_file(const std::string& path, unsigned key_bits,
                               std::map<std::string, std::string>& keys);

    /// Overwrites the values in memory and empties the map.
    static void wipe_keys(std::map<std::string, std::string>& keys);
};

#endif
