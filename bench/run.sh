#!/usr/bin/env bash
# Builds the benchmarks in Release and prints one row per operation: our time,
# the peer's time, and their ratio (ours / peer; lower is better).
#   bench/run.sh [--csv] [google-benchmark flags...]
# With --benchmark_repetitions=N each row shows the median of the N runs.
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
# JSON, not CSV: Google Benchmark's CSV reporter aborts when a user counter
# (such as "bytes") first shows up after the first benchmark of the run.
QT_QPA_PLATFORM=offscreen "$build/bench/zucore_bench" --benchmark_format=json \
    ${args[@]+"${args[@]}"} 2>/dev/null >"$raw"

# One object per run inside "benchmarks", four blanks deep: name, real_time,
# time_unit, then user counters. A counter named "bytes" replaces the time for
# memory rows.
awk -v csv="$csv" '
function ns(v, unit) {
  if (unit == "us") return v * 1e3; if (unit == "ms") return v * 1e6; if (unit == "s") return v * 1e9; return v
}
function field(line) { sub(/^[^:]*: */, "", line); sub(/,$/, "", line); gsub(/"/, "", line); return line }
/^    \{/ { name = ""; t = ""; unit = ""; bytes = ""; next }
/^      "name":/ { name = field($0); next }
/^      "real_time":/ { t = field($0) + 0; next }
/^      "time_unit":/ { unit = field($0); next }
/^      "bytes":/ { bytes = field($0) + 0; next }
/^    \}/ {
  # With --benchmark_repetitions the median stands for the run; other aggregates are dropped.
  if (name ~ /_(mean|stddev|cv)$/) next
  sub(/_median$/, "", name)
  # Drop the suffixes that Google Benchmark adds (iterations:1, real_time, ...).
  n = split(name, parts, "/")
  while (n > 1 && (parts[n] ~ /:/ || parts[n] ~ /^(real|manual|process)_time$/)) n--
  side = parts[n]
  op = parts[1]; for (k = 2; k < n; k++) op = op "/" parts[k]
  if (side != "ours" && side != "peer") next
  v = (bytes != "") ? bytes : ns(t, unit)
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
