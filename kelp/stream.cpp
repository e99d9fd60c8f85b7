#include "kelp/stream.h"

#include <utility>

#include "kelp/parser/objectstream.h"
#include "kelp/sceneparts.h"
#include "kelp/utils/exclusiveuse.h"

namespace Kelp {

// ---- SceneSource -------------------------------------------------------------------------------

SceneSource::SceneSource(std::string name, std::function<TextInput()> open)
    : sceneName(std::move(name)), openInput(std::move(open)) {}

SceneSource SceneSource::file(const std::string& path) {
  return {path, [path] { return TextInput::fromFile(path); }};
}

SceneSource SceneSource::text(std::string_view text, std::string name) {
  return {std::move(name), [text] { return TextInput::fromText(text); }};
}

SceneSource SceneSource::descriptor(int descriptor, const std::string& name) {
  return {name, [descriptor, name] { return TextInput::fromDescriptor(descriptor, name); }};
}

SceneSource SceneSource::function(TextInput::Read read, std::string name) {
  return {std::move(name), [read = std::move(read)] {
            TextInput input;
            input.read = read;
            return input;
          }};
}

// ---- forEachObject -----------------------------------------------------------------------------

namespace {

bool isKept(ObjectFate fate) {
  return fate == ObjectFate::kKeep || fate == ObjectFate::kKeepAndStop;
}

bool isLast(ObjectFate fate) {
  return fate == ObjectFate::kDropAndStop || fate == ObjectFate::kKeepAndStop;
}

// The next object; null at the end, and after an error, which is noted.
ObjectAST* nextObject(ObjectStream& stream, Scene::Parts& parts, const SceneSource& source,
                      SceneError& error) {
  try {
    return stream.next();
  } catch (const ObjectStream::Unreadable& failure) {
    error = Scene::Parts::unreadable(failure.message, source.name());
    return nullptr;
  } catch (const InvalidSyntaxException& failure) {
    parts.parser.setError(failure.message);
  } catch (const InvalidSourceFile& failure) {
    parts.parser.setError(failure.message);
  }
  error = parts.invalidText();
  return nullptr;
}

void readObjects(Scene::Parts& parts, const SceneSource& source, const ObjectCallback& callback,
                 StreamResult& result) {
  ObjectStream stream(parts.parser);
  while (!result.stopped) {
    const bool isTime = result.objects > 0 && result.objects % ParserState::kObjectsAtATime == 0;
    if (parts.parser.onProgress && isTime) parts.parser.onProgress(parts.reader.bytesRead());
    ObjectAST* object = nextObject(stream, parts, source, result.error);
    if (object == nullptr) return;
    ++result.objects;
    ObjectFate fate;
    try {
      fate = callback(*object);
    } catch (...) {
      stream.drop(object);
      throw;
    }
    if (isKept(fate)) {
      stream.keep(object, parts.program.get());
    } else {
      stream.drop(object);
    }
    result.stopped = isLast(fate);
  }
}

}  // namespace

StreamResult forEachObject(const SceneSource& source, const ObjectCallback& callback,
                           const StreamOptions& options) {
  const ExclusiveUse use;
  StreamResult result;
  auto parts = std::make_unique<Scene::Parts>();
  const SharedSpellings::Use sharing(parts->parser.spellings);
  parts->apply(options);
  parts->program.reset(new ProgramAST);
  bool isOpen = false;
  try {
    parts->reader.openStream(source._open(), source.name().c_str(), options.windowBytes);
    isOpen = true;
  } catch (const InvalidSourceFile& failure) {
    result.error = Scene::Parts::unreadable(failure.message, source.name());
  }
  if (isOpen) readObjects(*parts, source, callback, result);
  result.bytes = parts->reader.bytesRead();
  if (isOpen) parts->scanner.closeStream();
  result.kept = Scene(std::move(parts));
  return result;
}

}  // namespace Kelp
