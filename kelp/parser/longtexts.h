// Long texts, of which nodes hold a record only.
#pragma once

#include "kelp/ast/objects.h"
#include "kelp/source/sourcesreader.h"

namespace Kelp {

/// Copies all characters that the object's nodes have records of to the reader, and makes the
/// records speak of the copies. Throws std::bad_alloc; then it is done for some of them.
void keepLongTexts(const ObjectAST& object, SourcesReader& reader);

}  // namespace Kelp
