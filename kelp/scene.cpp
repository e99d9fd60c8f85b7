#include "kelp/scene.h"

#include <ostream>

#include "kelp/ast/treetext.h"
#include "kelp/parser/messages.h"
#include "kelp/parser/nearestcall.h"
#include "kelp/sceneparts.h"

namespace Kelp {

namespace {

constexpr size_t kExcerptCharacters = 100;

std::string textOf(const CharString& text) { return std::string(viewOf(text)); }

bool startsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }

bool isControl(char c) { return (static_cast<unsigned char>(c) < 0x20) || c == 0x7F; }

// Whether a control character of two bytes, U+0080 to U+009F, starts there. Terminals obey them.
bool isTwoByteControl(const std::string& text, size_t i) {
  return text[i] == '\xC2' && i + 1 < text.size() &&
         (static_cast<unsigned char>(text[i + 1]) & 0xE0U) == 0x80U;
}

// Every control character becomes one harmless one, so that columns stay.
std::string withoutControls(const std::string& text) {
  std::string harmless;
  harmless.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const bool twoBytes = isTwoByteControl(text, i);
    if (text[i] == '\t') {
      harmless += ' ';
    } else {
      harmless += twoBytes || isControl(text[i]) ? '?' : text[i];
    }
    if (twoBytes) ++i;
  }
  return harmless;
}

// The byte that the n-th character of a text starts at, n from 0.
size_t byteOfCharacter(const std::string& text, size_t n) {
  size_t byte = 0;
  while (byte < text.size() && n > 0) {
    ++byte;
    if (startsCharacter(text[byte])) --n;  // as does the NUL at the end
  }
  return byte;
}

}  // namespace

// ---- SceneError --------------------------------------------------------------------------------

std::string SceneError::position() const {
  const std::string& name = tokenLine > 0 ? tokenFile : file;
  const std::string shown = name.empty() ? "<text>" : withoutControls(name);
  if (tokenLine == 0) return shown;
  return shown + ':' + std::to_string(tokenLine) + ':' + std::to_string(column);
}

std::string SceneError::excerpt() const {
  if (tokenLine == 0) return "";
  const auto caret = static_cast<size_t>(column - lineColumn);
  const size_t first = caret < kExcerptCharacters ? 0 : caret - kExcerptCharacters / 2;
  const size_t begin = byteOfCharacter(sourceLine, first);
  const std::string rest = sourceLine.substr(begin);
  const size_t length = byteOfCharacter(rest, kExcerptCharacters);
  const std::string before = begin > 0 || lineColumn > 1 ? "..." : "";
  const std::string behind = length < rest.size() ? "..." : "";
  return before + withoutControls(rest.substr(0, length)) + behind + '\n' +
         std::string(before.size() + caret - first, ' ') + '^';
}

std::string SceneError::describe() const {
  return message.empty() ? "syntax error" : withoutControls(message);
}

std::string SceneError::suggestion() const {
  const std::string_view unknown = wordIn(message, Message::kUnknownFunctor);
  return unknown.empty() ? "" : std::string(nearestCall(unknown));
}

std::ostream& operator<<(std::ostream& out, const SceneError& error) {
  if (error.kind == SceneError::Kind::kNone) return out;
  out << error.position() << ": " << error.describe();
  const std::string excerpt = error.excerpt();
  if (!excerpt.empty()) out << '\n' << excerpt;
  for (const SceneError::Include& include : error.includedFrom) {
    out << "\nincluded from " << withoutControls(include.file) << ':' << include.line;
  }
  return out;
}

// ---- Scene -------------------------------------------------------------------------------------

void Scene::Parts::apply(const SceneOptions& options) {
  for (const std::string& path : options.includePaths) reader.addIncludePath(path.c_str());
  reader.readerParam1 = options.firstFrame;
  reader.readerParam2 = options.lastFrame;
  reader.mapFiles = options.mapFiles;
  reader.limits = options.limits;
  parser.nameAffix = options.nameAffix.c_str();
  parser.affixIsSuffix = options.affixIsSuffix;
  parser.collectReferenceNames = options.collectReferences ? 1 : 0;
  parser.maxNestingDepth = options.maxNestingDepth;
  parser.maxObjects = options.maxObjects;
}

