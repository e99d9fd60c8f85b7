#include "bench/peers.h"

#include <charconv>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include "kelp/parser/treeparser.h"

#ifdef KELP_BENCH_RAPIDJSON
// What every processor of the kind has, as for Kelp.
#ifdef __SSE2__
#define RAPIDJSON_SSE2
#endif
#include <rapidjson/document.h>
#endif
#ifdef KELP_BENCH_SIMDJSON
#include <simdjson.h>
#endif
#ifdef KELP_BENCH_NLOHMANN
#include <nlohmann/json.hpp>
#endif
#ifdef KELP_BENCH_PUGIXML
#include <pugixml.hpp>
#endif

namespace KelpBench {

namespace {

void expect(bool success, const char* message) {
  if (!success) throw std::logic_error(message);
}

class KelpReader : public TreeReader {
 public:
  void prepare(const std::string& sceneText) override {
    text = sceneText;
    text.append(Kelp::SourcesReader::kPadding, '\0');
  }

  void parse() override {
    reading = std::make_unique<Reading>();
    _open();
    program = reading->parser.parseProgram();
    expect(program != nullptr, reading->parser.errorInfo.getErrorText().chars());
  }

  void release() override { program->deleteThis(); }

  void clear() override { reading.reset(); }

 private:
  struct Reading {
    Kelp::SourcesReader reader;
    Kelp::Scanner scanner{&reader};
    Kelp::TreeParser parser{&scanner};
  };

  void _open() {
    const size_t length = text.size() - Kelp::SourcesReader::kPadding;
    reading->reader.borrowText(text.data(), static_cast<int64_t>(length), "generated.scene");
  }

  std::string text;
  std::unique_ptr<Reading> reading;
  Kelp::ProgramAST* program = nullptr;
};

#ifdef KELP_BENCH_RAPIDJSON
class RapidJsonReader : public TreeReader {
 public:
  void prepare(const std::string& jsonText) override { text = &jsonText; }

  void parse() override {
    document = std::make_unique<rapidjson::Document>();
    document->Parse(text->c_str());  // its fastest way of reading, for texts that end with a zero
    expect(!document->HasParseError(), "RapidJSON does not like the text");
  }

  void release() override { document.reset(); }

 private:
  const std::string* text = nullptr;
  std::unique_ptr<rapidjson::Document> document;
};
#endif

#ifdef KELP_BENCH_SIMDJSON
// A tree belongs to its parser, so that there is one for each tree.
class SimdJsonReader : public TreeReader {
 public:
  void prepare(const std::string& jsonText) override { text = simdjson::padded_string(jsonText); }

  void parse() override {
    if (parser == nullptr) parser = std::make_unique<simdjson::dom::parser>();
    expect(parser->parse(text).error() == 0, "simdjson does not like the text");
  }

  void release() override { parser.reset(); }

 private:
  simdjson::padded_string text;

 protected:
  std::unique_ptr<simdjson::dom::parser> parser;
};

// For who needs one tree at a time its documentation recommends to use the parser again: the next
// tree then lies where the one before lay, and nothing is ever released.
class SimdJsonAgainReader : public SimdJsonReader {
 public:
  void release() override {}
};
#endif

#ifdef KELP_BENCH_NLOHMANN
class NlohmannReader : public TreeReader {
 public:
  void prepare(const std::string& jsonText) override { text = &jsonText; }

  void parse() override { *tree = nlohmann::json::parse(*text); }

  void release() override { *tree = nullptr; }

 private:
  const std::string* text = nullptr;
  std::unique_ptr<nlohmann::json> tree = std::make_unique<nlohmann::json>();
};
#endif

#ifdef KELP_BENCH_PUGIXML
// An XML tree holds texts. For a tree that holds numbers, all that begin like one are converted, as
// fast as the standard library can: those of faces to int, all others to float.
class PugiXmlReader : public TreeReader {
 public:
  void prepare(const std::string& xmlText) override { text = &xmlText; }

  void parse() override {
    document = std::make_unique<pugi::xml_document>();
    expect(bool{document->load_buffer(text->data(), text->size())}, "pugixml does not like it");
    Converter converter{*this};
    document->traverse(converter);
  }

  void release() override {
    document.reset();
    std::vector<float>().swap(floats);
    std::vector<int>().swap(ints);
  }

 private:
  struct Converter : pugi::xml_tree_walker {
    explicit Converter(PugiXmlReader& treeReader) : reader(treeReader) {}

    bool for_each(pugi::xml_node& node) override {
      for (const pugi::xml_attribute& attribute : node.attributes()) {
        reader._convert<float>(attribute.value(), reader.floats);
      }
      if (node.type() != pugi::node_pcdata) return true;
      if (std::string_view(node.parent().name()) == "faces") {
        reader._convert<int>(node.value(), reader.ints);
      } else {
        reader._convert<float>(node.value(), reader.floats);
      }
      return true;
    }

    PugiXmlReader& reader;
  };

  template <class Number>
  static void _convert(const char* at, std::vector<Number>& numbers) {
    if (!(*at == '-' || (*at >= '0' && *at <= '9'))) return;
    for (const char* end = at + std::strlen(at); at < end; ++at) {
      Number number{};
      at = std::from_chars(at, end, number).ptr;
      if (at < end && *at != ' ') return;  // a hexadecimal text
      numbers.push_back(number);
    }
  }

  const std::string* text = nullptr;
  std::unique_ptr<pugi::xml_document> document;
  std::vector<float> floats;
  std::vector<int> ints;
};
#endif

template <class Reader>
std::unique_ptr<TreeReader> make() {
  return std::make_unique<Reader>();
}

}  // namespace

const std::vector<ReaderKind>& readerKinds() {
  static const std::vector<ReaderKind> kinds = {
      {"Kelp", Syntax::kScene, make<KelpReader>},
#ifdef KELP_BENCH_RAPIDJSON
      {"RapidJSON", Syntax::kJson, make<RapidJsonReader>},
#endif
#ifdef KELP_BENCH_SIMDJSON
      {"simdjson", Syntax::kJson, make<SimdJsonReader>},
      {"simdjson*", Syntax::kJson, make<SimdJsonAgainReader>},
#endif
#ifdef KELP_BENCH_NLOHMANN
      {"nlohmann", Syntax::kJson, make<NlohmannReader>},
#endif
#ifdef KELP_BENCH_PUGIXML
      {"pugixml", Syntax::kXml, make<PugiXmlReader>},
#endif
  };
  return kinds;
}

}  // namespace KelpBench
