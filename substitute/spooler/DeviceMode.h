// Device modes: DEVMODEW records with the driver's private part behind them.
#pragma once

#include <cstddef>

#include "substitute/base/Bytes.h"

namespace kemba::substitute {

/// Size that a DEVMODEW gives itself, private part included; 0 when it is not to be trusted: the record does
/// not fit into `bytes`, or lacks fields that every driver reads.
std::size_t ModeSize(const Bytes& bytes);

/// Clears what stands behind the ends of a device mode's two texts: whoever made it leaves pieces of its
/// memory there, which belong in no file. Does nothing to bytes that are no device mode.
void ClearTextRemains(Bytes& mode);

} // namespace kemba::substitute
