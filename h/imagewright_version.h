#ifndef IMAGEWRIGHT_VERSION_H
#define IMAGEWRIGHT_VERSION_H

/// The version that the programs print; the same as in the project line of the root CMakeLists.txt.
inline constexpr const char* IMAGEWRIGHT_VERSION = "0.1.0";

#endif
