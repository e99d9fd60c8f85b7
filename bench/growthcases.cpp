#include "bench/growthcases.h"

#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "kelp/parser/treeparser.h"
#include "kelp/queries/statistics.h"
#include "kelp/writers/treewriter.h"

namespace KelpBench {

using namespace Kelp;

namespace {

// Finding a name leaps through memory, which takes several times longer once the scene has outgrown
// the caches. So that the rule shows and not the machine, names are counted while it fits.
constexpr double kSecondsWhileCached = 0.00015;

double now() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template <class Action>
double secondsOf(Action action) {
  const double start = now();
  action();
  return now() - start;
}

void measureWhileCached(std::vector<GrowthCase>& cases, size_t first) {
  for (size_t i = first; i < cases.size(); ++i) {
    cases[i].longEnough = kSecondsWhileCached;
    cases[i].whileCached = true;
  }
}

// ---- texts -------------------------------------------------------------------------------------

std::string repeated(const std::string& piece, int n) {
  std::string text;
  text.reserve(piece.size() * static_cast<size_t>(n));
  for (int i = 0; i < n; ++i) text += piece;
  return text;
}

// The piece n times, with 0, 1, 2... for every # in it.
std::string numbered(const std::string& piece, int n) {
  std::string text;
  for (int i = 0; i < n; ++i) {
    const std::string number = std::to_string(i);
    for (const char c : piece) {
      if (c == '#') {
        text += number;
      } else {
        text += c;
      }
    }
  }
  return text;
}

std::string valued(const std::string& value) { return "A a { x = " + value + "; }"; }

// ---- reading -----------------------------------------------------------------------------------

struct Reading {
  SourcesReader reader;
  Scanner scanner{&reader};
  TreeParser parser{&scanner};
  auto_ast<ProgramAST> program{nullptr};

  Reading() {
    parser.maxNestingDepth = 0;
    parser.collectReferenceNames = 1;
  }

  void parse() { program.reset(parser.parseProgram()); }

  void parseText(const std::string& text) {
    reader.openText(text.data(), static_cast<int64_t>(text.size()), "generated.scene");
    parse();
  }

