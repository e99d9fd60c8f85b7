// The order of the parser's fields and of what it reads in its neighbours: hosts map these classes.
#include <gtest/gtest.h>

#include <cstddef>

#include "kelp/parser/treeparser.h"

// Conditionally supported for classes with bases, and supported by the compilers used here.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

using namespace Kelp;

namespace {

#define AT(field) offsetof(TreeParser, field)

static_assert(AT(scanner) == 0 && AT(tokens) == sizeof(Scanner*));
static_assert(AT(current) == AT(tokens) + 2 * sizeof(Token));
static_assert(AT(lookahead) == AT(current) + 4);
static_assert(AT(collectReferenceNames) == AT(lookahead) + 4);
static_assert(AT(collectReferenceNames) < AT(nameAffix) && AT(nameAffix) < AT(affixIsSuffix));
static_assert(AT(affixIsSuffix) < AT(scratch) && AT(scratch) < AT(referenceNames));
static_assert(AT(referenceNames) < AT(errorInfo));

using Scratch = TreeParser::ListScratch;
static_assert(offsetof(Scratch, vectors) == 0);
static_assert(offsetof(Scratch, colors) == sizeof(_Sequence<Vector>));
static_assert(offsetof(Scratch, ints) == 2 * sizeof(_Sequence<Vector>));
static_assert(offsetof(Scratch, floats) == 3 * sizeof(_Sequence<Vector>));
static_assert(offsetof(Scratch, strings) == 4 * sizeof(_Sequence<Vector>));

// The reader's two numbers lie side by side.
static_assert(offsetof(SourcesReader, readerParam2) ==
              offsetof(SourcesReader, readerParam1) + sizeof(double));

TEST(ParserLayout, ScannerBeginsWithItsReaderBehindItsOperations) {
  SourcesReader reader;
  const Scanner scanner(&reader);
  EXPECT_EQ(reinterpret_cast<const char*>(&scanner.reader),
            reinterpret_cast<const char*>(&scanner) + sizeof(void*));
}

}  // namespace
