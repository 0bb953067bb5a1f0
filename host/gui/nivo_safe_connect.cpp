#include "nivo_safe_connect.h"

#include "msg_internal_error.h"

#include <QMetaObject>

#include <string>
#include <utility>

namespace
{
NIVO_CONNECT_WATCHER connect_watcher;

/// SIGNAL() and SLOT() put a digit for the kind in front and, in debug builds, the place behind a zero byte.
std::string readable(const char* member)
{
    return member == nullptr || *member == '\0' ? std::string("(none)") : std::string(member + 1);
}

bool has_signal(const QObject* object, const char* signal)
{
    const QByteArray name = QMetaObject::normalizedSignature(signal + 1);
    return object->metaObject()->indexOfSignal(name.constData()) >= 0;
}

bool has_receiver(const QObject* object, const char* slot)
{
    const QByteArray name = QMetaObject::normalizedSignature(slot + 1);
    return object->metaObject()->indexOfMethod(name.constData()) >= 0;
}

const char* class_name(const QObject* object)
{
    return object == nullptr ? "null" : object->metaObject()->className();
}
} // namespace

void nivo_set_connect_watcher(NIVO_CONNECT_WATCHER watcher)
{
    connect_watcher = std::move(watcher);
}

void nivo_safe_connect(const QObject* sender, const char* signal, const QObject* receiver, const char* slot,
                       Qt::ConnectionType type, const char* file, int line)
{
    const bool is_complete = sender != nullptr && signal != nullptr && receiver != nullptr && slot != nullptr;
    if (is_complete && QObject::connect(sender, signal, receiver, slot, type)) {
        if (connect_watcher) {
            connect_watcher(sender, readable(signal).c_str(), receiver, readable(slot).c_str());
        }
        return;
    }
    // A unique connection that stands already is refused like a wrong name, so the names are looked up.
    const bool is_duplicate = is_complete && (type & Qt::UniqueConnection) != 0 &&
                              has_signal(sender, signal) && has_receiver(receiver, slot) &&
                              QMetaObject::checkConnectArgs(signal + 1, slot + 1);
    if (is_duplicate) {
        return;
    }
    const std::string text = std::string("cannot connect ") + class_name(sender) + "::" + readable(signal) +
                             " to " + class_name(receiver) + "::" + readable(slot);
    MSG_INTERNAL_ERROR::report(text, "VEK", file, line);
}
