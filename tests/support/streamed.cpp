#include "tests/support/streamed.h"

#include <ostream>

#include "tests/support/sexpression.h"

namespace KelpTest {

using namespace Kelp;

namespace {

// Reads with the rules of a parser alone, so that equal objects stay two and those before an error
// are seen.
std::vector<std::string> objectsOneByOne(SourcesReader& reader, const SceneOptions& options) {
  std::vector<std::string> objects;
  Scanner scanner(&reader);
  TreeParser parser(&scanner);
  parser.readsPlainText = false;
  reader.limits = options.limits;
  reader.readerParam1 = options.firstFrame;
  reader.readerParam2 = options.lastFrame;
  for (const std::string& path : options.includePaths) reader.addIncludePath(path.c_str());
  parser.nameAffix = options.nameAffix.c_str();
  parser.affixIsSuffix = options.affixIsSuffix;
  parser.maxNestingDepth = options.maxNestingDepth;
  const auto most = static_cast<size_t>(options.maxObjects > 0 ? options.maxObjects : INT64_MAX);
  try {
    for (parser.scanAheadToken(false); !parser._at(TOKEN_END) && objects.size() < most;) {
      const auto_ast<ObjectAST> object(parser.parseObject());
      objects.push_back(shownObject(*object.get()));
    }
  } catch (const InvalidSyntaxException&) {
  } catch (const InvalidSourceFile&) {
  }
  return objects;
}

}  // namespace

void PrintTo(const ObjectsAndError& outcome, std::ostream* out) {
  for (const std::string& object : outcome.objects) *out << '\n' << object;
  *out << "\nerror: " << outcome.error;
}

std::string shownObject(const ObjectAST& object) {
  std::string text = sexpression(object);
  for (const PropertyAST* property = object.firstProperty; property != nullptr;
       property = property->next) {
    const char* file = property->file.chars();
    text += " " + std::string(file != nullptr ? file : "-") + ":" + std::to_string(property->line);
    if (property->records != nullptr) {
      text +=
          "@" + std::to_string(property->records->t1) + "," + std::to_string(property->records->t2);
    }
  }
  return text;
}

std::string shownError(const SceneError& error) {
  if (error.kind == SceneError::Kind::kNone) return "";
  const bool invalid = error.kind == SceneError::Kind::kInvalid;
  return std::string(invalid ? "invalid: " : "unreadable: ") + error.message + " | " + error.file +
         ":" + std::to_string(error.line) + " | " + error.tokenFile + ":" +
         std::to_string(error.tokenLine) + ":" + std::to_string(error.column) + "\n" +
         error.excerpt();
}

ObjectsAndError wholeFile(const std::string& path, const SceneOptions& options) {
  SourcesReader reader;
  reader.openFile(path.c_str());
  return {objectsOneByOne(reader, options), shownError(Scene::fromFile(path, options).error())};
}

ObjectsAndError wholeText(std::string_view text, const std::string& name,
                          const SceneOptions& options) {
  SourcesReader reader;
  reader.openText(text.data(), static_cast<int64_t>(text.size()), name.c_str());
  return {objectsOneByOne(reader, options),
          shownError(Scene::fromText(text, name, options).error())};
}

ObjectsAndError streamed(const SceneSource& source, const StreamOptions& options) {
  ObjectsAndError outcome;
  const StreamResult result = forEachObject(
      source,
      [&outcome](const ObjectAST& object) {
        outcome.objects.push_back(shownObject(object));
        return ObjectFate::kDrop;
      },
      options);
  outcome.error = shownError(result.error);
  return outcome;
}

StreamOptions withWindow(size_t bytes, const SceneOptions& options) {
  StreamOptions stream;
  static_cast<SceneOptions&>(stream) = options;
  stream.windowBytes = bytes;
  return stream;
}

}  // namespace KelpTest
