#include "help_pages.h"

#include <array>

namespace
{

constexpr std::array PAGES{
    HELP_PAGE{
        "Imagewright", "Overview",
        "<p>Imagewright makes programming files out of compiled FPGA bitstreams. Work from left to right:</p>"
        "<ol><li>Choose the <b>device family</b> and the <b>configuration mode</b>.</li>"
        "<li><b>Output Files</b>: give a directory and a name, and tick the files to make.</li>"
        "<li><b>Input Files</b>: add bitstreams and raw data. The first bitstream tells the device.</li>"
        "<li><b>Configuration Device</b>: when the outputs need a flash device, add it, add partitions, and "
        "give "
        "each its input.</li>"
        "<li>Save the setup, and press <b>Generate</b>.</li></ol>"
        "<p>A tab opens when what it needs is there.</p>"},
    HELP_PAGE{
        "Output Files", "Output files",
        "<p>Each row is a kind of file; the second column shows the name that will be written. Rows that "
        "cannot be "
        "made together with what is ticked turn grey. Rows below a ticked one are files that come with it. "
        "<b>Edit...</b> opens the options of the current row where it has some.</p>"},
    HELP_PAGE{"Input Files", "Input files",
              "<p>A bitstream holds one file, or several that are chained in devices which allow it. A file "
              "that has "
              "become unreadable, or is for an unknown device, turns red, and its tooltip says why. "
              "<b>Properties...</b> sets compression, encryption and signing of the current file.</p>"},
    HELP_PAGE{"Configuration Device", "Configuration device",
              "<p>A partition is placed by one of three modes. <b>Auto</b>: the lowest free place that fits. "
              "<b>Block</b>: from start to end as you say. <b>Start</b>: from the start as you say to where "
              "the content "
              "ends. Partitions that come with the device keep their place. The page of a partition is the "
              "number under "
              "which the device finds its image.</p>"},
    HELP_PAGE{"SOF File Properties: Bitstream Encryption - Key Entry", "Entering encryption keys",
              "<p>A key is a name and a row of hexadecimal digits, as many as the device's key length asks "
              "for. Enter the "
              "digits with the keyboard or with the keypad on the screen, which leaves no trace of key "
              "strokes, once more "
              "to confirm them.</p>"
              "<p>Keys live in the dialog alone: they are not stored in the setup, and never shown again. To "
              "use a key in "
              "another session, keep it in a key file: one key a line, its name and its digits, a # begins a "
              "comment. Make "
              "the file readable by yourself alone.</p>"},
    HELP_PAGE{"Generate", "Check and generation",
              "<p>Generate first checks the whole setup and lists everything that is wrong with it; nothing "
              "is written "
              "until nothing is wrong. A file gets its name only after it has been written, read back and "
              "compared with "
              "what it was made from; until then the file of an earlier run stays.</p>"},
};

} // namespace

std::span<const HELP_PAGE> help_pages()
{
    return PAGES;
}

const HELP_PAGE& find_help_page(std::string_view topic)
{
    for (const HELP_PAGE& page : PAGES) {
        if (page.topic == topic) {
            return page;
        }
    }
    return PAGES.front();
}
