#ifndef BRIM_MANAGER_H
#define BRIM_MANAGER_H

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

/// The variables of a project, each under its name in the project file.
enum BRIM_VARIABLE_TYPE_ENUM : std::uint32_t {
    BRIM_VARIABLE_DEVICE_NAME = 379,  ///< "DEVICE"
    BRIM_VARIABLE_FAMILY_NAME = 380,  ///< "FAMILY": the display name of the device family
    BRIM_VARIABLE_PROJECT_NAME = 381, ///< "NAME"
};

/// Read locks on the open revision of a project: while one is held, the values do not change.
class BRIM_REVISION_MANAGER
{
public:
    virtual ~BRIM_REVISION_MANAGER() = default;
    bool is_read_locked() const;
    /// Takes one more lock. `reload`: the first lock reads the project file anew. False when no project is
    /// open or its file cannot be read any more; then no lock is taken.
    bool read_lock(bool reload);
    /// Gives one lock back; without a lock nothing happens.
    void read_unlock();

protected:
    virtual bool is_open() const = 0;
    virtual bool load() = 0;
    void drop_locks();
    mutable std::recursive_mutex m_mutex;

private:
    unsigned m_read_locks = 0;
};

/// The project that the host has open. A project file (*.brim) is text: lines "NAME = value", comments after
/// "#" at the start of a line, blank lines. A name may be narrowed: "entity.FAMILY" holds for one entity.
class BRIM_MANAGER final : public BRIM_REVISION_MANAGER
{
public:
    /// The one manager, never null. When it is first asked for, the project that the environment variable
    /// IMAGEWRIGHT_PROJECT names is opened; a warning says why it cannot be.
    static BRIM_MANAGER* get_brim_manager();

    bool is_project_open() const;

    /// Opens a project in place of the one open now. False with a sentence in `message`, and no project open,
    /// when the file cannot be read or has a line that is neither value, comment nor blank.
    bool open_project(const std::string& path, std::string& message);
    void close_project();
    std::string project_path() const;

    /// The value under exactly this name; false when the project has none.
    bool find_value(const std::string& name, std::string& value) const;

private:
    BRIM_MANAGER() = default;
    bool is_open() const override;
    bool load() override;
    bool read_file(const std::string& path, std::string& message);

    std::string m_path;
    std::map<std::string, std::string> m_values;
};

/// A value of the project, or an empty text. The parts that are neither null nor empty narrow the name,
/// "entity.instance.section.tag.NAME"; where the project has no such value, the plain name is taken.
std::string brim_get_value(BRIM_VARIABLE_TYPE_ENUM variable, const BRIM_MANAGER* manager, const char* entity,
                           const char* instance, const char* section, const char* tag);

#endif
