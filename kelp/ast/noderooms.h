// Memory for nodes that are made with new and destroyed with delete.
#pragma once

#include "kelp/utils/pool.h"

namespace Kelp {

/// What one node of a class needs.
template <class Node>
struct NodeRoom {
  alignas(Node) unsigned char bytes[sizeof(Node)];
};

/// Where a class takes its nodes' memory from: in blocks, as the pooled classes do, because the
/// heap is far slower for so many small pieces. The nodes themselves are constructed and destroyed
/// as always. Out of memory is an ExceptionMsg, as with the pools.
template <class Node>
using NodeRooms = Pool<NodeRoom<Node>>;

}  // namespace Kelp
