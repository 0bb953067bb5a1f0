#ifndef FLASH_OFFER_H
#define FLASH_OFFER_H

#include "dev_family_enum.h"

#include <vector>

struct PGM_DEVICE;

/// Whether a device is offered as the carrier of a flash image, when the flash families are those of
/// `families`: a parallel flash, or a serial one made for configuration, that is still listed and that a
/// programmer can write. The configuration keys "pgm_allow_cfi4g" (off), "PGM_ALLOW_KELT_DEVICE" (on) and
/// "PGM_ALLOW_TESSEL_DEVICE" (off) decide about the largest parallel flash and about
/// DEV_FAMILY_SPECIAL_FLASH.
bool flash_device_is_offered(const PGM_DEVICE& device, const std::vector<DEV_FAMILY_ENUM>& families);

#endif
