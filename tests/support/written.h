// What writers write, as one text.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "kelp/writers/jsonwriter.h"
#include "kelp/writers/treewriter.h"

namespace KelpTest {

/// What a writer hands on of what it is given.
template <class Writer, class... What>
std::string writtenBy(What&&... what) {
  std::string text;
  Writer writer([&text](std::string_view piece) { text += piece; });
  writer.write(std::forward<What>(what)...);
  return text;
}

inline std::string treeListing(const Kelp::ProgramAST& program) {
  return writtenBy<Kelp::TreeWriter>(program);
}

inline std::string treeJson(const Kelp::ProgramAST& program) {
  return writtenBy<Kelp::JsonWriter>(program, "a.scene");
}

}  // namespace KelpTest
