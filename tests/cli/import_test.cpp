// kelp import.
#include <bit>
#include <cstdint>
#include <vector>

#include "tests/cli/program.h"

using KelpTest::Outcome;

#ifndef KELP_HAS_IMPORT

class ImportCommand : public KelpTest::ProgramTest {};

TEST_F(ImportCommand, WithoutAssimpSaysHowToGetIt) {
  write("a.stl", "solid a\nendsolid a\n");
  EXPECT_EQ(
      kelp("import -o a.scene a.stl"),
      (Outcome{2, "", "kelp: import needs Assimp: install libassimp-dev and build Kelp again\n"}));
  EXPECT_EQ(files(), "a.stl\n");
}

#else

namespace {

constexpr const char* kIdentity =
    "  position = Transform(Matrix(Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)), "
    "Vector(0, 0, 0));\n";

// Numbers as a URI of their bytes.
std::string uriOf(const std::vector<float>& numbers) {
  constexpr const char* kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::vector<uint32_t> bytes;
  for (const float number : numbers) {
    const auto bits = std::bit_cast<uint32_t>(number);
    for (const unsigned shift : {0U, 8U, 16U, 24U}) bytes.push_back(bits >> shift & 0xFFU);
  }
  const size_t count = bytes.size();
  bytes.resize((count + 2) / 3 * 3);
  std::string text;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const uint32_t triple = bytes[i] << 16U | bytes[i + 1] << 8U | bytes[i + 2];
    for (const unsigned shift : {18U, 12U, 6U, 0U}) text += kDigits[triple >> shift & 0x3FU];
  }
  for (size_t i = count; i < bytes.size(); ++i) text[text.size() - (i - count) - 1] = '=';
  return "\"data:application/octet-stream;base64," + text + "\"";
}

// glTF with three corners of a triangle (accessor 0), two times (1), two places (2), two
// quaternions (3); `rest` names members of the outermost object.
std::string gltf(const std::string& rest, float corner = 1.0F) {
  const std::vector<float> numbers = {0, 0,    0, corner, 0, 0,      0,    1,   0,  // corners
                                      0, 0.5F,                                      // times
                                      0, 0,    0, 0,      2, -0.25F,                // places
                                      0, 0,    0, 1,      0, 0,      0.6F, 0.8F};   // quaternions
  return R"({"asset": {"version": "2.0"}, "scene": 0, "buffers": [{"byteLength": 100, "uri": )" +
         uriOf(numbers) + R"(}], "bufferViews": [
           {"buffer": 0, "byteOffset": 0, "byteLength": 36},
           {"buffer": 0, "byteOffset": 36, "byteLength": 8},
           {"buffer": 0, "byteOffset": 44, "byteLength": 24},
           {"buffer": 0, "byteOffset": 68, "byteLength": 32}],
         "accessors": [
           {"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"},
           {"bufferView": 1, "componentType": 5126, "count": 2, "type": "SCALAR"},
           {"bufferView": 2, "componentType": 5126, "count": 2, "type": "VEC3"},
           {"bufferView": 3, "componentType": 5126, "count": 2, "type": "VEC4"}],
         )" +
         rest + "}";
}

// One mesh at one node, and what else the model or the node is to have.
std::string gltfNode(const std::string& node, const std::string& rest = "") {
  return gltf(R"("meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}],
      "scenes": [{"nodes": [0]}], "nodes": [{"name": "blade", "mesh": 0)" +
              node + "}]" + rest);
}

constexpr const char* kSpin = R"(, "animations": [
    {"name": "spin",
     "samplers": [{"input": 1, "output": 2}, {"input": 1, "output": 3}],
     "channels": [{"sampler": 0, "target": {"node": 0, "path": "translation"}},
                  {"sampler": 1, "target": {"node": 0, "path": "rotation"}}]},
    {"name": "rise", "samplers": [{"input": 1, "output": 2}],
     "channels": [{"sampler": 0, "target": {"node": 0, "path": "translation"}}]}])";

