#include "tests/support/rows.h"

#include "tests/support/balance.h"

namespace KelpTest {

namespace {

void expectRows(std::initializer_list<Row> rows, std::string (*parsed)(std::string_view)) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.input);
    expectBalanced([&] { EXPECT_EQ(parsed(row.input), row.expected); });
  }
}

}  // namespace

void expectExpressions(std::initializer_list<Row> rows) { expectRows(rows, parsedExpression); }

void expectScenes(std::initializer_list<Row> rows) { expectRows(rows, parsedScene); }

}  // namespace KelpTest
