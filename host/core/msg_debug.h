#ifndef MSG_DEBUG_H
#define MSG_DEBUG_H

#include "msg_base.h"

/// How much detail a debug message carries. Those up to the level in force are shown.
enum MSG_D_LEVEL : std::uint8_t { MSG_D_LEVEL_1 = 1, MSG_D_LEVEL_2 = 2, MSG_D_LEVEL_3 = 3 };

/// The setting with the level in force, a number; without it, 0, no debug output is shown.
inline constexpr const char* MSG_DEBUG_LEVEL_KEY = "MSG_DEBUG_LEVEL";

/// The level in force, read from the settings (cfg.h) once and then kept.
unsigned msg_debug_level();

/// Puts another level in force for the rest of the process.
void msg_set_debug_level(unsigned level);

/// A debug message. Its definition is a printf format.
class MSG_D final : public MSG_BASE
{
public:
    explicit MSG_D(MSG_REPORT* report) : MSG_BASE(MSG_SEVERITY::DEBUG, report) {}

    using MSG_BASE::fill_args;
    void fill_args(const char* format, va_list arguments) override;

    /// The subject takes the place of the symbolic id.
    virtual void set_subject(const char* subject) { set_symbolic_id(subject); }
    virtual void set_level(MSG_D_LEVEL level) { m_level = level; }
    const std::string& subject() const { return symbolic_id(); }
    MSG_D_LEVEL level() const { return m_level; }

    /// Reports only up to the level in force.
    int report(MSG_REPORT* destination) override;

private:
    MSG_D_LEVEL m_level = MSG_D_LEVEL_2;
};

/// Writes a debug line at once, without an object, when `level` is in force.
void msg_local_vdebug(const char* subject, MSG_D_LEVEL level, const char* format, va_list arguments);

#endif