class ImportCommand : public KelpTest::ProgramTest {
 protected:
  // The scene that a model becomes: it reads back, and all that it refers to is there.
  std::string imported(const std::string& name, const std::string& text,
                       const std::string& notes = "") const {
    write(name, text);
    const Outcome outcome = kelp("import " + name);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, notes);
    write("imported.scene", outcome.out);
    EXPECT_EQ(kelp("check imported.scene"), (Outcome{0, "", ""}));
    EXPECT_EQ(kelp("format imported.scene").out, outcome.out);
    EXPECT_NE(kelp("stats --json imported.scene").out.find("\"danglingReferences\":0"),
              std::string::npos);
    return outcome.out;
  }

  // The value of a property of what was imported last, in one line.
  std::string shown(const std::string& name) const {
    return kelp("show imported.scene " + name + " | tr -s '\\n ' ' ' | sed 's/.*= //; s/; $//'")
        .out;
  }
};

}  // namespace

TEST_F(ImportCommand, ObjWithItsMaterials) {
  write("box.mtl",
        "newmtl oak (dark)\nKd 0.8 0.7 0.1\nKa 0 0 0\nKs 0 0 0\nNs 20\nd 0.5\n"
        "map_Kd textures/oak grain.png\n");
  const std::string scene = imported("box.obj",
                                     "mtllib box.mtl\no box\n"
                                     "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0.1 -0.2 1e-7\n"
                                     "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nvn 0 0 1\n"
                                     "usemtl oak (dark)\nf 1/1/1 2/2/1 3/3/1 4/4/1\n");
  EXPECT_EQ(
      scene,
      "Texture oak_grain {\n"
      "  file = \"textures/oak grain.png\";\n"
      "}\n\n"
      "Material oak__dark_ {\n"
      "  label = \"oak (dark)\";\n"
      "  diffuse = oak_grain;\n"
      "  diffuse_factor = Color(0.8, 0.7, 0.1);\n"
      "  specular = Color(0, 0, 0);\n"
      "  ambient = Color(0, 0, 0);\n"
      "  emission = Color(0, 0, 0);\n"
      "  transparent = Color(1, 1, 1);\n"
      "  opacity = 0.5;\n"
      "  shininess = 20;\n"
      "  ior = 1;\n"
      "  anisotropy = 0;\n"
      "}\n\n"
      "Mesh box_mesh {\n"
      "  label = \"box\";\n"
      "  vertices = ListVector(Vector(0, 0, 0), Vector(1, 0, 0), Vector(1, 1, 0), "
      "Vector(0.1, -0.2, 1e-7));\n"
      "  faces = ListInt(0, 1, 2, 0, 2, 3);\n"
      "  normals = ListVector(Vector(0, 0, 1), Vector(0, 0, 1), Vector(0, 0, 1), "
      "Vector(0, 0, 1));\n"
      "  uvs = ListVector(Vector(0, 0, 0), Vector(1, 0, 0), Vector(1, 1, 0), Vector(0, 1, 0));\n"
      "}\n\n"
      "Node box_obj {\n"
      "  label = \"box.obj\";\n" +
          std::string(kIdentity) +
          "}\n\n"
          "Node box {\n"
          "  parent = box_obj;\n"
          "  geometry = box_mesh;\n"
          "  material = oak__dark_;\n" +
          kIdentity + "}\n");
}

TEST_F(ImportCommand, PointsAndLinesAreLeftOutAndTold) {
  imported("a.obj", "o a\nv 0 0 0\nv 1 0 0\nv 0 1 0\nv 9 9 9\nl 1 4\nl 2 4\nf 1 2 3\n",
           "kelp: a.obj: left out: 2 points and lines\n");
  EXPECT_EQ(shown("a_mesh.faces"), "ListInt(0, 2, 3)");
  EXPECT_EQ(shown("a_mesh.vertices"),
            "ListVector(Vector(0, 0, 0), Vector(9, 9, 9), Vector(1, 0, 0), Vector(0, 1, 0))");
}

TEST_F(ImportCommand, SameTextureOfTwoMaterialsIsOneObject) {
  write("a.mtl",
        "newmtl a\nmap_Kd x.png\nnewmtl b\nmap_Kd x.png\nmap_Ks y/x.png\nnewmtl c\nKd 1 0 0\n");
  imported("a.obj",
           "mtllib a.mtl\no a\nv 0 0 0\nv 1 0 0\nv 0 1 0\n"
           "usemtl a\nf 1 2 3\nusemtl b\nf 1 2 3\n");
  EXPECT_EQ(kelp("list --type Texture imported.scene | wc -l").out, "3\n");
  EXPECT_EQ(shown("a_material.diffuse"), "x");
  EXPECT_EQ(shown("b.diffuse"), "x");
  EXPECT_EQ(shown("b.specular"), "x_texture");
  EXPECT_EQ(shown("x_texture.file"), "\"y/x.png\"");
  EXPECT_EQ(shown("c.diffuse"), "Color(1, 0, 0)");
}

