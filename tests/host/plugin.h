// What the shared object `plugin` offers to the program that loads it.
#pragma once

extern "C" {

/// Reads a text and keeps its tree. Gives the number of its objects, -1 for a text with an error.
using PluginRead = int (*)(const char* text);

/// Releases all trees that are kept. Gives the number of nodes that live then.
using PluginRelease = int (*)();
}
