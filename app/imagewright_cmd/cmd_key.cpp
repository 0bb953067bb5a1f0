#include "arguments.h"
#include "command.h"
#include "commands.h"
#include "core_dump_guard.h"
#include "key_making.h"
#include "pgm_device.h"

namespace
{

/// key: makes AES key files and encryption lock files from keys of a key file.
class CMD_KEY final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command =
            application.add_subcommand("key", "Make an AES key file or an encryption lock file");
        command->add_option("kind", m_kind, "aes for an AES key file, lock for an encryption lock file")
            ->type_name("KIND")
            ->check(CLI::IsMember({"aes", "lock"}))
            ->required();
        command->add_option("--key-file", m_key.key_file, "Key file with the key (.key)")
            ->type_name("FILE")
            ->required();
        command->add_option("--key", m_key.name, "Name of the key in the key file")
            ->type_name("NAME")
            ->required();
        command->add_option("--device", m_device, "lock: device that has the key (see list devices)")
            ->type_name("NAME");
        command->add_flag("--non-volatile", m_non_volatile, "lock: the device keeps the key in fuses");
        command
            ->add_option("--password-file", m_password_file,
                         "aes: file whose first line is the password for the new file")
            ->type_name("FILE");
        command->add_option("-o,--output", m_output, "New file (.aek, .elk); none is ever overwritten")
            ->type_name("FILE")
            ->required();
        command->footer("Examples:\n"
                        "  imagewright-cmd key aes --key-file board.key --key field --password-file pass.txt "
                        "-o field.aek\n"
                        "  imagewright-cmd key lock --key-file board.key --key field --device CA3M050 -o "
                        "field.elk");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::string message;
        if (!options_fit(message)) {
            context.fail(message);
            return EXIT_CODE_USAGE;
        }
        const CORE_DUMP_GUARD guard;
        const bool made = m_kind == "aes"
                              ? make_aes_key_file(m_key, m_password_file, m_output, message)
                              : make_lock_file(m_key, m_device, m_non_volatile, m_output, message);
        if (!made) {
            context.fail(message);
            return failure_code(message, m_output);
        }
        report_written_file(context, m_output);
        return EXIT_CODE_DONE;
    }

private:
    bool options_fit(std::string& message) const
    {
        const bool for_lock = m_kind == "lock";
        if (for_lock && PGM_DEVICE_INDEX::find_by_name(m_device) == nullptr) {
            message = m_device.empty() ? "A lock file is for a device; name it behind --device."
                                       : "\"" + m_device +
                                             "\" is not in the device database; imagewright-cmd list devices "
                                             "shows what is.";
        } else if (for_lock && !m_password_file.empty()) {
            message = "A lock file is under no password; leave --password-file out.";
        } else if (!for_lock && (!m_device.empty() || m_non_volatile)) {
            message = "An AES key file is for no single device; leave --device and --non-volatile out.";
        }
        return message.empty();
    }

    std::string m_kind;
    NAMED_KEY m_key;
    std::string m_device;
    bool m_non_volatile = false;
    std::string m_password_file;
    std::string m_output;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_key()
{
    return std::make_unique<CMD_KEY>();
}
