// The hash of the name-keyed maps.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Kelp {

/// Bob Jenkins' lookup3 hashlittle() with initval 0 (http://burtleburtle.net/bob/c/lookup3.c,
/// public domain), as it hashes on a little-endian machine. A length of 0 gives 0xdeadbeef.
/// Reads exactly `length` bytes.
uint32_t hashlittle(const void* key, size_t length);

}  // namespace Kelp
