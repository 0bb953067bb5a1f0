#include "map_picture.h"

#include "partition_layout.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace
{

constexpr double WIDTH = 860;
constexpr double MARGIN = 24;
constexpr double TITLE_HEIGHT = 44;
constexpr double BAR_LEFT = 120;
constexpr double BAR_WIDTH = 150;
constexpr double INPUT_LEFT = BAR_LEFT + 12;
constexpr double INPUT_WIDTH = BAR_WIDTH - 24;
constexpr double LABEL_LEFT = 330;
constexpr double LABEL_HEIGHT = 34;
constexpr double GAP_LABEL_HEIGHT = 20;
constexpr double SMALLEST_BAR = 420;
constexpr double LEGEND_HEIGHT = 40;
constexpr std::size_t LONGEST_LINE = 72;
constexpr unsigned AXIS_STEPS = 8;

constexpr const char* STYLE =
    "text { font-family: 'DejaVu Sans', Verdana, sans-serif; font-size: 12px; fill: #1f2933; }\n"
    ".title { font-size: 15px; font-weight: bold; }\n"
    ".name { font-weight: bold; }\n"
    ".detail, .axis { font-size: 11px; fill: #52606d; }\n"
    ".axis { text-anchor: end; }\n"
    "rect { stroke: #52606d; stroke-width: 0.6; }\n"
    ".frame { fill: none; stroke-width: 1; }\n"
    ".partition { fill: #cfe3f7; }\n"
    ".reserved { fill: #fde8c4; }\n"
    ".generated { fill: #e3d5f0; }\n"
    ".input { fill: #5b9bd5; stroke: none; }\n"
    ".gap { fill: #f5f7fa; stroke: none; }\n"
    ".leader { fill: none; stroke: #9aa5b1; stroke-width: 0.8; }\n"
    ".page { fill: #2f855a; stroke: none; }\n"
    ".page-number { fill: #ffffff; font-size: 10px; text-anchor: middle; }\n";

/// A coordinate with three decimals at most, whatever the locale.
std::string number(double value)
{
    char digits[64];
    const std::to_chars_result end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 3);
    std::string text(digits, end.ptr);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

/// The text cut to what a line of the picture holds; never within a character.
std::string shortened(const std::string& text, std::size_t longest)
{
    std::size_t characters = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((text[i] & 0xC0) != 0x80 && ++characters > longest - 1 &&
            std::count_if(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(),
                          [](char c) { return (c & 0xC0) != 0x80; }) > 1) {
            return text.substr(0, i) + "\xE2\x80\xA6";
        }
    }
    return text;
}

std::string text_line(const std::string& style, double x, double y, const std::string& text)
{
    return "<text class=\"" + style + "\" x=\"" + number(x) + "\" y=\"" + number(y) + "\">" +
           escaped(shortened(text, LONGEST_LINE)) + "</text>\n";
}

/// What stands in the column beside the bar.
struct LABEL {
    const FLASH_LAYOUT_PARTITION* partition = nullptr; ///< null for a gap
    FLASH_RANGE range;
    double wanted = 0; ///< middle of what it is about
    double height = 0;
    double top = 0;
};

/// Draws one device; y grows from the lowest address.
class DEVICE_PICTURE
{
public:
    DEVICE_PICTURE(const FLASH_LAYOUT& layout, double top)
        : m_layout(layout), m_title(top), m_top(top + TITLE_HEIGHT)
    {
        collect_labels();
        double needed = 0;
        for (const LABEL& label : m_labels) {
            needed += label.height;
        }
        m_height = std::max(SMALLEST_BAR, needed);
        spread_labels();
    }

    double bottom() const { return m_top + m_height + MARGIN; }

