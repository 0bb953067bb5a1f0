#ifndef VEK_MSGS_H
#define VEK_MSGS_H
#endif
