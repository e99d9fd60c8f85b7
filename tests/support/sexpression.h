// A tree as one line of text, for comparing.
//
//   scene := (scene obj*)             objects in text order
//   obj   := (obj "Type" "name" prop*)
//   prop  := (= "name" expr)
//   expr  := NUMBER | "text" | (neg e) | (+ a b) (- a b) (* a b) (/ a b)
//          | (vec a b c) (col a b c) (acol r g b a) (mat r0 r1 r2) (xf m v) (xfhex "text")
//          | (list e*) | (interp (k v) ...) | (call "name" e*)
//          | (ref "obj") | (prop "obj" "p") | (rt "obj" "v") | (idx (prop ...) i1 i2 ...)
//          | (lvec (x y z)*) (lcol (r g b)*) (lflt x*) (lint n*) (lstr "s"*)
//          | (lvechex "text") (lcolhex "text") (lflthex "text") (linthex "text")
//
// Doubles are written with 17 significant digits, floats with 9; in texts \ and " are escaped.
#pragma once

#include <string>

#include "kelp/ast/expressions.h"
#include "kelp/program/programast.h"

namespace KelpTest {

/// Null gives "null". Sums of any length do not recurse.
std::string sexpression(Kelp::ExpressionAST* expression);
std::string sexpression(const Kelp::ObjectAST& object);
std::string sexpression(const Kelp::ProgramAST& program);

}  // namespace KelpTest
