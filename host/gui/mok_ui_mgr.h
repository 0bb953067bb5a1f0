#ifndef MOK_UI_MGR_H
#define MOK_UI_MGR_H

#include <string>

/// The user interface manager of the host application: what all its windows share.
class MOK_UI_MGR
{
public:
    /// The directory to which paths are relative where a person or a file sees them, in the local 8-bit
    /// encoding. May be empty: paths are then left as they are.
    const std::string& get_working_directory() const { return m_working_directory; }
    void set_working_directory(const std::string& directory) { m_working_directory = directory; }

private:
    std::string m_working_directory;
};

#endif
