#include "help_pages.h"

#include "nivo_help.h"

#include <array>

namespace
{

constexpr std::array PAGES{
    HELP_PAGE{
        NIVO_HELP_OVERVIEW, "Overview",
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
        NIVO_HELP_OUTPUT_FILES, "Output files",
        "<p>Each row is a kind of file; the second column shows the name that will be written. Rows that "
        "cannot be "
        "made together with what is ticked turn grey. Rows below a ticked one are files that come with it. "
        "<b>Edit...</b> opens the options of the current row where it has some.</p>"},
    HELP_PAGE{NIVO_HELP_OUTPUT_FILE_PROPERTIES, "Options of an output file",
              "<p><b>Hexadecimal file</b>: the address of the first byte, and whether addresses count up or "
              "down from there.</p>"
              "<p><b>Raw programming data</b>: the whole device, or, with relative addressing, from the "
              "first used byte to the last; the start address leaves out what lies before it. The bit order "
              "can be turned round for devices that shift the other way.</p>"
              "<p><b>Serial vector file</b>: what the program does, the clock frequency such as 10 MHz, and "
              "the supply voltage.</p>"},
    HELP_PAGE{NIVO_HELP_INPUT_FILES, "Input files",
              "<p>A bitstream holds one file, or several that are chained in devices which allow it. A file "
              "that has "
              "become unreadable, or is for an unknown device, turns red, and its tooltip says why. "
              "<b>Properties...</b> sets compression, encryption and signing of the current file.</p>"},
    HELP_PAGE{NIVO_HELP_INPUT_FILE_PROPERTIES, "Properties of an input file",
              "<p>Only what the device family, the kind of file and the chosen outputs allow can be set; the "
              "rest is grey or hidden. A description of the current row stands below the list.</p>"
              "<p><b>Compression</b> makes the file smaller and excludes enhanced compression. "
              "<b>Encryption</b> opens the rows of keys and key files. <b>Signing</b> asks for a private key "
              "in a PEM file. Settings that files of one session share are taken over by all of them.</p>"},
    HELP_PAGE{NIVO_HELP_CONFIG_DEVICE, "Configuration device",
              "<p>A partition is placed by one of three modes. <b>Auto</b>: the lowest free place that fits. "
              "<b>Block</b>: from start to end as you say. <b>Start</b>: from the start as you say to where "
              "the content "
              "ends. Partitions that come with the device keep their place. The page of a partition is the "
              "number under "
              "which the device finds its image.</p>"},
    HELP_PAGE{
        NIVO_HELP_PARTITION, "Partitions",
        "<p>Give the partition a name of its own, the input that goes into it, and, for a bitstream, the "
        "page under which the device finds it.</p>"
        "<p>Addresses are hexadecimal. The end is the last byte of the partition. Partitions with addresses "
        "of their own are placed first; the others take the lowest free places in the order of the list. "
        "What would overlap, leave the device or not hold its content is told by <b>Generate</b>.</p>"
        "<p>The PUF partition takes the data of the device and the wrapped key, one behind the other.</p>"},
    HELP_PAGE{NIVO_HELP_FLASH_DEVICES, "Flash devices",
              "<p>Search by a part of the name or by the JEDEC id, such as <b>EF 40 18</b>, and by capacity. "
              "Only devices that can configure the FPGA in the present mode are listed.</p>"
              "<p>Devices of your own stand in a directory, one file each; <b>Directory...</b> chooses it "
              "and the setup remembers it, <b>Add...</b> writes a file into it, and <b>Remove</b> takes one "
              "out of it.</p>"},
    HELP_PAGE{NIVO_HELP_DEVICE_OPTIONS, "Options of on-chip flash",
              "<p>The device takes these options from the image that is written into its flash: how fast it "
              "powers on, what its pins do meanwhile, the watchdog, and where it falls back to when an image "
              "does not work. What a bitstream file brings along is shown first and can be changed.</p>"
              "<p>The user flash memory is filled from a sector of the image or from a file.</p>"},
    HELP_PAGE{NIVO_HELP_KEY_ENTRY, "Entering encryption keys",
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
    HELP_PAGE{NIVO_HELP_GENERATE, "Check and generation",
              "<p>Generate first checks the whole setup and lists everything that is wrong with it; nothing "
              "is written "
              "until nothing is wrong. A file gets its name only after it has been written, read back and "
              "compared with "
              "what it was made from; until then the file of an earlier run stays.</p>"},
    HELP_PAGE{NIVO_HELP_MESSAGES, "Messages",
              "<p>What the program has to say is collected here with its time and number. Choose the kinds "
              "to be seen, copy the selected lines, or clear the list; a double click shows a long message "
              "whole. The View menu shows and hides the pane, and an error brings it up by itself.</p>"},
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
