#include "cli/import/materials.h"

#include <string_view>
#include <utility>

namespace KelpCli {

namespace {

// Of rows with one property the first that a material has is taken.
struct TextureRow {
  const char* property;
  aiTextureType type;
};
constexpr TextureRow kTextures[] = {
    {"diffuse", aiTextureType_BASE_COLOR},
    {"diffuse", aiTextureType_DIFFUSE},
    {"specular", aiTextureType_SPECULAR},
    {"ambient", aiTextureType_AMBIENT},
    {"emission", aiTextureType_EMISSION_COLOR},
    {"emission", aiTextureType_EMISSIVE},
    {"reflect", aiTextureType_REFLECTION},
    {"opacity", aiTextureType_OPACITY},
    {"metallic", aiTextureType_METALNESS},
    {"roughness", aiTextureType_DIFFUSE_ROUGHNESS},
    {"shininess", aiTextureType_SHININESS},
    {"sheen", aiTextureType_SHEEN},
    {"clearcoat", aiTextureType_CLEARCOAT},
    {"transmission", aiTextureType_TRANSMISSION},
    {"normals", aiTextureType_NORMAL_CAMERA},
    {"normals", aiTextureType_NORMALS},
    {"bump", aiTextureType_HEIGHT},
    {"displacement", aiTextureType_DISPLACEMENT},
    {"occlusion", aiTextureType_AMBIENT_OCCLUSION},
    {"occlusion", aiTextureType_LIGHTMAP},
    {"texture", aiTextureType_UNKNOWN},
};

struct ValueRow {
  const char* property;
  const char* key;
  unsigned type;
  unsigned index;
};
constexpr ValueRow kColours[] = {
    {"diffuse", AI_MATKEY_BASE_COLOR},
    {"diffuse", AI_MATKEY_COLOR_DIFFUSE},
    {"specular", AI_MATKEY_COLOR_SPECULAR},
    {"ambient", AI_MATKEY_COLOR_AMBIENT},
    {"emission", AI_MATKEY_COLOR_EMISSIVE},
    {"reflect", AI_MATKEY_COLOR_REFLECTIVE},
    {"transparent", AI_MATKEY_COLOR_TRANSPARENT},
    {"sheen", AI_MATKEY_SHEEN_COLOR_FACTOR},
};
constexpr ValueRow kNumbers[] = {
    {"opacity", AI_MATKEY_OPACITY},
    {"metallic", AI_MATKEY_METALLIC_FACTOR},
    {"roughness", AI_MATKEY_ROUGHNESS_FACTOR},
    {"glossiness", AI_MATKEY_GLOSSINESS_FACTOR},
    {"shininess", AI_MATKEY_SHININESS},
    {"shininess_strength", AI_MATKEY_SHININESS_STRENGTH},
    {"specular_strength", AI_MATKEY_SPECULAR_FACTOR},
    {"emission_strength", AI_MATKEY_EMISSIVE_INTENSITY},
    {"reflectivity", AI_MATKEY_REFLECTIVITY},
    {"ior", AI_MATKEY_REFRACTI},
    {"anisotropy", AI_MATKEY_ANISOTROPY_FACTOR},
    {"clearcoat", AI_MATKEY_CLEARCOAT_FACTOR},
    {"clearcoat_roughness", AI_MATKEY_CLEARCOAT_ROUGHNESS_FACTOR},
    {"sheen_roughness", AI_MATKEY_SHEEN_ROUGHNESS_FACTOR},
    {"transmission", AI_MATKEY_TRANSMISSION_FACTOR},
    {"bump_amount", AI_MATKEY_BUMPSCALING},
};

std::string_view stemOf(std::string_view path) {
  const size_t folder = path.find_last_of("/\\");
  if (folder != std::string_view::npos) path.remove_prefix(folder + 1);
  return path.substr(0, path.rfind('.'));
}

// What the textures of materials say, and where they lie.
struct Texture {
  std::string path;
  bool isEmbedded = false;
  unsigned channel = 0;
  aiUVTransform placement;
  aiTextureMapMode modes[2] = {aiTextureMapMode_Wrap, aiTextureMapMode_Wrap};

  Texture(const aiScene& scene, const Assimp& assimp, const aiMaterial& material,
          aiTextureType type) {
    aiString given;
    assimp.materialTexture(&material, type, 0, &given, nullptr, &channel, nullptr, nullptr, modes,
                           nullptr);
    unsigned floats = sizeof placement / sizeof(ai_real);
    ai_real numbers[sizeof placement / sizeof(ai_real)];
    if (assimp.materialFloats(&material, AI_MATKEY_UVTRANSFORM(type, 0), numbers, &floats) ==
        aiReturn_SUCCESS) {
      placement.mTranslation = {numbers[0], numbers[1]};
      placement.mScaling = {numbers[2], numbers[3]};
      placement.mRotation = numbers[4];
    }
    const aiTexture* embedded = scene.GetEmbeddedTexture(given.C_Str());
    isEmbedded = embedded != nullptr;
    const bool hasName = isEmbedded && embedded->mFilename.length > 0;
    path = hasName ? embedded->mFilename.C_Str() : given.C_Str();
  }

