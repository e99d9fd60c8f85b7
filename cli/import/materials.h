// Materials of a model and the textures that they share.
#pragma once

#include <map>
#include <set>
#include <string>

#include "cli/import/assimp.h"
#include "cli/import/identifiers.h"
#include "cli/import/modelscene.h"

namespace KelpCli {

/// Writes materials one by one, each behind the textures that nobody before it had.
class MaterialWriter {
 public:
  MaterialWriter(const aiScene& model, Identifiers& allNames, Values& allValues,
                 const ObjectSink& objectSink)
      : scene(model), identifiers(allNames), values(allValues), sink(objectSink) {}

  /// Fills the object with what the material says, and hands it on.
  void write(const aiMaterial& material, SceneObject& object);

  int64_t layersLeftOut = 0;  ///< textures that lie over others

 private:
  void _addTextures(const aiMaterial& material, SceneObject& object);
  void _addColours(const aiMaterial& material, SceneObject& object);
  void _addNumbers(const aiMaterial& material, SceneObject& object);
  void _addValue(SceneObject& object, const char* property, Value value);
  std::string _nameTexture(const aiMaterial& material, aiTextureType type);

  const Assimp& assimp = Assimp::library();
  const aiScene& scene;
  Identifiers& identifiers;
  Values& values;
  const ObjectSink& sink;
  std::map<std::string, std::string> textures;  // names of textures by what they say
  std::set<std::string> textured;               // properties of the material that are textures
  std::set<std::string> valued;                 // and those that are values
};

}  // namespace KelpCli
