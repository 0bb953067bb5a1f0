#ifndef NIVO_HELP_H
#define NIVO_HELP_H

#include <QString>

class QWidget;

/// Help for what the user looks at. Widgets carry the topics of the pages about them; the pages stand in a
/// module that is loaded when the help is first asked for.

inline constexpr char NIVO_HELP_MODULE[] = "mod_help";
inline constexpr char NIVO_HELP_ENTRY[] = "help_show_context_impl";
/// Shows the page of the topic, or the first one when there is none.
using NIVO_HELP_SHOW_CONTEXT = void (*)(const char* topic);

/// The topics; each has a page.
inline constexpr char NIVO_HELP_OVERVIEW[] = "Imagewright";
inline constexpr char NIVO_HELP_OUTPUT_FILES[] = "Output Files";
inline constexpr char NIVO_HELP_OUTPUT_FILE_PROPERTIES[] = "Output File Properties";
inline constexpr char NIVO_HELP_INPUT_FILES[] = "Input Files";
inline constexpr char NIVO_HELP_INPUT_FILE_PROPERTIES[] = "Input File Properties";
inline constexpr char NIVO_HELP_KEY_ENTRY[] = "SOF File Properties: Bitstream Encryption - Key Entry";
inline constexpr char NIVO_HELP_CONFIG_DEVICE[] = "Configuration Device";
inline constexpr char NIVO_HELP_PARTITION[] = "Partition Properties";
inline constexpr char NIVO_HELP_FLASH_DEVICES[] = "Flash Devices";
inline constexpr char NIVO_HELP_DEVICE_OPTIONS[] = "Device Options";
inline constexpr char NIVO_HELP_GENERATE[] = "Generate";
inline constexpr char NIVO_HELP_MESSAGES[] = "Messages";

/// Gives the widget, and all in it that have no topic of their own, a topic.
void nivo_set_help_topic(QWidget& widget, const char* topic);

/// The topic of the widget or of the nearest one around it, within its window; on the tabs of a tab widget
/// that of the current page. Empty when there is none.
QString nivo_get_help_topic(const QWidget* widget);

/// Shows the help at the topic. When the module is missing a box over `owner` says so.
void nivo_show_help(const QString& topic, QWidget* owner);

#endif
