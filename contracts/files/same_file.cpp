#include "same_file.h"

#include "file_errors.h"
#include "fio_path.h"

#include <sys/stat.h>

namespace
{

bool same_inode(const struct stat& left, const struct stat& right)
{
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

} // namespace

bool same_file(const std::string& left, const std::string& right)
{
    struct stat left_status = {};
    struct stat right_status = {};
    const bool left_there = stat(left.c_str(), &left_status) == 0;
    const bool right_there = stat(right.c_str(), &right_status) == 0;
    if (left_there || right_there) {
        return left_there && right_there && same_inode(left_status, right_status);
    }
    const std::string left_target = link_target(left);
    const std::string right_target = link_target(right);
    return FIO_PATH(left_target).filename() == FIO_PATH(right_target).filename() &&
           stat(directory_of(left_target).c_str(), &left_status) == 0 &&
           stat(directory_of(right_target).c_str(), &right_status) == 0 &&
           same_inode(left_status, right_status);
}
