#include "fleet.h"

#include "fio_types.h"
#include "generate_run.h"
#include "gfpdb_mgr.h"
#include "message_printer.h"
#include "parallel.h"
#include "progress_bar.h"
#include "setup_reader.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <ostream>
#include <thread>

namespace
{

/// The flash database in force belongs to the process. Setups that want the same one run together; one that
/// wants another waits until they are done.
class DATABASE_TURN
{
public:
    void begin(const std::string& directory)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [&] { return m_users == 0 || m_directory == directory; });
        if (m_users == 0 && directory != GFPDB_MGR::get_db_custom_dir()) {
            GFPDB_MGR::set_db_custom_dir(directory);
        }
        m_directory = directory;
        ++m_users;
    }
    void end()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            --m_users;
        }
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_directory;
    unsigned m_users = 0;
};

class TURN_SCOPE
{
public:
    TURN_SCOPE(DATABASE_TURN& turn, const std::string& directory) : m_turn(turn) { m_turn.begin(directory); }
    ~TURN_SCOPE() { m_turn.end(); }
    TURN_SCOPE(const TURN_SCOPE&) = delete;
    TURN_SCOPE& operator=(const TURN_SCOPE&) = delete;

private:
    DATABASE_TURN& m_turn;
};

class FLEET
{
public:
    FLEET(const COMMAND_CONTEXT& context, const std::vector<std::string>& setups,
          const FLEET_OPTIONS& options)
        : m_context(context), m_setups(setups), m_options(options), m_results(setups.size())
    {
    }

    EXIT_CODE run()
    {
        const unsigned machine = std::max(std::thread::hardware_concurrency(), 1U);
        const unsigned jobs = m_options.jobs == 0 ? machine : m_options.jobs;
        const auto side_by_side =
            static_cast<unsigned>(std::min<std::size_t>(jobs, std::max<std::size_t>(m_setups.size(), 1)));
        {
            const PROGRESS_BAR bar(!m_context.quiet && !m_context.json, [this] { return progress(); });
            run_parallel(m_setups.size(), side_by_side, [&](std::size_t i) {
                run_one(i, std::max(jobs / side_by_side, 1U));
                ++m_done;
            });
        }
        JSON document = JSON::array();
        EXIT_CODE worst = EXIT_CODE_DONE;
        std::size_t done = 0;
        for (RESULT& result : m_results) {
            done += result.code == EXIT_CODE_DONE ? 1 : 0;
            worst = std::max(worst, result.code);
            document.push_back(std::move(result.json));
        }
        m_context.print(document, "Generated " + std::to_string(done) + " of " +
                                      std::to_string(m_setups.size()) + " setups.\n");
        return worst;
    }

private:
    struct RESULT {
        EXIT_CODE code = EXIT_CODE_DONE;
        JSON json;
    };

    std::string progress() const
    {
        const std::size_t done = m_done;
        const std::size_t all = m_setups.size();
        return all == 0 ? ""
                        : progress_line(static_cast<unsigned>(done * 100 / all),
                                        std::to_string(done) + " of " + std::to_string(all) + " setups");
    }

    void run_one(std::size_t index, unsigned threads)
    {
        const std::string& setup = m_setups[index];
        RESULT& result = m_results[index];
        std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
        std::string message;
        if (!read_setup_file(setup, document, message) || !m_options.passwords.apply(*document, message)) {
            fail(result, setup, EXIT_CODE_INPUT_UNREADABLE, message);
            return;
        }
        const TURN_SCOPE turn(m_turn, flash_database_of(*document));
        GENERATE_OPTIONS options;
        options.output_directory = m_options.output_directory;
        options.threads = threads;
        options.desk = m_options.desk;
        GENERATE_RUN run(*document, setup, options);
        if (run.check()) {
            if (!claim(setup, *document, message)) {
                fail(result, setup, EXIT_CODE_REFUSED, message);
                return;
            }
            run.generate(false);
        }
        result.code = run.exit_code();
        result.json = run.json();
        say(run.err(), run.out());
    }

