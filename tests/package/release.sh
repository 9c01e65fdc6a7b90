#!/usr/bin/env bash
# release.sh ZIP: another run of scripts/package makes the same bytes; with a certificate, made here, files that without
# their signatures are the same; and none at all of a version that the changelog lacks.
set -euo pipefail
. scripts/common.sh
need "${sign_tools[@]}" 'have unzip|unzip'
zip=$(realpath "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/again" "$folder/signed"

scripts/package "$folder/again" >/dev/null
diff "$(dirname "$zip")/SHA256SUMS" "$folder/again/SHA256SUMS"
(cd "$(dirname "$zip")" && sha256sum --check --quiet SHA256SUMS)

openssl req -x509 -newkey rsa:2048 -nodes -subj /CN=test -addext extendedKeyUsage=codeSigning \
    -keyout "$folder/key" -out "$folder/certificate" 2>/dev/null
ACG_CERT=$folder/certificate ACG_KEY=$folder/key scripts/package "$folder/signed" >/dev/null 2>&1
cd "$folder/signed"
unzip -q "$zip" -d plain
unzip -q "$(basename "$zip")" -d made
mapfile -t programs < <(cd plain && find . -name '*.dll' -o -name '*.exe')
for file in "${programs[@]}"; do
    osslsigncode remove-signature -in "made/$file" -out unsigned.exe >/dev/null
    cmp unsigned.exe "plain/$file"
    rm unsigned.exe
done
[ "${#programs[@]}" -eq 4 ]
osslsigncode verify -CAfile "$folder/certificate" -in ./*-setup.exe >/dev/null

mkdir "$folder/tree"
cp -r "$repository/scripts" "$repository/CMakeLists.txt" "$folder/tree"
sed 's/^## \[/&1/' "$repository/CHANGELOG.md" >"$folder/tree/CHANGELOG.md"
! refusal=$("$folder/tree/scripts/package" 2>&1)
grep -q '^stopped: CHANGELOG.md has no version' <<<"$refusal"
