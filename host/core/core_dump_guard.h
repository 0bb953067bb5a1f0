#ifndef CORE_DUMP_GUARD_H
#define CORE_DUMP_GUARD_H

/// While one lives, a crash of the process writes no core dump, and no other process of the same user can
/// look into its memory: for the time in which secrets are held. Any number may live at once; with the last
/// one the process is as it was. In builds for debugging it does nothing. Any thread.
class CORE_DUMP_GUARD
{
public:
    CORE_DUMP_GUARD();
    ~CORE_DUMP_GUARD();
    CORE_DUMP_GUARD(const CORE_DUMP_GUARD&) = delete;
    CORE_DUMP_GUARD& operator=(const CORE_DUMP_GUARD&) = delete;
};

#endif
