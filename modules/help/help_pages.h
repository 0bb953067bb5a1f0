#ifndef HELP_PAGES_H
#define HELP_PAGES_H

#include <span>
#include <string_view>

/// One page of the help. Callers name it by its topic; the list shows its title.
struct HELP_PAGE {
    std::string_view topic;
    std::string_view title;
    std::string_view text; ///< the subset of HTML that QTextBrowser shows
};

/// All pages, the overview first.
std::span<const HELP_PAGE> help_pages();

/// The page of a topic; the overview when there is none.
const HELP_PAGE& find_help_page(std::string_view topic);

#endif
