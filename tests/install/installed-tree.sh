#!/usr/bin/env bash
# installed-tree.sh BUILD: what BUILD installs can be moved, and serves README's first program: by find_package, by
# pkg-config, and inside a shared library; its acg finds the simulated reader library.
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# readme_block LANGUAGE: the first of that language.
readme_block() { awk -v from="\`\`\`$1" '/^```$/ { if (inside) exit } inside; $0 == from { inside = 1 }' README.md; }

cmake --install "$1" --prefix "$folder/first place"
mv "$folder/first place" "$folder/acg"
readme_block cpp >"$folder/first.cpp"
echo >"$folder/empty.cpp" # its main is the shared library's
{
    readme_block cmake
    echo 'add_library(inside SHARED first.cpp)'
    echo 'target_link_libraries(inside PRIVATE acg::acg)'
    echo 'add_executable(outside empty.cpp)'
    echo 'target_link_libraries(outside PRIVATE inside)'
} >"$folder/CMakeLists.txt"
cd "$folder"
cmake -G Ninja -B . -DCMAKE_PREFIX_PATH="$folder/acg"
cmake --build .
PKG_CONFIG_PATH=$(dirname "$(find acg -name acg.pc)")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046 # several words
g++ -std=c++20 first.cpp $(pkg-config --cflags --libs acg) -o other
for program in first outside other; do
    [ "$("./$program")" = 'Block 4: 00000000000000000000000000000000' ]
done
acg/bin/acg --simulate info
