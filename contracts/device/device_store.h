#ifndef DEVICE_STORE_H
#define DEVICE_STORE_H

#include "pgm_device.h"

#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

/// The records behind PGM_DEVICE_INDEX. The built-in ones are made once; a custom record, once met, is kept
/// for the life of the process, whether or not its directory is still in force.
class DEVICE_STORE
{
public:
    static DEVICE_STORE& instance();

    std::vector<const PGM_DEVICE*> list() const;
    void override_list(std::optional<std::vector<const PGM_DEVICE*>> list);
    const PGM_DEVICE* find_by_name(const std::string& name) const;
    const PGM_DEVICE* find_by_enum(DEV_DEVICE_ENUM device) const;

    /// The built-in device of a name as users or the database write it, letter case ignored; null when there
    /// is none.
    const PGM_DEVICE* find_built_in(const std::string& name) const;

    /// Puts the custom devices in force, in their order, and takes those before out. Their numbers are given
    /// here: a record equal to one met before keeps its number and its place in memory. No two names may be
    /// equal, nor one equal to that of a built-in device.
    void set_custom_devices(std::vector<PGM_DEVICE> devices);

private:
    DEVICE_STORE();

    std::vector<PGM_DEVICE> m_built_in;
    std::unordered_map<std::string, const PGM_DEVICE*> m_built_in_by_name; ///< by folded name
    std::unordered_map<std::uint32_t, const PGM_DEVICE*> m_built_in_by_number;

    mutable std::mutex m_mutex;      ///< guards what follows
    std::deque<PGM_DEVICE> m_custom; ///< all custom records met; at n the device DEV_DEVICE_CUSTOM_FIRST + n
    std::vector<const PGM_DEVICE*> m_custom_in_force;
    std::unordered_map<std::string, const PGM_DEVICE*> m_custom_by_name; ///< by folded name, those in force
    std::optional<std::vector<const PGM_DEVICE*>> m_override;
};

/// A device name with the letters a to z in upper case: names that differ in case alone are the same.
std::string fold_device_name(const std::string& name);

#endif
