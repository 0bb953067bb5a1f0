#ifndef OPEN_FILE_LIMIT_H
#define OPEN_FILE_LIMIT_H

/// Lets the process open as many files as the system allows it at most.
///
/// Each raw file of a setup stays open from the layout to the last byte written, so that what was laid out is
/// what is written even if somebody replaces the file meanwhile. A setup may have ten thousand of them, and
/// the limit that a shell passes on is 1024 as a rule. To be called at the start, before there are threads.
void raise_open_file_limit();

#endif
