#include "brim_manager.h"

#include "msg_internal_error.h"
#include "msg_types.h"
#include "small_text_file.h"

#include <cstdlib>
#include <sstream>

bool BRIM_REVISION_MANAGER::is_read_locked() const
{
    const std::lock_guard lock(m_mutex);
    return m_read_locks != 0;
}

bool BRIM_REVISION_MANAGER::read_lock(bool reload)
{
    const std::lock_guard lock(m_mutex);
    if (!is_open() || (reload && m_read_locks == 0 && !load())) {
        return false;
    }
    ++m_read_locks;
    return true;
}

void BRIM_REVISION_MANAGER::read_unlock()
{
    const std::lock_guard lock(m_mutex);
    if (m_read_locks != 0) {
        --m_read_locks;
    }
}

void BRIM_REVISION_MANAGER::drop_locks()
{
    m_read_locks = 0;
}

BRIM_MANAGER* BRIM_MANAGER::get_brim_manager()
{
    static auto* const manager = [] {
        auto* const created = new BRIM_MANAGER;
        if (const char* const path = std::getenv("IMAGEWRIGHT_PROJECT"); path != nullptr) {
            std::string message;
            if (!created->open_project(path, message)) {
                MSG_W warning(nullptr);
                warning.fill_args("%1!s!/WBRIM_PROJECT_UNREADABLE", message.c_str());
                warning.report(nullptr);
            }
        }
        return created;
    }();
    return manager;
}

bool BRIM_MANAGER::is_project_open() const
{
    const std::lock_guard lock(m_mutex);
    return is_open();
}

bool BRIM_MANAGER::is_open() const
{
    return !m_path.empty();
}

bool BRIM_MANAGER::open_project(const std::string& path, std::string& message)
{
    const std::lock_guard lock(m_mutex);
    close_project();
    if (!read_file(path, message)) {
        return false;
    }
    m_path = path;
    return true;
}

void BRIM_MANAGER::close_project()
{
    const std::lock_guard lock(m_mutex);
    m_path.clear();
    m_values.clear();
    drop_locks();
}

std::string BRIM_MANAGER::project_path() const
{
    const std::lock_guard lock(m_mutex);
    return m_path;
}

bool BRIM_MANAGER::find_value(const std::string& name, std::string& value) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_values.find(name);
    if (found == m_values.end()) {
        return false;
    }
    value = found->second;
    return true;
}

bool BRIM_MANAGER::load()
{
    std::string message;
    return read_file(m_path, message);
}

bool BRIM_MANAGER::read_file(const std::string& path, std::string& message)
{
    std::string text;
    bool missing = false;
    if (!read_small_text_file(path, text, message, missing)) {
        return false;
    }
    std::map<std::string, std::string> values;
    std::istringstream lines(text);
    std::string line;
    for (unsigned number = 1; std::getline(lines, line); ++number) {
        const std::string content = trimmed(line);
        if (content.empty() || content.front() == '#') {
            continue;
        }
        const auto divider = content.find('=');
        const std::string name = trimmed(content.substr(0, divider));
        if (divider == std::string::npos || name.empty()) {
            message = path + ", line " + std::to_string(number) +
                      ": a project file has lines of the form NAME = value; correct this line.";
            return false;
        }
        values[name] = trimmed(content.substr(divider + 1));
    }
    m_values = std::move(values);
    return true;
}

std::string brim_get_value(BRIM_VARIABLE_TYPE_ENUM variable, const BRIM_MANAGER* manager, const char* entity,
                           const char* instance, const char* section, const char* tag)
{
    if (manager == nullptr) {
        MSG_INTERNAL_ERROR::report("manager != nullptr", "BRIM", __FILE__, __LINE__);
    }
    const auto name = [variable]() -> std::string {
        switch (variable) {
        case BRIM_VARIABLE_DEVICE_NAME:
            return "DEVICE";
        case BRIM_VARIABLE_FAMILY_NAME:
            return "FAMILY";
        case BRIM_VARIABLE_PROJECT_NAME:
            return "NAME";
        }
        MSG_INTERNAL_ERROR::report("variable", "BRIM", __FILE__, __LINE__);
    }();
    std::string narrowed;
    for (const char* const part : {entity, instance, section, tag}) {
        if (part != nullptr && *part != '\0') {
            narrowed += std::string(part) + ".";
        }
    }
    std::string value;
    if (!manager->find_value(narrowed + name, value)) {
        manager->find_value(name, value);
    }
    return value;
}
