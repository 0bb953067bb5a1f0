#ifndef EXIT_CODE_H
#define EXIT_CODE_H

/// What the process returns; scripts rely on these numbers.
enum EXIT_CODE : int {
    EXIT_CODE_DONE = 0,    ///< done, or nothing to object to
    EXIT_CODE_REFUSED = 1, ///< the check refuses the setup, or a file failed its verification
    EXIT_CODE_USAGE = 2,   ///< the command line is wrong
    EXIT_CODE_INPUT_UNREADABLE =
        3, ///< a file named on the command line cannot be read or is not what it should be
    EXIT_CODE_OUTPUT_NOT_WRITTEN = 4 ///< an output could not be written
};

#endif
