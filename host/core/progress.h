#ifndef PROGRESS_H
#define PROGRESS_H

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

/// What a busy dialog or a progress bar shows.
struct PROGRESS_SNAPSHOT {
    bool active = false;
    unsigned percent = 0; ///< 0 to 100; never falls within a run
    std::string file;     ///< the file that was worked on last; empty before the first
    std::uint64_t done = 0;
    std::uint64_t total = 0; ///< bytes; 0 as long as nobody knows
    std::chrono::milliseconds elapsed{0};
};

/// The progress of the work that runs now. The worker threads report, the interface polls; nothing waits.
/// Work may nest: a begin() within a run adds its total to that of the run, and the run ends with the
/// outermost finish(). Outputs written in parallel advance the same run. Any thread.
class PROGRESS
{
public:
    static PROGRESS& instance();

    /// Starts a run of `total` bytes, or adds to the one that runs.
    void begin(std::uint64_t total);
    /// Another `bytes` of `file` are done. Without a run nothing happens.
    void advance(std::uint64_t bytes, const std::string& file);
    /// Ends what the matching begin() started; without one nothing happens.
    void finish();

    PROGRESS_SNAPSHOT snapshot() const;

private:
    PROGRESS() = default;

    mutable std::mutex m_mutex;
    unsigned m_depth = 0;
    std::uint64_t m_done = 0;
    std::uint64_t m_total = 0;
    unsigned m_percent = 0;
    std::string m_file;
    std::chrono::steady_clock::time_point m_started;
    std::chrono::steady_clock::time_point m_finished;
};

/// A begin() with its finish(), whatever way the scope is left.
class PROGRESS_SCOPE
{
public:
    explicit PROGRESS_SCOPE(std::uint64_t total) { PROGRESS::instance().begin(total); }
    ~PROGRESS_SCOPE() { PROGRESS::instance().finish(); }
    PROGRESS_SCOPE(const PROGRESS_SCOPE&) = delete;
    PROGRESS_SCOPE& operator=(const PROGRESS_SCOPE&) = delete;
};

#endif
