// The nodes of a model, with what moves them, and its cameras and lights.
#include <assimp/commonMetaData.h>

#include <string_view>
#include <utility>

#include "cli/import/modelscene.h"

namespace KelpCli {

namespace {

const char* kindOf(aiLightSourceType type) {
  switch (type) {
    case aiLightSource_DIRECTIONAL:
      return "directional";
    case aiLightSource_POINT:
      return "point";
    case aiLightSource_SPOT:
      return "spot";
    case aiLightSource_AMBIENT:
      return "ambient";
    case aiLightSource_AREA:
      return "area";
    default:
      return "unknown";
  }
}

bool hasPlace(const aiLight& light) {
  return light.mType != aiLightSource_DIRECTIONAL && light.mType != aiLightSource_AMBIENT;
}

bool hasDirection(const aiLight& light) {
  return light.mType == aiLightSource_DIRECTIONAL || light.mType == aiLightSource_SPOT ||
         light.mType == aiLightSource_AREA;
}

// Where cameras have no place but that of their node, which Assimp gives a second time.
bool isGltf(const aiScene& scene) {
  aiString format;
  return scene.mMetaData != nullptr && scene.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, format) &&
         std::string_view(format.C_Str()).starts_with("glTF2");
}

}  // namespace

// ---- nodes -------------------------------------------------------------------------------------

void ModelScene::_writeNodes() {
  for (const ModelNames::Node& node : names.nodes) _writeNode(node);
}

void ModelScene::_writeNode(const ModelNames::Node& node) {
  SceneObject object("Node", node.name);
  _addLabel(object, node.name, node.node->mName);
  if (node.parent != nullptr) object.add("parent", Values::reference(node.parent->name));
  _addMeshes(object, *node.node);
  object.add("position", _transform(node.node->mTransformation));
  if (const auto channel = channels.find(&node); channel != channels.end()) {
    _addChannel(object, *channel->second);
  }
  sink(object.object());
}

// One mesh and its material, or lists of both, element by element.
void ModelScene::_addMeshes(SceneObject& object, const aiNode& node) {
  std::vector<Value> meshes;
  std::vector<Value> materials;
  for (unsigned i = 0; i < node.mNumMeshes; ++i) {
    const unsigned mesh = node.mMeshes[i];
    const unsigned material = scene.mMeshes[mesh]->mMaterialIndex;
    meshes.push_back(Values::reference(names.meshes[mesh]));
    if (material < names.materials.size()) {
      materials.push_back(Values::reference(names.materials[material]));
    }
  }
  const auto add = [&](const char* property, std::vector<Value> elements) {
    if (elements.empty()) return;
    const bool isOne = elements.size() == 1;
    object.add(property, isOne ? std::move(elements.front()) : values.list(std::move(elements)));
  };
  add("geometry", std::move(meshes));
  add("material", std::move(materials));
}

Value ModelScene::_transform(const aiMatrix4x4& m) {
  if (m.d1 != 0.0F || m.d2 != 0.0F || m.d3 != 0.0F || m.d4 != 1.0F) {
    ++leftOut["projective rows of transforms"];
  }
  return values.transform({{m.a1, m.a2, m.a3}, {m.b1, m.b2, m.b3}, {m.c1, m.c2, m.c3}},
                          {m.a4, m.b4, m.c4});
}

// ---- what moves them ---------------------------------------------------------------------------

template <class Key, class MakeValue>
void ModelScene::_addKeys(SceneObject& object, const char* property, const Key* keys,
                          unsigned count, const MakeValue& makeValue) {
  if (count == 0) return;
  Interpolation table;
  for (unsigned i = 0; i < count; ++i) {
    table.add(values.number(_frame(keys[i].mTime)), makeValue(keys[i].mValue));
  }
  object.add(property, table.take());
}

