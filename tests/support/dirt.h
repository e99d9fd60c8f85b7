// Pool elements as bad as a last user can leave them.
#pragma once

namespace KelpTest {

/// Puts `elements` elements on top of the free list of every pool of nodes, each with something in
/// all of its fields: texts, numbers, and pointers that nobody may follow.
void leaveDirtInPools(int elements);

}  // namespace KelpTest
