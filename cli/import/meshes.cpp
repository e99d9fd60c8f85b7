// The meshes of a model.
#include <algorithm>
#include <climits>

#include "cli/import/assimp.h"
#include "cli/import/modelscene.h"

namespace KelpCli {

namespace {

// Sets of coordinates and colours are numbered from the second on.
std::string suffixOf(unsigned set) { return set == 0 ? "" : std::to_string(set + 1); }

}  // namespace

void ModelScene::_writeMeshes() {
  for (unsigned i = 0; i < scene.mNumMeshes; ++i) _writeMesh(*scene.mMeshes[i], names.meshes[i]);
}

void ModelScene::_writeMesh(const aiMesh& mesh, const std::string& name) {
  const unsigned count = mesh.mNumVertices;
  if (count > INT_MAX || mesh.mNumFaces > INT_MAX / 3) {
    throw ModelFailure{"mesh \"" + name + "\" is larger than a list can be"};
  }
  SceneObject object("Mesh", name);
  _addLabel(object, name, mesh.mName);
  _addVectors(object, "vertices", mesh.mVertices, count);
  _addFaces(object, mesh);
  _addVectors(object, "normals", mesh.mNormals, count);
  _addVectors(object, "tangents", mesh.mTangents, count);
  _addVectors(object, "bitangents", mesh.mBitangents, count);
  for (unsigned set = 0; set < AI_MAX_NUMBER_OF_TEXTURECOORDS; ++set) {
    _addVectors(object, ("uvs" + suffixOf(set)).c_str(), mesh.mTextureCoords[set], count);
  }
  for (unsigned set = 0; set < AI_MAX_NUMBER_OF_COLOR_SETS; ++set) {
    _addColors(object, suffixOf(set), mesh.mColors[set], count);
  }
  sink(object.object());
}

void ModelScene::_addVectors(SceneObject& object, const char* property, const aiVector3D* vectors,
                             unsigned count) {
  if (vectors == nullptr) return;
  object.add(property, values.typedList<Kelp::Vector>(count, [&](size_t i) {
    const aiVector3D& v = vectors[i];
    return Kelp::Vector{values.finite(v.x), values.finite(v.y), values.finite(v.z)};
  }));
}

void ModelScene::_addColors(SceneObject& object, const std::string& suffix, const aiColor4D* colors,
                            unsigned count) {
  if (colors == nullptr) return;
  object.add("colors" + suffix, values.typedList<Kelp::Color>(count, [&](size_t i) {
    const aiColor4D& c = colors[i];
    return Kelp::Color{values.finite(c.r), values.finite(c.g), values.finite(c.b)};
  }));
  if (std::all_of(colors, colors + count, [](const aiColor4D& c) { return c.a == 1.0F; })) return;
  object.add("alphas" + suffix,
             values.typedList<float>(count, [&](size_t i) { return values.finite(colors[i].a); }));
}

void ModelScene::_addFaces(SceneObject& object, const aiMesh& mesh) {
  const auto isTriangle = [](const aiFace& face) { return face.mNumIndices == 3; };
  const aiFace* face = mesh.mFaces;
  const aiFace* const end = face + mesh.mNumFaces;
  const auto triangles = static_cast<size_t>(std::count_if(face, end, isTriangle));
  leftOut["points and lines"] += static_cast<int64_t>(mesh.mNumFaces - triangles);
  object.add("faces", values.typedList<int>(triangles * 3, [&](size_t i) {
    if (i % 3 == 0) face = std::find_if(i == 0 ? face : face + 1, end, isTriangle);
    return static_cast<int>(face->mIndices[i % 3]);
  }));
}

}  // namespace KelpCli