void ModelScene::_addChannel(SceneObject& object, const aiNodeAnim& channel) {
  const auto vector = [this](const aiVector3D& v) { return _vector(v); };
  const auto quaternion = [this](const aiQuaternion& q) {
    return values.acolor({q.x, q.y, q.z, q.w});
  };
  _addKeys(object, "translation", channel.mPositionKeys, channel.mNumPositionKeys, vector);
  _addKeys(object, "rotation", channel.mRotationKeys, channel.mNumRotationKeys, quaternion);
  _addKeys(object, "scale", channel.mScalingKeys, channel.mNumScalingKeys, vector);
}

// ---- cameras and lights ------------------------------------------------------------------------

// Cameras and lights lie in the space of the node that has their name.
void ModelScene::_addParent(SceneObject& object, const aiString& nodeName) {
  const ModelNames::Node* node = names.find(nodeName);
  if (node != nullptr) object.add("parent", Values::reference(node->name));
}

void ModelScene::_writeCameras() {
  for (unsigned i = 0; i < scene.mNumCameras; ++i) _writeCamera(*scene.mCameras[i]);
}

// It looks along the negative z axis of its transform, and y is up.
void ModelScene::_writeCamera(const aiCamera& camera) {
  const std::string name = names.identifiers.add(camera.mName.C_Str(), "camera");
  SceneObject object("Camera", name);
  _addParent(object, camera.mName);
  aiVector3D back = aiVector3D() - camera.mLookAt;  // without zeros that are negative
  back.NormalizeSafe();
  aiVector3D right = camera.mUp ^ back;
  right.NormalizeSafe();
  const aiVector3D up = back ^ right;
  const aiVector3D at = isGltf(scene) ? aiVector3D() : camera.mPosition;
  object.add(
      "position",
      values.transform({{right.x, up.x, back.x}, {right.y, up.y, back.y}, {right.z, up.z, back.z}},
                       {at.x, at.y, at.z}));
  object.add("fov", values.number(camera.mHorizontalFOV));
  object.add("near", values.number(camera.mClipPlaneNear));
  object.add("far", values.number(camera.mClipPlaneFar));
  if (camera.mAspect != 0.0F) object.add("aspect", values.number(camera.mAspect));
  if (camera.mOrthographicWidth != 0.0F) {
    object.add("half_width", values.number(camera.mOrthographicWidth));
  }
  sink(object.object());
}

void ModelScene::_writeLights() {
  for (unsigned i = 0; i < scene.mNumLights; ++i) _writeLight(*scene.mLights[i]);
}

void ModelScene::_writeLight(const aiLight& light) {
  const std::string name = names.identifiers.add(light.mName.C_Str(), "light");
  SceneObject object("Light", name);
  _addParent(object, light.mName);
  object.add("kind", Values::text(kindOf(light.mType)));
  const bool isAmbient = light.mType == aiLightSource_AMBIENT;
  const aiColor3D& color = isAmbient ? light.mColorAmbient : light.mColorDiffuse;
  const auto addOther = [&](const char* property, const aiColor3D& other) {
    if (other != color && !other.IsBlack()) object.add(property, _color(other));
  };
  object.add("color", _color(color));
  addOther("specular", light.mColorSpecular);
  addOther("ambient", light.mColorAmbient);
  if (hasDirection(light)) object.add("direction", _vector(light.mDirection));
  if (hasPlace(light)) {
    object.add("position", _vector(light.mPosition));
    object.add("attenuation", values.vector({light.mAttenuationConstant, light.mAttenuationLinear,
                                             light.mAttenuationQuadratic}));
  }
  if (light.mType == aiLightSource_SPOT) {
    object.add("inner_angle", values.number(light.mAngleInnerCone));
    object.add("outer_angle", values.number(light.mAngleOuterCone));
  }
  if (light.mType == aiLightSource_AREA) {
    object.add("size", values.vector({light.mSize.x, light.mSize.y, 0.0F}));
    object.add("up", _vector(light.mUp));
  }
  sink(object.object());
}

}  // namespace KelpCli
