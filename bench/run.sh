#!/usr/bin/env bash
# Builds the benchmarks in Release and prints one row per operation: our time,
# the peer's time, and their ratio (ours / peer; lower is better).
#   bench/run.sh [--csv] [google-benchmark flags...]
# Memory rows ("*_memory_*") compare peak bytes instead of nanoseconds.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
csv=0
args=()
for a in "$@"; do
  if [ "$a" = "--csv" ]; then csv=1; else args+=("$a"); fi
done

"$root/build.sh" deps >/dev/null
build="$root/build/bench"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DZUCORE_BUILD_TESTS=OFF \
      -DZUCORE_BUILD_BENCHMARKS=ON >/dev/null
cmake --build "$build" -j2 --target zucore_bench >/dev/null

raw=$(mktemp)
trap 'rm -f "$raw"' EXIT
QT_QPA_PLATFORM=offscreen "$build/bench/zucore_bench" --benchmark_format=csv \
    ${args[@]+"${args[@]}"} 2>/dev/null >"$raw"

# Google Benchmark's CSV: name,iterations,real_time,cpu_time,time_unit,...,
# then user counters. A counter named "bytes" replaces the time for memory rows.
awk -F, -v csv="$csv" '
function ns(v, unit) {
  if (unit == "us") return v * 1e3; if (unit == "ms") return v * 1e6; if (unit == "s") return v * 1e9; return v
}
/^name,/ { for (i = 1; i <= NF; i++) col[$i] = i; started = 1; next }
!started { next }
{
  name = $1; gsub(/"/, "", name)
  n = split(name, parts, "/"); side = parts[n]
  op = parts[1]; for (k = 2; k < n; k++) op = op "/" parts[k]
  if (side != "ours" && side != "peer") next
  v = ns($(col["real_time"]), $(col["time_unit"]))
  if (("bytes" in col) && $(col["bytes"]) != "") v = $(col["bytes"])
  if (!(op in seen)) { order[++count] = op; seen[op] = 1 }
  val[op, side] = v
}
END {
  if (csv) print "name,ours_ns,peer_ns,ratio"
  else printf "%-34s %14s %14s %8s\n", "operation", "ours (ns|B)", "peer (ns|B)", "ratio"
  for (i = 1; i <= count; i++) {
    op = order[i]; o = val[op, "ours"]; p = val[op, "peer"]
    r = (p > 0) ? sprintf("%.3f", o / p) : "n/a"
    if (csv) printf "%s,%.1f,%.1f,%s\n", op, o, p, r
    else printf "%-34s %14.1f %14.1f %8s\n", op, o, p, r
  }
}' "$raw"
