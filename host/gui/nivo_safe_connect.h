#ifndef NIVO_SAFE_CONNECT_H
#define NIVO_SAFE_CONNECT_H

#include <QObject>

/// QObject::connect that must succeed: a null object, or a signal or slot that does not exist, is an internal
/// error that names signal and slot. `signal` and `slot` come from SIGNAL() and SLOT(). With
/// Qt::UniqueConnection a connection that stands already is no failure. `file` and `line` are those of the
/// caller.
void nivo_safe_connect(const QObject* sender, const char* signal, const QObject* receiver, const char* slot,
                       Qt::ConnectionType type, const char* file, int line);

#endif
