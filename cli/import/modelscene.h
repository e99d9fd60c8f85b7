// How a model becomes the objects of a scene: textures, materials, meshes, nodes, cameras, lights.
//
// Objects are handed on as they are made, each released before the next one: of a large model there
// is never a whole second copy.
#pragma once

#include <assimp/anim.h>
#include <assimp/scene.h>

#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "cli/import/identifiers.h"
#include "cli/import/values.h"

namespace KelpCli {

struct ModelOptions {
  std::string animation;         ///< its name or number, from 1; empty: the first
  double framesPerSecond = 0.0;  ///< 0: a frame is what the model counts time in
};

using ObjectSink = std::function<void(const Kelp::ObjectAST&)>;

/// The names of what refers to each other.
struct ModelNames {
  struct Node {
    const aiNode* node;
    const Node* parent;  ///< null for the root
    std::string name;
  };

  explicit ModelNames(const aiScene& scene);

  /// The first node of that name in the model, null when there is none.
  const Node* find(const aiString& name) const;

  Identifiers identifiers;
  std::vector<Node> nodes;  ///< parents before their children, in the order of the model
  std::vector<std::string> materials;
  std::vector<std::string> meshes;

 private:
  std::unordered_map<std::string, const Node*> nodesByName;
};

/// A model on its way.
class ModelScene {
 public:
  /// The model stays the caller's and lives as long as this. Throws ModelFailure when there is no
  /// such animation.
  ModelScene(const aiScene& model, const ModelOptions& modelOptions, ObjectSink objectSink);

  /// Throws ModelFailure, what the sink throws, and what the library throws when memory runs out.
  void write();

  /// What a scene does not say of the model, each with its number; to be asked after write().
  std::vector<std::string> notes() const;

 private:
  void _writeSettings();
  void _writeMaterials();
  bool _isMadeUp(unsigned material) const;
  void _writeMeshes();
  void _writeMesh(const aiMesh& mesh, const std::string& name);
  void _addVectors(SceneObject& object, const char* property, const aiVector3D* vectors,
                   unsigned count);
  void _addColors(SceneObject& object, const std::string& suffix, const aiColor4D* colors,
                  unsigned count);
  void _addFaces(SceneObject& object, const aiMesh& mesh);
  void _writeNodes();
  void _writeNode(const ModelNames::Node& node);
  void _addMeshes(SceneObject& object, const aiNode& node);
  void _addChannel(SceneObject& object, const aiNodeAnim& channel);
  template <class Key, class MakeValue>
  void _addKeys(SceneObject& object, const char* property, const Key* keys, unsigned count,
                const MakeValue& makeValue);
  void _writeCameras();
  void _writeCamera(const aiCamera& camera);
  void _writeLights();
  void _writeLight(const aiLight& light);
  void _addParent(SceneObject& object, const aiString& nodeName);
  void _countWhatIsLeftOut();

  static void _addLabel(SceneObject& object, const std::string& name, const aiString& original);
  Value _transform(const aiMatrix4x4& matrix);
  Value _vector(const aiVector3D& v) { return values.vector({v.x, v.y, v.z}); }
  Value _color(const aiColor3D& c) { return values.color({c.r, c.g, c.b}); }
  double _frame(double ticks) const;

  const aiScene& scene;
  const ModelOptions& options;
  ObjectSink sink;
  Values values;
  ModelNames names;
  const aiAnimation* animation = nullptr;  // the one that is taken, if there is one
  std::unordered_map<const ModelNames::Node*, const aiNodeAnim*> channels;  // of that
  std::map<std::string, int64_t> leftOut;                                   // how many of what
};

}  // namespace KelpCli
