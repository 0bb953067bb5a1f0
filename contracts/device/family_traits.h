#ifndef FAMILY_TRAITS_H
#define FAMILY_TRAITS_H

#include "dev_family_enum.h"

/// What a family can do, narrowed to one of its devices when `device` is not DEV_DEVICE_NONE.
///
/// `mode_mask_a`: the modes in which a host or a flash device drives the configuration pins; `mode_mask_b`:
/// those that need a block of the device's own (LNKS and on-chip flash), 0 when it has none. Bit n stands for
/// mode n modulo 32, and a mode is there when either mask has its bit.
/// `output_file_mask`: bit n allows VEK_FILE_TYPE n: what some mode of the family offers and the family does
/// not exclude, with what stands above and below it in the tree.
///
/// A family that is in no table is an internal error: "family is in table".
void get_family_pcf_info(DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM device, unsigned& mode_mask_a,
                         unsigned& mode_mask_b, unsigned& output_file_mask);

#endif