  void expect(bool success) const {
    if ((program.get() != nullptr) == success) return;
    const CharString& error = parser.errorInfo.getErrorText();
    throw std::logic_error(error.isNull() ? "the scene has no error" : error.chars());
  }
};

Seconds read(const std::string& text, bool valid) {
  auto reading = std::make_unique<Reading>();
  Seconds seconds;
  seconds.work = secondsOf([&] { reading->parseText(text); });
  reading->expect(valid);
  seconds.release = secondsOf([&] { reading.reset(); });
  return seconds;
}

template <class Text>
GrowthCase reads(const char* name, Text text) {
  return {name, [text](int n) { return read(text(n), true); }};
}

template <class Text>
GrowthCase fails(const char* name, Text text) {
  return {name, [text](int n) { return read(text(n), false); }};
}

GrowthCase nests(const char* name, const std::string& open, const std::string& close) {
  return reads(
      name, [open, close](int n) { return valued(repeated(open, n) + "1" + repeated(close, n)); });
}

// first, then n times the piece, then last.
GrowthCase repeats(const char* name, const std::string& first, const std::string& piece,
                   const std::string& last) {
  return reads(name, [=](int n) { return valued(first + repeated(piece, n) + last); });
}

GrowthCase repeatsNumbered(const char* name, const std::string& first, const std::string& piece,
                           const std::string& last = "") {
  return reads(name, [=](int n) { return first + numbered(piece, n) + last; });
}

void addNesting(std::vector<GrowthCase>& cases) {
  cases.push_back(nests("nested parentheses", "(", ")"));
  cases.push_back(nests("nested negations", "-(", ")"));
  cases.push_back(nests("nested right operands", "1-(", ")*2"));
  cases.push_back(nests("nested lists", "List(1,", ")"));
  cases.push_back(nests("nested vectors", "Vector(1,2,", ")"));
  cases.push_back(nests("nested calls", "sin(", ")"));
  cases.push_back(nests("nested interpolations", "interpolate((1,2),(", ",1))"));
  cases.push_back(nests("nested indices", "a.b[", "]"));
  cases.push_back(fails("nested, cut off", [](int n) { return valued(repeated("List(1,", n)); }));
}

void addLists(std::vector<GrowthCase>& cases) {
  cases.push_back(repeats("List", "List(1", ",1", ")"));
  cases.push_back(repeats("ListInt", "ListInt(1", ",12", ")"));
  cases.push_back(repeats("ListFloat", "ListFloat(1", ",1.5", ")"));
  cases.push_back(repeats("ListVector", "ListVector(Vector(1,2,3)", ",Vector(1,2,3)", ")"));
  cases.push_back(repeats("ListColor", "ListColor(Color(1,2,3)", ",Color(1,2,3)", ")"));
  cases.push_back(repeats("ListString", "ListString(\"a\"", ",\"abc\"", ")"));
  cases.push_back(repeats("ListFloatHex", "ListFloatHex(\"", "0123abcd", "\")"));
  cases.push_back(repeats("TransformHex", "TransformHex(\"", "0123abcd", "\")"));
  cases.push_back(reads("short lists behind a long one", [](int n) {
    return "A a {x=ListInt(1" + repeated(",1", n) + ");" + repeated("x=ListInt(1);", n) + "}";
  }));
}

void addChains(std::vector<GrowthCase>& cases) {
  cases.push_back(repeats("sum", "1", "+1", ""));
  cases.push_back(repeats("product", "1", "*2", ""));
  cases.push_back(repeats("sums of products", "1", "+2*3-4/-5", ""));
  cases.push_back(repeats("indices", "a.b", "[1]", ""));
  cases.push_back(repeats("members", "a.b", ".x", ""));
  cases.push_back(repeats("interpolation pairs", "interpolate((1,2)", ",(1,2)", ")"));
  cases.push_back(repeats("references", "List(1", ",a,b.c,d::e", ")"));
}

void addTokens(std::vector<GrowthCase>& cases) {
  cases.push_back(
      reads("long name", [](int n) { return "A " + std::string(size_t(n), 'a') + " {}"; }));
  cases.push_back(reads("long number", [](int n) { return valued(std::string(size_t(n), '7')); }));
  cases.push_back(repeats("long string", "\"", "0123456789", "\""));
  cases.push_back(repeats("long string with escapes", "\"", "\\\"\\\\", "\""));
  cases.push_back(repeats("long string in a ListString", "ListString(\"", "0123456789", "\")"));
  cases.push_back(repeats("long comment", "1 /*", "* / \n", "*/"));
  cases.push_back(repeats("line comments", "1\n", "// \n", ""));
  cases.push_back(repeats("blanks", "1", " \t", ""));
  cases.push_back(fails("error behind a long line",
                        [](int n) { return valued("List(1" + repeated(",1", n) + ",)"); }));
  cases.push_back(fails("error at a long token", [](int n) {
    return "A a { x = \"" + std::string(size_t(n), 'a') + "\" 1; }";
  }));
  cases.push_back(
      fails("string that never ends", [](int n) { return "A a { x = \"" + repeated("\\ \n", n); }));
}

void addObjects(std::vector<GrowthCase>& cases) {
  const size_t first = cases.size();
  cases.push_back(repeatsNumbered("objects", "", "A a# { x = 1; }"));
  cases.push_back(repeatsNumbered("objects without a name", "", "A# { x = 1; }"));
  cases.push_back(repeatsNumbered("types of one name", "", "A# a { x = 1; }"));
  cases.push_back(repeatsNumbered("objects that are merged", "", "A a { x# = 1; y = b; }"));
  cases.push_back(repeatsNumbered("properties", "A a {", "x# = 1;", "}"));
  cases.push_back(repeatsNumbered("properties of one name", "A a {", "x = #;", "}"));
  cases.push_back(repeatsNumbered("strings", "A a {", "x = \"text #\";", "}"));
  measureWhileCached(cases, first);
}

// ---- files -------------------------------------------------------------------------------------

// A scene of n #include lines that name some small files in turn.
class IncludingFile {
 public:
  explicit IncludingFile(int n)
      : directory(std::filesystem::temp_directory_path() /
                  ("kelp_growth." + std::to_string(getpid()))) {
    constexpr int kFiles = 20;
    std::filesystem::create_directory(directory);
    for (int i = 0; i < kFiles; ++i) {
      std::ofstream(directory / (std::to_string(i) + ".inc")) << "A a" << i << " { x = 1; }\n";
    }
    std::ofstream scene(scenePath());
    for (int i = 0; i < n; ++i) scene << "#include \"" << i % kFiles << ".inc\"\n";
  }
  IncludingFile(const IncludingFile&) = delete;
  IncludingFile& operator=(const IncludingFile&) = delete;
  ~IncludingFile() {
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
  }

