#include "msg_index.h"

#include "msg_internal_error.h"

#include <algorithm>

namespace
{

struct REGISTERED_ID {
    std::uint32_t id;
    MSG_POST_TYPE type;
    unsigned registrars;
};

struct ID_REGISTRY {
    std::mutex mutex;
    std::vector<REGISTERED_ID> ids;

    std::vector<REGISTERED_ID>::iterator find(std::uint32_t id)
    {
        return std::find_if(ids.begin(), ids.end(), [id](const REGISTERED_ID& row) { return row.id == id; });
    }
};

ID_REGISTRY& registry()
{
    // Never destroyed: registrars of other libraries go later than the statics of this one.
    static auto* const instance = new ID_REGISTRY;
    return *instance;
}

} // namespace

MSG_INDEX* MSG_INDEX::get_default_index()
{
    static auto* const index = new MSG_INDEX;
    return index;
}

bool MSG_INDEX::is_suppressed(std::uint32_t id) const
{
    const std::lock_guard lock(m_mutex);
    return m_suppressed.contains(id);
}

void MSG_INDEX::suppress(std::uint32_t id)
{
    const std::lock_guard lock(m_mutex);
    m_suppressed.insert(id);
}

void MSG_INDEX::release(std::uint32_t id)
{
    const std::lock_guard lock(m_mutex);
    m_suppressed.erase(id);
}

void MSG_INDEX::release_all()
{
    const std::lock_guard lock(m_mutex);
    m_suppressed.clear();
}

MSG_ID_REGISTRAR::MSG_ID_REGISTRAR(std::span<const std::uint32_t> ids, std::span<const MSG_POST_TYPE> types)
    : m_ids(ids)
{
    if (ids.size() != types.size()) {
        MSG_INTERNAL_ERROR::report("ids.size() == types.size()", "MSG", __FILE__, __LINE__);
    }
    const std::lock_guard lock(registry().mutex);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (const auto row = registry().find(ids[i]); row != registry().ids.end() && row->type != types[i]) {
            MSG_INTERNAL_ERROR::report_varg("MSG", __FILE__, __LINE__,
                                            "message id %u is registered with one type", ids[i]);
        }
    }
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (const auto row = registry().find(ids[i]); row != registry().ids.end()) {
            ++row->registrars;
        } else {
            registry().ids.push_back({ids[i], types[i], 1});
        }
    }
}

MSG_ID_REGISTRAR::~MSG_ID_REGISTRAR()
{
    const std::lock_guard lock(registry().mutex);
    for (const std::uint32_t id : m_ids) {
        if (const auto row = registry().find(id); row != registry().ids.end() && --row->registrars == 0) {
            registry().ids.erase(row);
        }
    }
}

bool MSG_ID_REGISTRAR::find(std::uint32_t id, MSG_POST_TYPE& type)
{
    const std::lock_guard lock(registry().mutex);
    const auto row = registry().find(id);
    if (row == registry().ids.end()) {
        return false;
    }
    type = row->type;
    return true;
}

std::vector<std::uint32_t> MSG_ID_REGISTRAR::registered_ids()
{
    const std::lock_guard lock(registry().mutex);
    std::vector<std::uint32_t> ids;
    for (const REGISTERED_ID& row : registry().ids) {
        ids.push_back(row.id);
    }
    return ids;
}