TEST_F(ImportCommand, StlBecomesOneMesh) {
  imported("a.stl",
           "solid part\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\n"
           "vertex 0 2.5 0\nendloop\nendfacet\nendsolid part\n");
  EXPECT_EQ(kelp("list --type Mesh imported.scene | wc -l").out, "2\n");
  EXPECT_NE(kelp("dump imported.scene").out.find("2.5"), std::string::npos);
}

TEST_F(ImportCommand, ColoursOfVerticesKeepTheirAlpha) {
  const std::string header =
      "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\n"
      "property float z\nproperty uchar red\nproperty uchar green\nproperty uchar blue\n"
      "property uchar alpha\nelement face 1\nproperty list uchar int vertex_indices\n"
      "end_header\n";
  const std::string scene = imported(
      "a.ply", header + "0 0 0 255 0 0 255\n1 0 0 0 255 0 51\n0 1 0 0 0 255 255\n3 0 1 2\n");
  EXPECT_NE(scene.find("colors = ListColor(Color(1, 0, 0), Color(0, 1, 0), Color(0, 0, 1));\n"
                       "  alphas = ListFloat(1, 0.2, 1);\n"),
            std::string::npos)
      << scene;
  EXPECT_EQ(imported("b.ply", header + "0 0 0 255 0 0 255\n1 0 0 0 255 0 255\n0 1 0 0 0 255 255\n"
                                       "3 0 1 2\n")
                .find("alphas"),
            std::string::npos);
}

TEST_F(ImportCommand, NodesKeepTheirOrderTheirParentsAndTheirPlaces) {
  imported("a.gltf", gltf(R"("meshes": [{"name": "m", "primitives": [
               {"attributes": {"POSITION": 0}, "material": 0},
               {"attributes": {"POSITION": 0}, "material": 1}]}],
             "materials": [{"name": "red"}, {"name": "red"}],
             "scenes": [{"nodes": [0]}], "nodes": [
               {"name": "a b", "children": [1, 2], "translation": [0.1, -2, 3]},
               {"children": [3], "mesh": 0},
               {"name": "a_b", "scale": [2, 3, 4]}, {"name": "x", "rotation": [0, 0, 1, 0]}])"));
  EXPECT_EQ(kelp("list --type Node imported.scene | awk '{ print $2 }'").out,
            "NAME\na_b\nnodes_1_\nx\na_b_node\n");
  EXPECT_EQ(shown("a_b.label"), "\"a b\"");
  EXPECT_EQ(shown("x.parent"), "nodes_1_");
  EXPECT_EQ(shown("a_b_node.parent"), "a_b");
  EXPECT_EQ(shown("nodes_1_.material"), "List(red, red_material)");
  EXPECT_EQ(shown("a_b.position"),
            "Transform(Matrix(Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)), "
            "Vector(0.1, -2, 3))");
  EXPECT_EQ(shown("a_b_node.position"),
            "Transform(Matrix(Vector(2, 0, 0), Vector(0, 3, 0), Vector(0, 0, 4)), "
            "Vector(0, 0, 0))");
}

TEST_F(ImportCommand, MatrixHasItsRowsAndItsOffsetBehind) {
  imported("a.gltf",
           gltfNode(R"(, "matrix": [1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12, 1])"));
  EXPECT_EQ(shown("blade.position"),
            "Transform(Matrix(Vector(1, 4, 7), Vector(2, 5, 8), Vector(3, 6, 9)), "
            "Vector(10, 11, 12))");
}

TEST_F(ImportCommand, WhatNoSceneSaysIsTold) {
  imported("a.gltf", gltfNode(R"(, "matrix": [1, 0, 0, 0.5, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1])"),
           "kelp: a.gltf: left out: 1 projective rows of transforms\n");
  imported("b.gltf", gltfNode("", kSpin), "kelp: b.gltf: left out: 1 other animations\n");
  imported("c.obj", "o a\nv 0 0 nan\nv 1 0 inf\nv 0 1 0\nf 1 2 3\n",
           "kelp: c.obj: 2 numbers that are not finite became 0\n");
  EXPECT_NE(shown("a_mesh.vertices").find("Vector(1, 0, 0)"), std::string::npos);
}

