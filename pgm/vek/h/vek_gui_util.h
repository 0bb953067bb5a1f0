#ifndef VEK_GUI_UTIL_H
#define VEK_GUI_UTIL_H

#include "fio_path.h"

#include <QString>

#include <string>

/// The rule for paths in the whole tool: absolute inside the program, relative to the host's working
/// directory where a person or a file sees them. Without a working directory paths stay as they are, both
/// ways.
class VEK_GUI_UTIL
{
public:
    /// The working directory of the host, which may be empty. Internal errors "app != nullptr" and
    /// "ui_mgr != nullptr" without a host application or its UI manager.
    static std::string get_working_directory();

    /// For people and files.
    static FIO_PATH format_path(const FIO_PATH& path);
    /// For the program.
    static FIO_PATH make_path_absolute(const FIO_PATH& path);

    /// Between the texts of the widgets and the bytes of paths and documents.
    static std::string to_local(const QString& text);
    static QString from_local(const std::string& text);
};

#endif
