#include "cli/import/modelscene.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "cli/import/assimp.h"
#include "cli/import/materials.h"

namespace KelpCli {

namespace {

// The rate of animations that give none.
constexpr double kUsualRate = 25.0;

double rateOf(const aiAnimation& animation) {
  return animation.mTicksPerSecond > 0.0 ? animation.mTicksPerSecond : kUsualRate;
}

// Throws when there is none of that name or number.
const aiAnimation* chooseAnimation(const aiScene& scene, const std::string& wanted) {
  if (wanted.empty()) return scene.mNumAnimations > 0 ? scene.mAnimations[0] : nullptr;
  for (unsigned i = 0; i < scene.mNumAnimations; ++i) {
    if (wanted == scene.mAnimations[i]->mName.C_Str()) return scene.mAnimations[i];
  }
  unsigned number = 0;
  const char* end = wanted.data() + wanted.size();
  const auto result = std::from_chars(wanted.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end || number == 0 ||
      number > scene.mNumAnimations) {
    throw ModelFailure{
        fmt::format("none of its {} animations is \"{}\"", scene.mNumAnimations, wanted)};
  }
  return scene.mAnimations[number - 1];
}

// Below the root in the order of the model, without recursion: chains of nodes have any length.
std::vector<std::pair<const aiNode*, const aiNode*>> nodesWithParents(const aiNode* root) {
  std::vector<std::pair<const aiNode*, const aiNode*>> found;
  std::vector<std::pair<const aiNode*, const aiNode*>> waiting;
  if (root != nullptr) waiting.emplace_back(root, nullptr);
  while (!waiting.empty()) {
    const auto next = waiting.back();
    waiting.pop_back();
    found.push_back(next);
    const aiNode* node = next.first;
    for (unsigned i = node->mNumChildren; i-- > 0;) waiting.emplace_back(node->mChildren[i], node);
  }
  return found;
}

}  // namespace

// ---- names -------------------------------------------------------------------------------------

// Where names are doubled, it is nodes that keep theirs, then materials.
ModelNames::ModelNames(const aiScene& scene) {
  const auto found = nodesWithParents(scene.mRootNode);
  std::unordered_map<const aiNode*, const Node*> byNode;
  nodes.reserve(found.size());
  for (const auto& [node, parent] : found) {
    nodes.push_back({node, parent != nullptr ? byNode.at(parent) : nullptr,
                     identifiers.add(node->mName.C_Str(), "node")});
    byNode.emplace(node, &nodes.back());
    nodesByName.try_emplace(node->mName.C_Str(), &nodes.back());
  }
  for (unsigned i = 0; i < scene.mNumMaterials; ++i) {
    aiString name;
    Assimp::library().materialString(scene.mMaterials[i], AI_MATKEY_NAME, &name);
    materials.push_back(identifiers.add(name.C_Str(), "material"));
  }
  for (unsigned i = 0; i < scene.mNumMeshes; ++i) {
    meshes.push_back(identifiers.add(scene.mMeshes[i]->mName.C_Str(), "mesh"));
  }
}

const ModelNames::Node* ModelNames::find(const aiString& name) const {
  const auto found = nodesByName.find(name.C_Str());
  return found != nodesByName.end() ? found->second : nullptr;
}

// ---- the scene ---------------------------------------------------------------------------------

ModelScene::ModelScene(const aiScene& model, const ModelOptions& modelOptions,
                       ObjectSink objectSink)
    : scene(model),
      options(modelOptions),
      sink(std::move(objectSink)),
      names(model),
      animation(chooseAnimation(model, modelOptions.animation)) {
  if (animation == nullptr) return;
  for (unsigned i = 0; i < animation->mNumChannels; ++i) {
    const aiNodeAnim* channel = animation->mChannels[i];
    const ModelNames::Node* node = names.find(channel->mNodeName);
    if (node == nullptr || !channels.try_emplace(node, channel).second) {
      ++leftOut["animation channels without a node of their own"];
    }
  }
}

void ModelScene::write() {
  _writeSettings();
  _writeMaterials();
  _writeMeshes();
  _writeNodes();
  _writeCameras();
  _writeLights();
  _countWhatIsLeftOut();
}

std::vector<std::string> ModelScene::notes() const {
  std::vector<std::string> texts;
  for (const auto& [what, number] : leftOut) {
    if (number > 0) texts.push_back(fmt::format("left out: {} {}", number, what));
  }
  if (values.notFinite > 0) {
    texts.push_back(fmt::format("{} numbers that are not finite became 0", values.notFinite));
  }
  return texts;
}

void ModelScene::_countWhatIsLeftOut() {
  if (scene.mNumAnimations > 1) leftOut["other animations"] = scene.mNumAnimations - 1;
  for (unsigned i = 0; i < scene.mNumMeshes; ++i) {
    leftOut["bones of meshes"] += scene.mMeshes[i]->mNumBones;
    leftOut["morphed forms of meshes"] += scene.mMeshes[i]->mNumAnimMeshes;
  }
  if (animation == nullptr) return;
  leftOut["animation channels of meshes"] =
      int64_t{animation->mNumMeshChannels} + animation->mNumMorphMeshChannels;
}

void ModelScene::_writeSettings() {
  if (animation == nullptr) return;
  SceneObject settings("Settings", "");
  settings.add("first", values.integer(0));
  settings.add("last", values.number(_frame(animation->mDuration)));
  const bool isConverted = options.framesPerSecond > 0.0;
  settings.add("rate", values.number(isConverted ? options.framesPerSecond : rateOf(*animation)));
  if (animation->mName.length > 0) {
    settings.add("animation", Values::text(animation->mName.C_Str()));
  }
  sink(settings.object());
}

double ModelScene::_frame(double ticks) const {
  if (options.framesPerSecond <= 0.0) return ticks;
  return ticks * options.framesPerSecond / rateOf(*animation);
}

// Some readers add a material for meshes without one, whether there are such or not.
bool ModelScene::_isMadeUp(unsigned material) const {
  aiString name;
  Assimp::library().materialString(scene.mMaterials[material], AI_MATKEY_NAME, &name);
  return (name.length == 0 || name == aiString(AI_DEFAULT_MATERIAL_NAME)) &&
         std::none_of(scene.mMeshes, scene.mMeshes + scene.mNumMeshes,
                      [&](const aiMesh* mesh) { return mesh->mMaterialIndex == material; });
}

void ModelScene::_writeMaterials() {
  MaterialWriter writer(scene, names.identifiers, values, sink);
  for (unsigned i = 0; i < scene.mNumMaterials; ++i) {
    if (_isMadeUp(i)) continue;
    SceneObject object("Material", names.materials[i]);
    aiString name;
    Assimp::library().materialString(scene.mMaterials[i], AI_MATKEY_NAME, &name);
    _addLabel(object, names.materials[i], name);
    writer.write(*scene.mMaterials[i], object);
  }
  leftOut["textures over other textures"] = writer.layersLeftOut;
}

// The name as the model has it, where the object's is another one.
void ModelScene::_addLabel(SceneObject& object, const std::string& name, const aiString& original) {
  if (original.length > 0 && name != original.C_Str()) {
    object.add("label", Values::text(original.C_Str()));
  }
}

}  // namespace KelpCli
