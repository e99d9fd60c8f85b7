// forEachObject: scenes larger than memory, object by object.
//
//     const auto source = Kelp::SceneSource::file("city.scene");
//     const auto result = Kelp::forEachObject(source, [](const Kelp::ObjectAST& object) {
//       return isWanted(object) ? Kelp::ObjectFate::kKeep : Kelp::ObjectFate::kDrop;
//     });
//     if (!result) std::cerr << result.error << '\n';
//     for (const Kelp::ObjectAST& object : result.kept.objects()) ...
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "kelp/scene.h"
#include "kelp/source/textinput.h"

namespace Kelp {

/// What to read a scene from. Nothing is opened before it is read.
class SceneSource {
 public:
  /// A file, or a pipe or device that has a path.
  static SceneSource file(const std::string& path);

  /// A text in memory, which is not copied and outlives the reading. The name stands in messages,
  /// and includes are looked up beside it.
  static SceneSource text(std::string_view text, std::string name = "<text>");

  /// An open file, pipe or socket, which stays the caller's and is read from where it stands.
  static SceneSource descriptor(int descriptor, const std::string& name);

  /// Whatever the function delivers. What it throws passes through, but InvalidSourceFile, which
  /// becomes the error of the scene.
  static SceneSource function(TextInput::Read read, std::string name);

  /// How it is called in messages.
  const std::string& name() const { return sceneName; }

  /// Opens it. Throws InvalidSourceFile.
  TextInput _open() const { return openInput(); }

 private:
  SceneSource(std::string name, std::function<TextInput()> open);

  std::string sceneName;
  std::function<TextInput()> openInput;
};

/// What becomes of an object.
enum class ObjectFate {
  kDrop,         ///< it is released at once
  kKeep,         ///< it goes to StreamResult::kept
  kDropAndStop,  ///< as kDrop, and no more is read
  kKeepAndStop,
};

/// Called with every object. The object, its nodes and the texts that they refer to are good until
/// it returns; those of an object that is kept live on as part of StreamResult::kept. What it
/// throws passes through forEachObject.
using ObjectCallback = std::function<ObjectFate(const ObjectAST& object)>;

struct StreamOptions : SceneOptions {
  /// How much of the text is in memory at a time. Where objects are longer it grows: up to 64 times
  /// that to read several of them at once, beyond that to at most twice what the longest needs.
  size_t windowBytes = size_t{1} << 18U;
};

/// How reading a scene object by object went.
struct StreamResult {
  /// The same as Scene::error() of the whole scene. Of a line that is longer than 65,536 bytes it
  /// may hold a part only, the token in it.
  SceneError error;
  /// A scene of the objects that were kept, also when an error or a stop came behind them. It owns
  /// copies of their long texts.
  Scene kept;
  int64_t objects = 0;   ///< the callback was called with
  int64_t bytes = 0;     ///< read so far, those of included files again for every include
  bool stopped = false;  ///< the callback asked for it

  /// True when the scene has no error as far as it was read.
  explicit operator bool() const { return error.kind == SceneError::Kind::kNone; }
};

/// Reads a scene object by object, in the order of the text, while only a part of the text is in
/// memory. Included files are in memory while they are read. The objects are those of the text: two
/// of the same type and name are two, though a kept one is merged into an older one in `kept` as in
/// any scene. An error ends the reading behind the objects before it; a source that cannot be read
/// any further is such an error, too. limits.maxBytes counts what is known of the source's size
/// beforehand, and of pipes what has been read. Throws what the callback and the source's function
/// throw, ExceptionMsg and std::bad_alloc.
StreamResult forEachObject(const SceneSource& source, const ObjectCallback& callback,
                           const StreamOptions& options = {});

}  // namespace Kelp
