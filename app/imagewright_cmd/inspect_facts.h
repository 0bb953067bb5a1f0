#ifndef INSPECT_FACTS_H
#define INSPECT_FACTS_H

#include "command.h"
#include "inspect.h"

/// The facts of a file as the JSON document that `inspect --json` prints; docs/command-line.md describes it.
JSON bitstream_facts_json(const std::string& path, const BITSTREAM_FACTS& facts);
JSON stream_facts_json(const std::string& path, const STREAM_FACTS& facts);

/// A JSON document for people: one "name: value" a line, nested objects indented, arrays of plain values
/// joined.
std::string facts_text(const JSON& document);

#endif
