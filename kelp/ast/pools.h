// The static pools of the node classes as a whole.
#pragma once

namespace Kelp {

/// Drops the texts that returned nodes still hold, so that a host gets the memory of a large
/// scene's names and strings back. Nodes in use are not touched; the blocks of the pools stay.
/// Returned nodes otherwise keep their values until they are taken again. On the thread that uses
/// the pools.
void trimPools() noexcept;

}  // namespace Kelp
