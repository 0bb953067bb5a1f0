#ifndef MOK_RECENT_FILES_H
#define MOK_RECENT_FILES_H

#include <QStringList>

/// The files opened or saved last, the latest first, in the settings of the user.
class MOK_RECENT_FILES
{
public:
    static constexpr int LIMIT = 10;

    /// Only files that still exist.
    static QStringList get();
    /// Puts a file in front; one that is listed already moves there.
    static void add(const QString& path);
    static void clear();
};

#endif
