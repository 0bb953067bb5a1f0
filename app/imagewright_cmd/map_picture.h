#ifndef MAP_PICTURE_H
#define MAP_PICTURE_H

#include "flash_layouts.h"

#include <string>
#include <vector>

/// The layouts as an SVG 1.1 picture, one flash device below the other.
///
/// Each device is a bar that is true to scale over its whole height: a rectangle of the class "partition",
/// "reserved" or "generated" for each partition, "gap" for what none has, and "input" for what an input
/// fills; each carries its range in the attributes data-start and data-end. Labels stand in a column beside
/// the bar, moved apart where partitions are small, with a line to the place that they are about.
std::string map_picture(const std::vector<FLASH_LAYOUT>& layouts);

/// "64 KiB", "1.5 MiB", "300 bytes": for people, with one decimal at most.
std::string size_text(std::uint64_t bytes);

#endif
