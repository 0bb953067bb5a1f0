#ifndef PRECHECK_H
#define PRECHECK_H

#include <string>

struct PGM_DEVICE;

/// Says whether an input file is usable, at the cost of one open and one small read, for callers that ask at
/// every repaint. Nothing but a regular file is opened, so the call never blocks.
///
/// A bitstream must have a sound header (structure, its checksums, all sections within the file) and be for a
/// device of the device index; `*device` and `device_name` are then set. With `must_be_bitstream` false a
/// file with neither a bitstream's content nor its extension counts as raw data, which passes when it can be
/// read;
/// `*device` is then null. On false `message` is a whole sentence for the user that begins with the file's
/// name, such as "top.sof is not a bitstream file."; `device_name` still holds the name of an unknown device.
bool precheck_bitstream_file(const std::string& path, bool must_be_bitstream, const PGM_DEVICE** device,
                             std::string& device_name, std::string& message);

#endif
