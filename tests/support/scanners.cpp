#include "tests/support/scanners.h"

namespace KelpTest {

void ListedScanner::handOut(Kelp::Token& token, char call) {
  calls += call;
  if (next == list.size()) return;
  const ListedToken& listed = list[next++];
  token.type = listed.type;
  token.overflowCount = listed.overflowCount;
  token.text.append(listed.text.data(), static_cast<int64_t>(listed.text.size()));
  for (int i = 0; i < 3; ++i) token.overflow[i] = listed.overflow[i];
}

}  // namespace KelpTest
