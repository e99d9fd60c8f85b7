#include "cli/renaming.h"

#include <gtest/gtest.h>

#include "cli/options.h"

using KelpCli::Renaming;
using KelpCli::Substitution;
using KelpCli::UsageError;

TEST(Substitution, ReplacesAsSedDoes) {
  const struct {
    const char* words;
    const char* text;
    const char* expected;
  } rows[] = {
      {"s/a/b/", "banana", "bbnana"},
      {"s/a/b/g", "banana", "bbnbnb"},
      {"s/A/b/", "banana", "banana"},
      {"s/A/b/i", "banana", "bbnana"},
      {"s/A/b/gi", "banana", "bbnbnb"},
      {"s/x/b/", "banana", "banana"},
      {"s/^b//", "banana", "anana"},
      {"s/^a//g", "aab", "ab"},
      {"s/na$/_/", "banana", "bana_"},
      {"s/a$/_/g", "banana", "banan_"},
      {"s/(.)(n)/\\2\\1/", "banana", "bnaana"},
      {"s/(.)(n)/\\2\\1/g", "banana", "bnanaa"},
      {"s/an/<&>/g", "banana", "b<an><an>a"},
      {"s/an/\\&/", "banana", "b&ana"},
      {"s/an/\\0\\0/", "banana", "bananana"},
      {"s/(x)?b/[\\1]/", "banana", "[]anana"},
      {"s/x*/-/", "abc", "-abc"},
      {"s/x*/-/g", "abc", "-a-b-c-"},
      {"s/x*/-/g", "abx", "-a-b-"},
      {"s/x*/-/g", "xxa", "-a-"},
      {"s/.*/whole/", "abc", "whole"},
      {"s/.*/whole/g", "abc", "whole"},
      {"s/$/_1/", "abc", "abc_1"},
      {"s|a/b|c|", "a/b", "c"},
      {"s/a\\/b/c\\/d/", "a/b", "c/d"},
      {"s/a\\.b/c/", "a.b axb", "c axb"},
      {"s/a+/x/", "baaa", "bx"},
      {"s/[0-9]+/n/g", "a12b3", "anbn"},
      {"s/a/\\\\/", "a", "\\"},
      {"s/a//g", "", ""},
      {"s/^/p_/", "", "p_"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Substitution(row.words).apply(row.text), row.expected)
        << row.words << " of " << row.text;
  }
}

TEST(Substitution, WhatIsNoneIsRefused) {
  const struct {
    const char* words;
    const char* message;
  } rows[] = {
      {"", "\"\" is not of the form s/OLD/NEW/"},
      {"s", "\"s\" is not of the form s/OLD/NEW/"},
      {"s/", "\"s/\" is not of the form s/OLD/NEW/"},
      {"s/a/b", "\"s/a/b\" is not of the form s/OLD/NEW/"},
      {"s/a\\/b/", "\"s/a\\/b/\" is not of the form s/OLD/NEW/"},
      {"y/a/b/", "\"y/a/b/\" is not of the form s/OLD/NEW/"},
      {"s\\a\\b\\", "\"s\\a\\b\\\" is not of the form s/OLD/NEW/"},
      {"s/a/b/x", "\"s/a/b/x\": there is no flag \"x\", only g and i"},
      {"s/a/b/c/", "\"s/a/b/c/\" is not of the form s/OLD/NEW/"},
      {"s/(/b/", "\"s/(/b/\": Unmatched ( or \\("},
  };
  for (const auto& row : rows) {
    std::string message = "none";
    try {
      const Substitution substitution(row.words);
    } catch (const UsageError& error) {
      message = error.message;
    }
    EXPECT_EQ(message, row.message) << row.words;
  }
}

TEST(Renaming, SingleNamesGoBeforeSubstitutions) {
  Renaming renaming;
  renaming.addName("a=b");
  renaming.addSubstitution("s/[ab]/x/");
  renaming.addSubstitution("s/x/xx/");
  EXPECT_EQ(renaming.unusedName(), "a");
  EXPECT_EQ(renaming.apply("a"), "b");
  EXPECT_EQ(renaming.apply("b"), "xx");
  EXPECT_EQ(renaming.apply("c"), "c");
  EXPECT_EQ(renaming.unusedName(), std::nullopt);
}

TEST(Renaming, NamesThatMakeNoSenseAreRefused) {
  for (const char* words : {"", "a", "=", "a=", "=b"}) {
    Renaming renaming;
    EXPECT_THROW(renaming.addName(words), UsageError) << words;
  }
  Renaming renaming;
  renaming.addName("a=b");
  EXPECT_THROW(renaming.addName("a=c"), UsageError);
  renaming.addName("b==");
  EXPECT_EQ(renaming.apply("b"), "=");
}
