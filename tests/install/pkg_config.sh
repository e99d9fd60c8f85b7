#!/bin/sh
# Compiles a source with what pkg-config says about an installed Kelp.
#   pkg_config.sh COMPILER PREFIX SOURCE PROGRAM
set -eu
pc=$(find "$2" -name kelp.pc)
PKG_CONFIG_PATH=$(dirname "$pc")
export PKG_CONFIG_PATH
# Flags are words.
# shellcheck disable=SC2046
"$1" -std=c++20 "$3" $(pkg-config --cflags --libs kelp) -o "$4"
