// The math values of scenes and the constants of the library's math code.
#pragma once

#include <cstdint>

namespace Kelp {

struct Vector {
  float x, y, z;
};

struct Color {
  float r, g, b;
};

/// A 3x3 matrix, row after row.
struct Matrix {
  /// 1 gives the identity, 0 the zero matrix; any other kind leaves the elements unset, for code
  /// that is about to write all of them.
  explicit Matrix(int kind);

  float elements[9];
};

// Every source has its own copy, so that they exist before that source's other static objects.

static const Matrix ID_mat(1);
static const Matrix ZERO_mat(0);

/// Entry k selects lane j of a four-lane vector (all bits set) when bit j of k is set.
alignas(16) [[maybe_unused]] static const uint32_t _mm_lookupmask_ps[16][4] = {
    {0, 0, 0, 0},     {~0U, 0, 0, 0},     {0, ~0U, 0, 0},     {~0U, ~0U, 0, 0},
    {0, 0, ~0U, 0},   {~0U, 0, ~0U, 0},   {0, ~0U, ~0U, 0},   {~0U, ~0U, ~0U, 0},
    {0, 0, 0, ~0U},   {~0U, 0, 0, ~0U},   {0, ~0U, 0, ~0U},   {~0U, ~0U, 0, ~0U},
    {0, 0, ~0U, ~0U}, {~0U, 0, ~0U, ~0U}, {0, ~0U, ~0U, ~0U}, {~0U, ~0U, ~0U, ~0U},
};

}  // namespace Kelp
