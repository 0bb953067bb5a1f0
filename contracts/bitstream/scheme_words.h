#ifndef SCHEME_WORDS_H
#define SCHEME_WORDS_H

#include "pgmio_config_scheme.h"

#include <string>
#include <vector>

/// The configuration scheme of a command line word: the word of the mode in a setup (ASX4), the enumerator's
/// tail (DUAL_COMPRESSED_IMAGES) or the number, letter case ignored. False for any other text.
bool scheme_from_word(const std::string& word, PGMIO_CONFIG_SCHEME& scheme);

/// The word by which a scheme is shown; scheme_from_word takes it. "any" for the illegal scheme.
std::string scheme_to_word(PGMIO_CONFIG_SCHEME scheme);

/// All words that scheme_to_word gives, in the order of the schemes.
std::vector<std::string> scheme_words();

#endif
