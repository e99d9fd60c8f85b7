// Model: a file read by Assimp, which is loaded when the first model is wanted, so that no other
// command waits for it or needs it.
#pragma once

#include <assimp/material.h>
#include <assimp/scene.h>

#include <string>

namespace KelpCli {

/// A model could not be read, or not become a scene.
struct ModelFailure {
  std::string message;
};

/// The functions of Assimp that are called, as its own headers declare them.
struct Assimp {
  /// The one that is loaded, for as long as the program runs. Throws ModelFailure.
  static const Assimp& library();

  const aiScene* (*importFile)(const char* file, unsigned flags);
  void (*releaseImport)(const aiScene* scene);
  const char* (*errorString)();
  decltype(&aiGetMaterialString) materialString;
  decltype(&aiGetMaterialColor) materialColor;
  decltype(&aiGetMaterialFloatArray) materialFloats;
  decltype(&aiGetMaterialIntegerArray) materialIntegers;
  decltype(&aiGetMaterialTextureCount) materialTextureCount;
  decltype(&aiGetMaterialTexture) materialTexture;
};

class Model {
 public:
  /// Reads a regular file. Its faces are triangles, apart from points and lines, and their indices
  /// are in range. Throws ModelFailure, and std::bad_alloc when memory runs out.
  explicit Model(const std::string& file);
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;
  ~Model();

  const aiScene& scene() const { return *read; }

 private:
  const aiScene* read;
};

}  // namespace KelpCli
