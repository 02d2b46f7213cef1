#!/usr/bin/env bash
# Holds our math engine against mathjs on the same workload of typed calculator lines:
# values of the lines both accept must agree to 1e-9 relative, and we want to be 20x
# faster on parse + evaluate and 5x faster with the sanitiser in front.
#
#   bench/peers/compare-mathjs.sh [BUILD_DIR]     (default build/release, a Release build)
#
# mathjs is installed with npm into build/peers/, never into the source tree.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build_dir=$(realpath -m "${1:-$root/build/release}")
peers_dir="$root/build/peers"
mathjs_version=15

command -v node >/dev/null || { echo "compare-mathjs: node is needed (Node 20)" >&2; exit 2; }
if [ ! -f "$build_dir/build.ninja" ] && [ ! -f "$build_dir/Makefile" ]; then
  cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSCRIVLET_BUILD_TESTS=OFF
fi
cmake --build "$build_dir" --target eval_lines -j 2

mkdir -p "$peers_dir"
if [ ! -f "$peers_dir/node_modules/mathjs/package.json" ]; then
  npm install --prefix "$peers_dir" --no-audit --no-fund --silent "mathjs@$mathjs_version"
fi

eval_lines="$build_dir/bench/peers/eval_lines"
lines="$peers_dir/math-workload.txt"
ours="$peers_dir/math-workload.ours.txt"
"$eval_lines" workload > "$lines"
timing=$("$eval_lines" evaluate "$lines" 2>&1 > "$ours")
full_ns=$(sed -n 's/.*full_ns_per_line=\([0-9.]*\).*/\1/p' <<<"$timing")
raw_ns=$(sed -n 's/.*raw_ns_per_line=\([0-9.]*\).*/\1/p' <<<"$timing")
[ -n "$full_ns" ] && [ -n "$raw_ns" ] || { echo "compare-mathjs: eval_lines said: $timing" >&2; exit 1; }

node "$root/bench/peers/compare-mathjs.mjs" "$peers_dir" "$lines" "$ours" "$full_ns" "$raw_ns"
