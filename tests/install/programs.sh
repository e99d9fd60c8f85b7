#!/bin/sh
# Writes each whole program (a cpp block with a main) of a document to FOLDER/program1.cpp and so on.
#   programs.sh DOCUMENT FOLDER
set -eu
mkdir -p "$2"
rm -f "$2"/program*.cpp
awk -v folder="$2" '
  /^```cpp$/ { inside = 1; text = ""; next }
  /^```/ {
    if (inside && text ~ /int main\(/) printf "%s", text > (folder "/program" ++number ".cpp")
    inside = 0
  }
  inside { text = text $0 "\n" }
' "$1"
