#ifndef SCHEME_WORDS_H
#define SCHEME_WORDS_H

#include "pgmio_config_scheme.h"

#include <string>
#include <vector>

/// The word of a configuration scheme on the command line: that of the setup document for the modes on offer
/// ("ASX4"), and a word of its own for each content of an on-chip flash ("SINGLE", "DUAL_COMPRESSED").
std::string scheme_word(PGMIO_CONFIG_SCHEME scheme);

/// The inverse, letter case ignored; false when no scheme has the word.
bool find_scheme(const std::string& word, PGMIO_CONFIG_SCHEME& scheme);

/// All words, for help and refusals.
std::vector<std::string> scheme_words();

#endif
