// Names of imported objects.
#include "cli/import/identifiers.h"

#include <gtest/gtest.h>

#include "kelp/scene.h"

TEST(Identifiers, WhatIsNoIdentifierBecomesOne) {
  const struct {
    const char* wanted;
    const char* name;
  } rows[] = {
      {"lamp", "lamp"},
      {"Lamp_2", "Lamp_2"},
      {"größe", "größe"},
      {"a@b|c$d", "a@b|c$d"},
      {"Wood (dark)", "Wood__dark_"},
      {"oak.001", "oak_001"},
      {"2nd", "_2nd"},
      {"$pivot", "_$pivot"},
      {"@", "_@"},
      {" ", "_"},
      {"#include", "_include"},
      {"nan", "_nan"},
      {"a\nb\"c\\", "a_b_c_"},
      {"", "mesh"},
  };
  for (const auto& row : rows) {
    KelpCli::Identifiers names;
    const std::string name = names.add(row.wanted, "mesh");
    EXPECT_EQ(name, row.name);
    const Kelp::Scene scene = Kelp::Scene::fromText("Mesh " + name + " { a = " + name + "; }");
    ASSERT_TRUE(scene) << row.wanted;
    EXPECT_EQ(scene.objects()[0].name.chars(), name);
  }
}

TEST(Identifiers, NoneIsGivenTwice) {
  KelpCli::Identifiers names;
  EXPECT_EQ(names.add("box", "node"), "box");
  EXPECT_EQ(names.add("box", "mesh"), "box_mesh");
  EXPECT_EQ(names.add("box", "mesh"), "box_mesh_2");
  EXPECT_EQ(names.add("box_mesh_3", "mesh"), "box_mesh_3");
  EXPECT_EQ(names.add("box", "mesh"), "box_mesh_4");
  EXPECT_EQ(names.add("", "mesh"), "mesh");
  EXPECT_EQ(names.add("", "mesh"), "mesh_2");
  EXPECT_EQ(names.add("mesh", "mesh"), "mesh_mesh");
  EXPECT_EQ(names.add("a b", "node"), "a_b");
  EXPECT_EQ(names.add("a_b", "node"), "a_b_node");
}