    std::string draw() const
    {
        std::string svg = "<g class=\"device\" data-device=\"" + escaped(m_layout.id) + "\" data-bytes=\"" +
                          std::to_string(m_layout.size) + "\">\n";
        svg += text_line("title", MARGIN, m_title + 18,
                         m_layout.id + ": " + m_layout.device + ", " + size_text(m_layout.size));
        for (const FLASH_RANGE& gap : m_layout.gaps) {
            svg += bar("gap", gap, BAR_LEFT, BAR_WIDTH, "free");
        }
        for (const FLASH_LAYOUT_PARTITION& partition : m_layout.partitions) {
            svg += draw_partition(partition);
        }
        svg += "<rect class=\"frame\" x=\"" + number(BAR_LEFT) + "\" y=\"" + number(m_top) + "\" width=\"" +
               number(BAR_WIDTH) + "\" height=\"" + number(m_height) + "\"/>\n";
        svg += draw_axis();
        for (const LABEL& label : m_labels) {
            svg += draw_label(label);
        }
        return svg + "</g>\n";
    }

private:
    double y_of(std::uint64_t address) const
    {
        return m_top + m_height * static_cast<double>(address) / static_cast<double>(m_layout.size);
    }

    std::string bar(const std::string& style, const FLASH_RANGE& range, double x, double width,
                    const std::string& name) const
    {
        const double y = y_of(range.start);
        return "<rect class=\"" + style + "\" x=\"" + number(x) + "\" y=\"" + number(y) + "\" width=\"" +
               number(width) + "\" height=\"" + number(y_of(range.end + 1) - y) + "\" data-start=\"" +
               format_address(range.start) + "\" data-end=\"" + format_address(range.end) + "\"><title>" +
               escaped(name) + "</title></rect>\n";
    }

    std::string draw_partition(const FLASH_LAYOUT_PARTITION& partition) const
    {
        const std::string style = partition.is_generated  ? "generated"
                                  : partition.is_reserved ? "reserved"
                                                          : "partition";
        std::string svg = bar(style, partition.range, BAR_LEFT, BAR_WIDTH, partition.name);
        for (const FLASH_LAYOUT_PARTITION::INPUT& input : partition.inputs) {
            svg += bar("input", input.range, INPUT_LEFT, INPUT_WIDTH,
                       input.id.empty() ? partition.files : input.id);
        }
        return svg;
    }

    /// Addresses at even steps: the lowest power of two that gives no more than AXIS_STEPS of them.
    std::string draw_axis() const
    {
        std::uint64_t step = 1;
        while (m_layout.size / step > AXIS_STEPS) {
            step *= 2;
        }
        std::string svg;
        for (std::uint64_t address = 0; address <= m_layout.size; address += step) {
            const double y = y_of(address);
            svg += "<path class=\"leader\" d=\"M" + number(BAR_LEFT - 6) + " " + number(y) + "H" +
                   number(BAR_LEFT) + "\"/>\n" +
                   text_line("axis", BAR_LEFT - 10, y + 4, format_address(address));
        }
        return svg;
    }

    void collect_labels()
    {
        for (const FLASH_LAYOUT_PARTITION& partition : m_layout.partitions) {
            m_labels.push_back({&partition, partition.range, 0, LABEL_HEIGHT, 0});
        }
        for (const FLASH_RANGE& gap : m_layout.gaps) {
            m_labels.push_back({nullptr, gap, 0, GAP_LABEL_HEIGHT, 0});
        }
        std::sort(m_labels.begin(), m_labels.end(),
                  [](const LABEL& a, const LABEL& b) { return a.range.start < b.range.start; });
    }

    /// Each as near to its place as those before it leave room, and then up again as far as the end asks.
    void spread_labels()
    {
        double next = m_top;
        for (LABEL& label : m_labels) {
            label.wanted = (y_of(label.range.start) + y_of(label.range.end + 1)) / 2;
            label.top = std::max(next, label.wanted - label.height / 2);
            next = label.top + label.height;
        }
        double limit = m_top + m_height;
        for (std::size_t i = m_labels.size(); i-- > 0;) {
            m_labels[i].top = std::min(m_labels[i].top, limit - m_labels[i].height);
            limit = m_labels[i].top;
        }
    }