  std::string scenePath() const { return directory / "all.scene"; }

 private:
  std::filesystem::path directory;
};

Seconds readIncludes(int n) {
  const IncludingFile file(n);
  auto reading = std::make_unique<Reading>();
  Seconds seconds;
  seconds.work = secondsOf([&] {
    reading->reader.openFile(file.scenePath().c_str());
    reading->parse();
  });
  reading->expect(true);
  seconds.release = secondsOf([&] { reading.reset(); });
  return seconds;
}

// ---- operations on programs --------------------------------------------------------------------

constexpr const char* kReferring = "A a# { x = List(a#, a#.y, a#::z); }";

class Renaming final : public ScenePluginFilter {
 public:
  int acceptObject(const CharString&, CharString& name, void*) override {
    CharString renamed("new_");
    renamed.append(name.chars());
    name = renamed;
    return 1;
  }
};

template <class Work>
GrowthCase worksOn(const char* name, const char* piece, Work work) {
  return {name, [piece, work](int n) {
            auto reading = std::make_unique<Reading>();
            reading->parseText(numbered(piece, n));
            reading->expect(true);
            Seconds seconds;
            seconds.work = secondsOf([&] { work(*reading, n); });
            seconds.release = secondsOf([&] { reading.reset(); });
            return seconds;
          }};
}

void rename(Reading& reading, int n) {
  for (int i = 0; i < n; ++i) {
    CharString newName(("new_" + std::to_string(i)).c_str());
    reading.program->updateName(CharString(("a" + std::to_string(i)).c_str()), newName);
  }
}

void filter(Reading& reading, int) {
  Renaming renaming;
  reading.parser.doFilter(reading.program.get(), &renaming);
}

// Into a program with the same objects, and back into the one that is empty now.
void mergeTwice(Reading& reading, int n) {
  Reading other;
  other.parseText(numbered("A b# {} A a# {}", n / 2));
  other.program->mergeProgram(reading.program.get(), 0, 0, nullptr);
  reading.program->mergeProgram(other.program.get(), 0, 0, nullptr);
}

void addOperations(std::vector<GrowthCase>& cases) {
  // Of what is so much faster than reading.
  constexpr int kTimes = 20;
  constexpr int kTimesCounted = 100;
  const size_t first = cases.size();
  cases.push_back(worksOn("updateName of all objects", "A a# {}", rename));
  cases.push_back(worksOn("doFilter renames all objects", kReferring, filter));
  cases.push_back(worksOn("mergeProgram", "A a# { x = 1; }", mergeTwice));
  cases.push_back(worksOn("getObject of all names", "A a# {}", [](Reading& reading, int n) {
    for (int i = 0; i < kTimes * n; ++i) {
      const std::string name = "a" + std::to_string(i % n);
      if (reading.program->getObject(name.c_str()) == nullptr) throw std::logic_error(name);
    }
  }));
  cases.push_back(worksOn("listing", kReferring, [](Reading& reading, int) {
    std::string text;
    TreeWriter writer([&text](std::string_view piece) { text += piece; });
    writer.write(*reading.program.get());
  }));
  cases.push_back(worksOn("statistics", kReferring, [](Reading& reading, int) {
    for (int i = 0; i < kTimesCounted; ++i) {
      if (countProgram(*reading.program.get()).objects == 0) throw std::logic_error("no objects");
    }
  }));
  measureWhileCached(cases, first);
}

}  // namespace

const std::vector<GrowthCase>& growthCases() {
  static const std::vector<GrowthCase> cases = [] {
    std::vector<GrowthCase> all;
    addNesting(all);
    addChains(all);
    addLists(all);
    addTokens(all);
    addObjects(all);
    addOperations(all);
    all.push_back({"includes", readIncludes});
    return all;
  }();
  return cases;
}

double filterSeconds(int n) {
  constexpr int kObjects = 1000;
  std::string text = numbered("A a# {}", kObjects) + "A list { x = List(1";
  for (int i = 0; i < n; ++i) text += ",a" + std::to_string(i % kObjects);
  Reading reading;
  reading.parseText(text + "); }");
  reading.expect(true);
  if (reading.parser.referenceNames.count != n) throw std::logic_error("not all are recorded");
  return secondsOf([&] { filter(reading, n); });
}

}  // namespace KelpBench
