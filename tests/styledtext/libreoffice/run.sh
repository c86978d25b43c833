#!/bin/sh
# Interoperability check with LibreOffice (Debian: libreoffice-writer-nogui).
#   1. our writer's sample -> LibreOffice -> HTML: text, styles and alignment should all survive;
#   2. styled_sample.html -> LibreOffice -> RTF -> our reader: prints what it recognises.
# Usage: run.sh [OUTDIR]   (run from anywhere; needs g++ and soffice)
set -eu
here=$(cd "$(dirname "$0")" && pwd)
src="$here/../../../src"
out=${1:-$(mktemp -d)}
mkdir -p "$out"
g++ -std=c++20 -O1 -I"$src" "$here/write_sample.cpp" "$src/styledtext/rtf_writer.cpp" -o "$out/write_sample"
g++ -std=c++20 -O1 -I"$src" "$here/dump_runs.cpp" "$src/styledtext/rtf_reader.cpp" -o "$out/dump_runs"

"$out/write_sample" "$out/ours.rtf"
soffice --headless --convert-to html --outdir "$out" "$out/ours.rtf" >/dev/null 2>&1
echo "== our RTF as LibreOffice reads it (HTML body) =="
sed -n '/<body/,/<\/body>/p' "$out/ours.html"

soffice --headless --infilter="HTML (StarWriter)" --convert-to rtf --outdir "$out" \
  "$here/styled_sample.html" >/dev/null 2>&1
echo "== LibreOffice's RTF as our reader reads it =="
"$out/dump_runs" "$out/styled_sample.rtf"
echo "(files in $out)"