    /// Each file belongs to one setup: of two that want it, one would be lost without a word.
    bool claim(const std::string& setup, const PGM_COMMON_XML_VEK_VEK& document, std::string& message)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::vector<OUTPUT_PLAN> plans = plan_files(SETUP_VIEW(document), m_options.output_directory);
        for (const OUTPUT_PLAN& plan : plans) {
            const auto other = m_owners.find(plan.path);
            if (other != m_owners.end() && other->second != setup) {
                message = setup + ": the output file " + plan.path + " is also that of " + other->second +
                          "; give one of them another name or directory.";
                return false;
            }
        }
        for (const OUTPUT_PLAN& plan : plans) {
            m_owners.emplace(plan.path, setup);
        }
        return true;
    }

    void fail(RESULT& result, const std::string& setup, EXIT_CODE code, const std::string& message)
    {
        result.code = code;
        result.json = JSON{{"setup", setup}, {"error", message}};
        say("imagewright-cmd: " + message + '\n', "");
    }

    /// The texts of one setup stand together.
    void say(const std::string& err, const std::string& out)
    {
        const std::lock_guard<std::mutex> lock(message_stream_mutex());
        clear_progress_line();
        m_context.err << printable(err);
        if (!m_context.json && !m_context.quiet) {
            // Both streams may be one terminal, where the bar is drawn again behind these lines.
            m_context.out << printable(out) << std::flush;
        }
    }

    const COMMAND_CONTEXT& m_context;
    const std::vector<std::string>& m_setups;
    const FLEET_OPTIONS& m_options;
    std::vector<RESULT> m_results;
    std::atomic<std::size_t> m_done{0};
    DATABASE_TURN m_turn;
    std::mutex m_mutex;
    std::map<std::string, std::string> m_owners; ///< path of an output to its setup
};

} // namespace

bool parse_shard(const std::string& text, SHARD& shard, std::string& message)
{
    const char* const end = text.data() + text.size();
    const auto index = std::from_chars(text.data(), end, shard.index);
    if (index.ec == std::errc() && index.ptr != end && *index.ptr == '/') {
        const auto count = std::from_chars(index.ptr + 1, end, shard.count);
        if (count.ec == std::errc() && count.ptr == end && shard.index >= 1 && shard.index <= shard.count) {
            return true;
        }
    }
    message = "\"" + text + "\" is no shard; write I/N with I from 1 to N, as in 2/5.";
    return false;
}

bool list_setups(const std::vector<std::string>& arguments, std::vector<std::string>& setups,
                 std::string& message)
{
    for (const std::string& argument : arguments) {
        std::error_code error;
        if (!std::filesystem::is_directory(argument, error)) {
            setups.push_back(argument);
            continue;
        }
        const std::size_t before = setups.size();
        std::filesystem::directory_iterator entry(argument, error);
        for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
            if (fio_get_file_type(entry->path().string()) == FIO_VEK_SETUP_FILE) {
                setups.push_back(entry->path().string());
            }
        }
        if (error) {
            message = argument + " cannot be read: " + error.message() + ".";
            return false;
        }
        if (setups.size() == before) {
            message = argument + " is a directory without a setup file (.vek); name another or a setup.";
            return false;
        }
    }
    std::sort(setups.begin(), setups.end());
    setups.erase(std::unique(setups.begin(), setups.end()), setups.end());
    return true;
}

std::vector<std::string> shard_of(const std::vector<std::string>& setups, const SHARD& shard)
{
    std::vector<std::string> part;
    for (std::size_t i = shard.index - 1; i < setups.size(); i += shard.count) {
        part.push_back(setups[i]);
    }
    return part;
}

EXIT_CODE generate_fleet(const COMMAND_CONTEXT& context, const std::vector<std::string>& setups,
                         const FLEET_OPTIONS& options)
{
    return FLEET(context, setups, options).run();
}