    std::string draw_label(const LABEL& label) const
    {
        const double middle = label.top + label.height / 2;
        std::string svg = "<path class=\"leader\" d=\"M" + number(BAR_LEFT + BAR_WIDTH) + " " +
                          number(label.wanted) + "H" + number(BAR_LEFT + BAR_WIDTH + 8) + "L" +
                          number(LABEL_LEFT - 14) + " " + number(middle) + "H" + number(LABEL_LEFT - 6) +
                          "\"/>\n";
        const std::string place =
            format_range(label.range.start, label.range.end) + ", " + size_text(label.range.size());
        if (label.partition == nullptr) {
            return svg + text_line("detail", LABEL_LEFT, middle + 4, "free: " + place);
        }
        double x = LABEL_LEFT;
        if (label.partition->page) {
            svg += "<rect class=\"page\" x=\"" + number(x) + "\" y=\"" + number(middle - 14) +
                   "\" width=\"46\" height=\"13\" rx=\"3\"/>\n" +
                   text_line("page-number", x + 23, middle - 4,
                             "page " + std::to_string(*label.partition->page));
            x += 52;
        }
        const std::string& files = label.partition->files;
        std::string name = shortened(label.partition->name, 40);
        svg += text_line("name", x, middle - 3, name);
        return svg + text_line("detail", LABEL_LEFT, middle + 11,
                               place + (files.empty()
                                            ? label.partition->is_generated ? ", made by the tool" : ", empty"
                                            : ", " + files));
    }

    const FLASH_LAYOUT& m_layout;
    double m_title;
    double m_top;
    double m_height = 0;
    std::vector<LABEL> m_labels;
};

std::string draw_legend(double top)
{
    struct ENTRY {
        const char* style;
        const char* text;
    };
    constexpr ENTRY ENTRIES[] = {{"partition", "partition"},
                                 {"reserved", "partition of the device"},
                                 {"generated", "table made by the tool"},
                                 {"input", "filled by an input"},
                                 {"gap", "free"}};
    std::string svg = "<g class=\"legend\">\n";
    double x = MARGIN;
    for (const ENTRY& entry : ENTRIES) {
        svg += std::string("<rect class=\"") + entry.style + "\" style=\"stroke: #52606d\" x=\"" + number(x) +
               "\" y=\"" + number(top) + "\" width=\"14\" height=\"14\"/>\n" +
               text_line("detail", x + 20, top + 11, entry.text);
        x += 60 + 6.6 * static_cast<double>(std::string(entry.text).size());
    }
    return svg + "</g>\n";
}

} // namespace

std::string size_text(std::uint64_t bytes)
{
    constexpr const char* UNITS[] = {"KiB", "MiB", "GiB"};
    if (bytes < 1024) {
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    }
    auto value = static_cast<double>(bytes) / 1024;
    std::size_t unit = 0;
    while (value >= 1024 && unit + 1 < std::size(UNITS)) {
        value /= 1024;
        ++unit;
    }
    return number(std::round(value * 10) / 10) + ' ' + UNITS[unit];
}

std::string map_picture(const std::vector<FLASH_LAYOUT>& layouts)
{
    std::string devices;
    double top = MARGIN;
    for (const FLASH_LAYOUT& layout : layouts) {
        const DEVICE_PICTURE picture(layout, top);
        devices += picture.draw();
        top = picture.bottom();
    }
    const double height = top + LEGEND_HEIGHT;
    const std::string size = "width=\"" + number(WIDTH) + "\" height=\"" + number(height) + "\"";
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" " +
           size + " viewBox=\"0 0 " + number(WIDTH) + " " + number(height) + "\">\n<style>\n" + STYLE +
           "</style>\n<rect " + size + " style=\"fill: #ffffff; stroke: none\"/>\n" + devices +
           draw_legend(top) + "</svg>\n";
}
