#include "mok_recent_files.h"

#include "mok_settings.h"

#include <QFileInfo>
#include <QUrl>

namespace
{
constexpr const char* KEY = "WINDOW_RECENT_FILES";

void store(const QStringList& paths)
{
    // Percent-encoded, so that a name may hold a line feed.
    QByteArray text;
    for (const QString& path : paths) {
        text += QUrl::toPercentEncoding(path, "/") + '\n';
    }
    text.chop(1);
    mok_set_setting(KEY, text);
}

QStringList load()
{
    QByteArray text;
    QStringList paths;
    if (mok_get_setting(KEY, text)) {
        for (const QByteArray& line : text.split('\n')) {
            if (!line.isEmpty()) {
                paths << QUrl::fromPercentEncoding(line);
            }
        }
    }
    return paths.mid(0, MOK_RECENT_FILES::LIMIT);
}
} // namespace

QStringList MOK_RECENT_FILES::get()
{
    QStringList existing;
    for (const QString& path : load()) {
        if (QFileInfo::exists(path)) {
            existing << path;
        }
    }
    return existing;
}

void MOK_RECENT_FILES::add(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    const QStringList before = load();
    QStringList paths = before;
    paths.removeAll(absolute);
    paths.prepend(absolute);
    paths = paths.mid(0, LIMIT);
    if (paths != before) {
        store(paths);
    }
}

void MOK_RECENT_FILES::clear()
{
    store({});
}
