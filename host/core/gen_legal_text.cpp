#include "gen_legal_text.h"

std::string gen_get_bitstream_encryption_legal_text()
{
    return "Encryption protects a bitstream only as well as its key is protected. Keep key files where no "
           "one "
           "else can read them, and program keys in an environment that you trust. A key that has been "
           "programmed into a device for good cannot be changed or read back: a lost key means a device that "
           "can no longer be updated. You are responsible for the safekeeping of your keys and for obeying "
           "the laws on the export and use of cryptography that apply to you. No design security feature "
           "gives absolute protection, and none is warranted.";
}