  void addTo(SceneObject& object, Values& values) const {
    object.add(isEmbedded ? "embedded" : "file", Values::text(path));
    if (channel != 0) object.add("channel", values.integer(channel));
    const auto addPair = [&](const char* property, const aiVector2D& pair, float usual) {
      if (pair.x == usual && pair.y == usual) return;
      std::vector<Value> numbers;
      numbers.push_back(values.number(pair.x));
      numbers.push_back(values.number(pair.y));
      object.add(property, values.list(std::move(numbers)));
    };
    addPair("tile", placement.mScaling, 1.0F);
    addPair("shift", placement.mTranslation, 0.0F);
    if (placement.mRotation != 0.0F) object.add("turn", values.number(placement.mRotation));
    addMode("wrap_u", modes[0], object);
    addMode("wrap_v", modes[1], object);
  }

 private:
  static void addMode(const char* property, aiTextureMapMode mode, SceneObject& object) {
    if (mode == aiTextureMapMode_Clamp) object.add(property, Values::text("clamp"));
    if (mode == aiTextureMapMode_Mirror) object.add(property, Values::text("mirror"));
    if (mode == aiTextureMapMode_Decal) object.add(property, Values::text("decal"));
  }
};

// Equal for textures that say the same.
std::string keyOf(const Texture& texture) {
  std::string key = texture.path;
  key.append(1, '\0').append(std::to_string(texture.channel));
  const aiUVTransform& placement = texture.placement;
  for (const float each : {placement.mTranslation.x, placement.mTranslation.y, placement.mScaling.x,
                           placement.mScaling.y, placement.mRotation}) {
    key.append(1, ' ').append(std::to_string(each));
  }
  for (const aiTextureMapMode mode : texture.modes) key.append(1, ' ').append(std::to_string(mode));
  return key;
}

}  // namespace

std::string MaterialWriter::_nameTexture(const aiMaterial& material, aiTextureType type) {
  const Texture texture(scene, assimp, material, type);
  const auto [place, isNew] = textures.try_emplace(keyOf(texture));
  if (isNew) {
    const bool isNumber = texture.path.starts_with('*');
    place->second = identifiers.add(isNumber ? "" : stemOf(texture.path), "texture");
    SceneObject object("Texture", place->second);
    texture.addTo(object, values);
    sink(object.object());
  }
  return place->second;
}

void MaterialWriter::_addTextures(const aiMaterial& material, SceneObject& object) {
  std::set<std::string> used;
  for (const TextureRow& row : kTextures) {
    const unsigned layers = assimp.materialTextureCount(&material, row.type);
    if (layers == 0 || textured.contains(row.property)) continue;
    layersLeftOut += layers - 1;
    const std::string texture = _nameTexture(material, row.type);
    // Some readers give what they have told already as of unknown use once more.
    if (row.type == aiTextureType_UNKNOWN && used.contains(texture)) continue;
    used.insert(texture);
    textured.insert(row.property);
    object.add(row.property, Values::reference(texture));
  }
}

void MaterialWriter::_addValue(SceneObject& object, const char* property, Value value) {
  if (!valued.insert(property).second) return;
  object.add(textured.contains(property) ? std::string(property) + "_factor" : property,
             std::move(value));
}

void MaterialWriter::_addColours(const aiMaterial& material, SceneObject& object) {
  for (const ValueRow& row : kColours) {
    aiColor4D colour;
    if (assimp.materialColor(&material, row.key, row.type, row.index, &colour) ==
        aiReturn_SUCCESS) {
      _addValue(object, row.property, values.color({colour.r, colour.g, colour.b}));
    }
  }
}

void MaterialWriter::_addNumbers(const aiMaterial& material, SceneObject& object) {
  for (const ValueRow& row : kNumbers) {
    ai_real number = 0;
    unsigned count = 1;
    if (assimp.materialFloats(&material, row.key, row.type, row.index, &number, &count) ==
        aiReturn_SUCCESS) {
      _addValue(object, row.property, values.number(number));
    }
  }
  int twoSided = 0;
  unsigned count = 1;
  if (assimp.materialIntegers(&material, AI_MATKEY_TWOSIDED, &twoSided, &count) ==
          aiReturn_SUCCESS &&
      twoSided != 0) {
    object.add("two_sided", values.integer(1));
  }
}

void MaterialWriter::write(const aiMaterial& material, SceneObject& object) {
  textured.clear();
  valued.clear();
  _addTextures(material, object);
  _addColours(material, object);
  _addNumbers(material, object);
  sink(object.object());
}

}  // namespace KelpCli
