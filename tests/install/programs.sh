#!/bin/sh
# Writes each whole program (a cpp block with a main) of a document to FOLDER/program_SECTION.cpp,
# SECTION being the heading that it stands under, with underscores.
#   programs.sh DOCUMENT FOLDER
set -eu
mkdir -p "$2"
rm -f "$2"/program*.cpp
awk -v folder="$2" '
  /^## / { section = tolower(substr($0, 4)); gsub(/[^a-z]+/, "_", section) }
  /^```cpp$/ { inside = 1; text = ""; next }
  /^```/ {
    if (inside && text ~ /int main\(/) printf "%s", text > (folder "/program_" section ".cpp")
    inside = 0
  }
  inside { text = text $0 "\n" }
' "$1"