void Scene::Parts::parse() {
  try {
    program.reset(parser.parseProgram());
  } catch (const InvalidSourceFile& failure) {
    // The first token is read before the parser records anything.
    parser.setError(failure.message);
  }
  if (program.get() == nullptr) error = invalidText();
}

SceneError Scene::Parts::invalidText() {
  SceneError invalid;
  invalid.kind = SceneError::Kind::kInvalid;
  invalid.message = textOf(parser.errorInfo.getErrorText());
  invalid.file = textOf(parser.errorInfo.getErrorFile());
  invalid.line = parser.errorInfo.getErrorLine();
  // The scanner is one token ahead of the parser, unless it failed or the input has ended.
  const int back = !scanner.failed() && parser.lookahead >= 0 ? 1 : 0;
  scanner.readLineOf(back);
  const SourceLocation location = scanner.locate(back);
  invalid.tokenFile = textOf(location.file);
  invalid.tokenLine = location.line;
  invalid.column = location.column;
  invalid.sourceLine = location.sourceLine;
  invalid.lineColumn = location.lineColumn;
  for (const IncludePlace* place = location.includedFrom; place != nullptr; place = place->next) {
    invalid.includedFrom.push_back({textOf(place->file), place->line});
  }
  return invalid;
}

SceneError Scene::Parts::unreadable(const CharString& message, const std::string& name) {
  SceneError failure;
  failure.kind = SceneError::Kind::kUnreadable;
  failure.message = textOf(message);
  failure.file = name;
  return failure;
}

template <class Open>
Scene Scene::_read(const SceneOptions& options, const std::string& name, Open open) {
  auto sceneParts = std::make_unique<Parts>();
  sceneParts->apply(options);
  try {
    open(sceneParts->reader);
  } catch (const InvalidSourceFile& failure) {
    sceneParts->error = Parts::unreadable(failure.message, name);
    return Scene(std::move(sceneParts));
  }
  sceneParts->parse();
  return Scene(std::move(sceneParts));
}

Scene Scene::fromFile(const std::string& path, const SceneOptions& options) {
  return _read(options, path, [&](SourcesReader& reader) { reader.openFile(path.c_str()); });
}

Scene Scene::fromText(std::string_view text, const std::string& name, const SceneOptions& options) {
  return _read(options, name, [&](SourcesReader& reader) {
    reader.openText(text.data(), static_cast<int64_t>(text.size()), name.c_str());
  });
}

Scene Scene::fromText(std::string_view text, const SceneOptions& options) {
  return fromText(text, "<text>", options);
}

Scene Scene::fromBorrowedText(std::string_view text, const std::string& name,
                              const SceneOptions& options) {
  return _read(options, name, [&](SourcesReader& reader) {
    reader.borrowText(text.data(), static_cast<int64_t>(text.size()), name.c_str());
  });
}

Scene::Scene(std::unique_ptr<Parts> sceneParts) : parts(std::move(sceneParts)) {}
Scene::Scene() noexcept = default;
Scene::Scene(Scene&& other) noexcept = default;
Scene& Scene::operator=(Scene&& other) noexcept = default;
Scene::~Scene() = default;

Scene::operator bool() const { return program() != nullptr; }

const SceneError& Scene::error() const {
  static const SceneError none;
  const Parts* read = parts.get();
  return read != nullptr ? read->error : none;
}

const Scene::Objects& Scene::objects() const {
  static const Objects none;
  if (program() == nullptr) return none;
  // Objects come to a program at the head of its list.
  if (parts->objectsUpTo != program()->firstObject) {
    parts->objects = Objects(objectsInTextOrder(*program()));
    parts->objectsUpTo = program()->firstObject;
  }
  return parts->objects;
}

const ObjectAST* Scene::find(const std::string& name) const {
  return program() != nullptr ? program()->getObject(name.c_str()) : nullptr;
}

void Scene::filter(ScenePluginFilter& filter) {
  if (program() != nullptr) parser().doFilter(program(), &filter);
}

ProgramAST* Scene::program() const { return parts != nullptr ? parts->program.get() : nullptr; }
TreeParser& Scene::parser() const { return parts->parser; }
SourcesReader& Scene::reader() const { return parts->reader; }

}  // namespace Kelp