TEST_F(ImportCommand, AnimationIsInterpolated) {
  imported("a.gltf", gltfNode("", kSpin), "kelp: a.gltf: left out: 1 other animations\n");
  EXPECT_EQ(shown("blade.translation"),
            "interpolate((0, Vector(0, 0, 0)), (500, Vector(0, 2, -0.25)))");
  EXPECT_EQ(shown("blade.rotation"),
            "interpolate((0, AColor(0, 0, 0, 1)), (500, AColor(0, 0, 0.6, 0.8)))");
  const std::string settings = "Settings {\n  first = 0;\n  last = ";
  EXPECT_TRUE(contents("imported.scene")
                  .starts_with(settings + "500;\n  rate = 1000;\n  animation = \"spin\";\n}\n"));
  const std::string frames = kelp("import --fps 24 --animation rise a.gltf").out;
  EXPECT_TRUE(frames.starts_with(settings + "12;\n  rate = 24;\n  animation = \"rise\";\n}\n"))
      << frames;
  EXPECT_NE(frames.find("(12, Vector(0, 2, -0.25))"), std::string::npos);
  EXPECT_EQ(kelp("import --animation 2 --fps 24 a.gltf").out, frames);
  EXPECT_EQ(
      kelp("import --animation 3 a.gltf"),
      (Outcome{2, "", "kelp: Cannot import \"a.gltf\": none of its 2 animations is \"3\"\n"}));
}

TEST_F(ImportCommand, CameraLooksWhereItsNodeDoes) {
  imported("a.gltf", gltfNode(R"(, "camera": 0, "translation": [0, 0, 5])",
                              R"(, "cameras": [{"type": "perspective", "perspective":
                        {"yfov": 0.5, "aspectRatio": 1, "znear": 0.1, "zfar": 100}}])"));
  EXPECT_EQ(kelp("show imported.scene blade_camera").out,
            "Camera blade_camera {\n"
            "  parent = blade;\n" +
                std::string(kIdentity) +
                "  fov = 0.5;\n"
                "  near = 0.1;\n"
                "  far = 100;\n"
                "  aspect = 1;\n"
                "}\n");
}

