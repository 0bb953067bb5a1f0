#include "internal_error_trap.h"

#include "msg_internal_error.h"

void install_internal_error_trap()
{
    MSG_INTERNAL_ERROR::set_handler([](const MSG_INTERNAL_ERROR::FAULT& fault) {
        throw INTERNAL_ERROR_RAISED(fault.condition, fault.subsystem, fault.source, fault.line);
    });
}
