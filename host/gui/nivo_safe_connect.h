#ifndef NIVO_SAFE_CONNECT_H
#define NIVO_SAFE_CONNECT_H

#include <QByteArray>
#include <QObject>

#include <functional>

/// QObject::connect that must succeed: a null object, or a signal or slot that does not exist, is an internal
/// error that names signal and slot. `signal` and `slot` come from SIGNAL() and SLOT(). With
/// Qt::UniqueConnection a connection that stands already is no failure. `file` and `line` are those of the
/// caller.
void nivo_safe_connect(const QObject* sender, const char* signal, const QObject* receiver, const char* slot,
                       Qt::ConnectionType type, const char* file, int line);

/// Is told of each connection that nivo_safe_connect makes, signal and slot with their argument lists. For
/// tests of what is connected, and in which order; an empty one ends it. GUI thread only.
using NIVO_CONNECT_WATCHER = std::function<void(const QObject* sender, const QByteArray& signal,
                                                const QObject* receiver, const QByteArray& slot)>;
void nivo_set_connect_watcher(NIVO_CONNECT_WATCHER watcher);

#endif
