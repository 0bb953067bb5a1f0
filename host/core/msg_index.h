#ifndef MSG_INDEX_H
#define MSG_INDEX_H

#include <cstdint>
#include <mutex>
#include <set>
#include <span>
#include <vector>

/// The message ids that the user does not want to see. Any thread.
class MSG_INDEX
{
public:
    static MSG_INDEX* get_default_index();

    bool is_suppressed(std::uint32_t id) const;
    void suppress(std::uint32_t id);
    void release(std::uint32_t id);
    void release_all();

private:
    mutable std::mutex m_mutex;
    std::set<std::uint32_t> m_suppressed;
};

/// How a registered message is posted.
enum MSG_POST_TYPE : std::uint8_t { MSG_POST_ERROR = 0, MSG_POST_INFORMATION = 1, MSG_POST_WARNING = 2 };

/// Makes message ids known to the process for as long as the registrar lives: two parallel tables, which
/// must outlive it. An id that two registrars give different types is an internal error.
class MSG_ID_REGISTRAR
{
public:
    MSG_ID_REGISTRAR(std::span<const std::uint32_t> ids, std::span<const MSG_POST_TYPE> types);
    ~MSG_ID_REGISTRAR();
    MSG_ID_REGISTRAR(const MSG_ID_REGISTRAR&) = delete;
    MSG_ID_REGISTRAR& operator=(const MSG_ID_REGISTRAR&) = delete;

    /// The type under which `id` is registered; false when it is not.
    static bool find(std::uint32_t id, MSG_POST_TYPE& type);
    /// All registered ids, in the order of their registration.
    static std::vector<std::uint32_t> registered_ids();

private:
    std::span<const std::uint32_t> m_ids;
};

#endif
