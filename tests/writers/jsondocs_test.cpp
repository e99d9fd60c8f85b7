// docs/json.md tells the truth about the kinds of expressions.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "kelp/scene.h"
#include "tests/support/written.h"

namespace {

struct Row {
  std::string kind;
  std::string text;
  std::vector<std::string> members;
};

// What stands between backquotes in a line, in order.
std::vector<std::string> quotedWords(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream parts(line);
  std::string part;
  for (bool quoted = false; std::getline(parts, part, '`'); quoted = !quoted) {
    if (quoted) words.push_back(part);
  }
  return words;
}

// The rows of the table of kinds: | `kind` | `text` | `member`... |
std::vector<Row> tableOfKinds() {
  std::ifstream page(KELP_SOURCE_DIR "/docs/json.md");
  std::vector<Row> rows;
  bool inTable = false;
  for (std::string line; std::getline(page, line);) {
    if (line.rfind("| `kind` | text", 0) == 0) {
      inTable = true;
    } else if (inTable && line.empty()) {
      break;
    } else if (inTable && line.rfind("|---", 0) != 0) {
      const std::vector<std::string> words = quotedWords(line);
      rows.push_back({words.at(0), words.at(1), {words.begin() + 2, words.end()}});
    }
  }
  return rows;
}

std::string jsonOf(const std::string& value) {
  const Kelp::Scene scene = Kelp::Scene::fromText("A { x = " + value + "; }", "a.scene");
  if (!scene) return "error: " + scene.error().message;
  return KelpTest::treeJson(*scene.program());
}

}  // namespace

TEST(JsonDocs, EveryRowsTextGivesItsKindAndFirstMember) {
  const std::vector<Row> rows = tableOfKinds();
  ASSERT_EQ(rows.size(), 22U);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const std::string start =
        R"("value":{"kind":")" + row.kind + R"(",")" + row.members.at(0) + '"';
    const std::string json = jsonOf(row.text);
    EXPECT_NE(json.find(start), std::string::npos) << start << " in " << json;
  }
}