TEST_F(ImportCommand, LightsHaveWhatTheirKindHas) {
  imported("a.gltf", gltf(R"("scenes": [{"nodes": [0, 1, 2]}],
      "meshes": [{"name": "m", "primitives": [{"attributes": {"POSITION": 0}}]}],
      "nodes": [{"name": "bulb", "extensions": {"KHR_lights_punctual": {"light": 0}}},
                {"name": "sun", "extensions": {"KHR_lights_punctual": {"light": 1}}},
                {"name": "x", "mesh": 0}],
      "extensionsUsed": ["KHR_lights_punctual"],
      "extensions": {"KHR_lights_punctual": {"lights": [
        {"type": "spot", "color": [1, 0.5, 0.25], "intensity": 2,
         "spot": {"innerConeAngle": 0.1, "outerConeAngle": 0.5}},
        {"type": "directional", "color": [1, 1, 0.5]}]}})"));
  EXPECT_EQ(kelp("show imported.scene bulb_light").out,
            "Light bulb_light {\n"
            "  parent = bulb;\n"
            "  kind = \"spot\";\n"
            "  color = Color(2, 1, 0.5);\n"
            "  direction = Vector(0, 0, -1);\n"
            "  position = Vector(0, 0, 0);\n"
            "  attenuation = Vector(0, 0, 1);\n"
            "  inner_angle = 0.1;\n"
            "  outer_angle = 0.5;\n"
            "}\n");
  EXPECT_EQ(kelp("show imported.scene sun_light").out,
            "Light sun_light {\n"
            "  parent = sun;\n"
            "  kind = \"directional\";\n"
            "  color = Color(1, 1, 0.5);\n"
            "  direction = Vector(0, 0, -1);\n"
            "}\n");
}

TEST_F(ImportCommand, ColladaWithAmbientAndPointLight) {
  imported("a.dae", R"(<?xml version="1.0"?>
    <COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1">
    <asset><up_axis>Y_UP</up_axis></asset>
    <library_cameras><camera id="cam" name="cam"><optics><technique_common><perspective>
      <xfov>90</xfov><aspect_ratio>2</aspect_ratio><znear>0.5</znear><zfar>50</zfar>
    </perspective></technique_common></optics></camera></library_cameras>
    <library_lights>
      <light id="lamp"><technique_common><point><color>1 0.5 0</color>
        <constant_attenuation>1</constant_attenuation>
        <linear_attenuation>0.25</linear_attenuation></point></technique_common></light>
      <light id="glow"><technique_common><ambient><color>0.1 0.2 0.3</color></ambient>
      </technique_common></light>
    </library_lights>
    <library_geometries><geometry id="tri" name="tri"><mesh>
      <source id="p"><float_array id="pa" count="9">0 0 0 1 0 0 0 1 0</float_array>
        <technique_common><accessor source="#pa" count="3" stride="3">
          <param name="X" type="float"/><param name="Y" type="float"/>
          <param name="Z" type="float"/></accessor></technique_common></source>
      <vertices id="v"><input semantic="POSITION" source="#p"/></vertices>
      <triangles count="1"><input semantic="VERTEX" source="#v" offset="0"/><p>0 1 2</p>
      </triangles></mesh></geometry></library_geometries>
    <library_visual_scenes><visual_scene id="vs" name="vs">
      <node id="door" name="door"><instance_geometry url="#tri"/></node>
      <node id="eye" name="eye"><translate>0 0 9</translate><instance_camera url="#cam"/></node>
      <node id="bulb" name="bulb"><instance_light url="#lamp"/></node>
      <node id="all" name="all"><instance_light url="#glow"/></node>
    </visual_scene></library_visual_scenes>
    <scene><instance_visual_scene url="#vs"/></scene></COLLADA>)");
  EXPECT_EQ(shown("door.geometry"), "tri");
  EXPECT_EQ(shown("eye_camera.fov"), "1.5707964");
  EXPECT_EQ(shown("eye_camera.aspect"), "2");
  EXPECT_EQ(kelp("show imported.scene bulb_light").out,
            "Light bulb_light {\n"
            "  parent = bulb;\n"
            "  kind = \"point\";\n"
            "  color = Color(1, 0.5, 0);\n"
            "  position = Vector(0, 0, 0);\n"
            "  attenuation = Vector(1, 0.25, 0);\n"
            "}\n");
  EXPECT_EQ(kelp("show imported.scene all_light").out,
            "Light all_light {\n"
            "  parent = all;\n"
            "  kind = \"ambient\";\n"
            "  color = Color(0.1, 0.2, 0.3);\n"
            "}\n");
}

TEST_F(ImportCommand, TexturesOfGltfHaveTheirWrappingTheirTilingAndTheirKind) {
  imported("a.gltf", gltf(R"("scenes": [{"nodes": [0]}], "nodes": [{"mesh": 0}],
      "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "material": 0}]}],
      "materials": [{"name": "paint", "doubleSided": true,
        "pbrMetallicRoughness": {"metallicFactor": 0.25, "roughnessFactor": 0.75,
          "baseColorFactor": [0.1, 0.2, 0.3, 0.5], "baseColorTexture": {"index": 0,
            "extensions": {"KHR_texture_transform": {"scale": [2, 3]}}},
          "metallicRoughnessTexture": {"index": 1}}}],
      "extensionsUsed": ["KHR_texture_transform"],
      "samplers": [{"wrapS": 33071, "wrapT": 33648}],
      "textures": [{"source": 0, "sampler": 0}, {"source": 1}],
      "images": [{"uri": "textures/paint.png"},
                 {"uri": "data:image/png;base64,AAAA"}])"));
  EXPECT_EQ(shown("paint.diffuse"), "paint_texture");
  EXPECT_EQ(shown("paint.diffuse_factor"), "Color(0.1, 0.2, 0.3)");
  EXPECT_EQ(shown("paint.metallic"), "texture");
  EXPECT_EQ(shown("paint.roughness"), "texture");
  EXPECT_EQ(shown("paint.texture"), "");  // the same once more
  EXPECT_EQ(shown("paint.metallic_factor"), "0.25");
  EXPECT_EQ(shown("paint.opacity"), "0.5");
  EXPECT_EQ(shown("paint.two_sided"), "1");
  EXPECT_EQ(shown("texture.embedded"), "\"*0\"");
  EXPECT_EQ(shown("paint_texture.file"), "\"textures/paint.png\"");
  EXPECT_EQ(shown("paint_texture.tile"), "List(2, 3)");
  EXPECT_EQ(shown("paint_texture.wrap_u"), "\"clamp\"");
  EXPECT_EQ(shown("paint_texture.wrap_v"), "\"mirror\"");
}

TEST_F(ImportCommand, HostileNamesMakeGoodScenes) {
  std::string models;
  for (const char* name : {"nan", "List", "a\\\"b", "x = 1; } Node y {", "#include", "\\u00e4",
                           "Vector(", "//", "/*", "\\n"}) {
    models += std::string(models.empty() ? "" : ",") + R"({"name": ")" + name + R"(", "mesh": 0})";
  }
  imported("a.gltf", gltf(R"("scenes": [{"nodes": [0, 1, 2, 3, 4, 5, 6, 7, 8, 9]}],
      "meshes": [{"name": "nan", "primitives": [{"attributes": {"POSITION": 0}}]}],
      "nodes": [)" + models +
                          "]"));
  EXPECT_EQ(kelp("list --type Node imported.scene | wc -l").out, "12\n");
}

TEST_F(ImportCommand, WhatIsNoModelIsRefused) {
  write("empty.obj", "");
  write("empty.gltf", "");
  write("text.gltf", "no model\n");
  write("text.fbx", "no model\n");
  write("noise.glb", std::string("glTF\2\0\0\0\377\377\377\377", 12));
  write("some.unknown", "no model\n");
  write("bare.gltf", R"({"asset": {"version": "2.0"}})");
  write("range.obj", "v 0 0 0\nf 1 2 3\n");
  std::filesystem::create_directory(directory / "in" / "folder.obj");
  const std::string before = files();
  for (const char* file : {"empty.obj", "empty.gltf", "text.gltf", "text.fbx", "noise.glb",
                           "some.unknown", "bare.gltf", "folder.obj", "missing.obj"}) {
    const Outcome outcome = kelp(std::string("import -o out.scene ") + file);
    EXPECT_EQ(outcome.exitCode, 2) << file;
    EXPECT_EQ(outcome.out, "") << file;
    const std::string start = std::string("kelp: Cannot import \"") + file + "\": ";
    EXPECT_TRUE(outcome.err.starts_with(start)) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    EXPECT_GT(outcome.err.size(), start.size() + 1) << file;
  }
  EXPECT_EQ(files(), before);
  EXPECT_EQ(kelp("import missing.obj").err,
            "kelp: Cannot import \"missing.obj\": No such file or directory\n");
  EXPECT_EQ(kelp("import folder.obj").err, "kelp: Cannot import \"folder.obj\": Is a directory\n");
  EXPECT_EQ(kelp("import /dev/null").err,
            "kelp: Cannot import \"/dev/null\": not a regular file\n");
}

TEST_F(ImportCommand, TruncatedModelLeavesNoFile) {
  const std::string whole = gltfNode("", kSpin);
  for (size_t length = 1; length + 1 < whole.size(); length += whole.size() / 16) {
    write("a.gltf", whole.substr(0, length));
    const Outcome outcome = kelp("import -o out.scene a.gltf");
    EXPECT_EQ(outcome.exitCode, 2) << length;
    EXPECT_EQ(files(), "a.gltf\n") << length;
  }
}

TEST_F(ImportCommand, HexIsWhatEncodeMakesOfTheScene) {
  imported("a.gltf", gltfNode(R"(, "translation": [0.1, 0, -3])"));
  const std::string hex = kelp("import --hex a.gltf").out;
  EXPECT_EQ(hex, kelp("encode imported.scene").out);
  EXPECT_NE(hex, contents("imported.scene"));
}

TEST_F(ImportCommand, UsageIsChecked) {
  write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
  EXPECT_EQ(kelp("import -").err,
            "kelp: import reads no standard input: models name files that lie beside them; kelp "
            "--help tells more\n");
  EXPECT_EQ(kelp("import a.obj a.obj").exitCode, 2);
  EXPECT_EQ(kelp("import --fps 0 a.obj").exitCode, 2);
  EXPECT_EQ(kelp("import --animation 1 a.obj").exitCode, 2);
  EXPECT_EQ(kelp("import -o out.scene a.obj"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("out.scene"), kelp("import ./a.obj").out);
  EXPECT_EQ(kelp("import a.obj >/dev/full").exitCode, 2);
}

#endif
