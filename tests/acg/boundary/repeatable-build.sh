#!/usr/bin/env bash
# repeatable-build.sh FILE: the component, built in another folder and in another year, is byte for byte FILE.
set -euo pipefail

file=$(realpath "$1")
folder=$(mktemp -d)/elsewhere
trap 'rm -rf "$(dirname "$folder")"' EXIT
mkdir "$folder"
tar -c --exclude=./build --exclude=./.git . | tar -x -C "$folder"
cd "$folder"
# The times of files stay the real ones: the build goes by them.
NO_FAKE_STAT=1 faketime -f '+400d' sh -c 'cmake --preset windows && cmake --build --preset windows --target ACG_MultiISO_TV'
cmp "$file" build/windows/ACG_MultiISO_TV.dll
