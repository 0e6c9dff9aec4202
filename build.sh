#!/usr/bin/env bash
# zucore's one entry point.
#   ./build.sh          install missing packages, build, install into build/install,
#                       build the examples against that package and run them headless
#   ./build.sh --gui    the same, but the demo opens its window
#   ./build.sh test     the same set-up with the tests, then the test suite: plain, under
#                       AddressSanitizer and UndefinedBehaviorSanitizer, and once more
#                       against Qt 6 (installed beside the Qt 5 build)
#   ./build.sh tsan     the concurrency tests under ThreadSanitizer
#   ./build.sh fuzz [seconds]  build the libFuzzer targets with clang and run each briefly
#   ./build.sh deps     only install the packages
set -euo pipefail
root="$(cd "$(dirname "$0")" && pwd)"
cd "$root"
jobs=2

# What the newcomer path needs; the test suite adds its own tools and the Qt 6 build.
packages=(cmake g++ make pkg-config qtbase5-dev qtbase5-dev-tools)
test_packages=(zlib1g-dev libbenchmark-dev libspdlog-dev sox xvfb doxygen
               qt6-base-dev qt6-base-dev-tools qt6-5compat-dev)
fuzz_packages=(clang-14 libclang-rt-14-dev)

log() { printf '\n== %s\n' "$*"; }

install_packages() {
  local missing=()
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  log "installing ${missing[*]}"
  local sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

configure_and_build() { # dir, extra cmake args...
  local dir=$1; shift
  cmake -S "$root" -B "$dir" -DCMAKE_INSTALL_PREFIX="$root/build/install" "$@" >/dev/null
  cmake --build "$dir" -j"$jobs"
}

build_library() {
  log "building the library into build/"
  configure_and_build "$root/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
  log "installing into build/install"
  cmake --install "$root/build" >/dev/null
}

build_examples() { # dir, package
  local dir=$1 package=$2
  log "building the examples against the installed package $package"
  cmake -S "$root/examples" -B "$dir" -DCMAKE_PREFIX_PATH="$root/build/install" \
      -DZUCORE_PACKAGE="$package" >/dev/null
  cmake --build "$dir" -j"$jobs"
}

run_examples() { # dir, gui
  local dir=$1 gui=$2
  export LD_LIBRARY_PATH="$root/build/install/lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
  log "running examples/hello"
  (cd "$dir" && QT_QPA_PLATFORM=offscreen ./hello/hello)
  if [ -x "$dir/demo/demo" ]; then
    log "running examples/demo"
    if [ "$gui" = 1 ]; then
      (cd "$dir" && ./demo/demo --gui)
    else
      (cd "$dir" && QT_QPA_PLATFORM=offscreen ./demo/demo)
    fi
  fi
}

mode=run
gui=0
case "${1:-}" in
  "" ) ;;
  --gui ) gui=1 ;;
  test|tsan|fuzz|deps ) mode=$1 ;;
  * ) echo "usage: $0 [--gui | test | tsan | fuzz [seconds] | deps]" >&2; exit 2 ;;
esac

case "$mode" in
  deps)
    install_packages "${packages[@]}" "${test_packages[@]}"
    ;;
  run)
    install_packages "${packages[@]}"
    build_library -DZUCORE_BUILD_TESTS=OFF -DZUCORE_BUILD_BENCHMARKS=OFF
    build_examples "$root/build/examples" zucore
    run_examples "$root/build/examples" "$gui"
    ;;
  test)
    install_packages "${packages[@]}" "${test_packages[@]}"
    build_library -DZUCORE_BUILD_TESTS=ON -DZUCORE_BUILD_BENCHMARKS=ON
    build_examples "$root/build/examples" zucore
    run_examples "$root/build/examples" 0
    log "test suite (Qt 5)"
    ctest --test-dir "$root/build" --output-on-failure -j"$jobs"
    log "test suite (Qt 5, AddressSanitizer + UndefinedBehaviorSanitizer)"
    configure_and_build "$root/build/asan" -DCMAKE_BUILD_TYPE=Debug -DZUCORE_SANITIZE=address,undefined \
        -DZUCORE_BUILD_TESTS=ON -DZUCORE_BUILD_BENCHMARKS=OFF
    ctest --test-dir "$root/build/asan" --output-on-failure -j"$jobs"
    log "building against Qt 6 into build/qt6, installing beside the Qt 5 build"
    configure_and_build "$root/build/qt6" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQT_MAJOR_VERSION=6 \
        -DZUCORE_BUILD_TESTS=ON -DZUCORE_BUILD_BENCHMARKS=ON
    cmake --install "$root/build/qt6" >/dev/null
    build_examples "$root/build/examples-qt6" zucoreQt6
    run_examples "$root/build/examples-qt6" 0
    log "test suite (Qt 6)"
    ctest --test-dir "$root/build/qt6" --output-on-failure -j"$jobs"
    ;;
  tsan)
    install_packages "${packages[@]}" "${test_packages[@]}"
    configure_and_build "$root/build/tsan" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZUCORE_SANITIZE=thread \
        -DZUCORE_BUILD_TESTS=ON
    ctest --test-dir "$root/build/tsan" --output-on-failure -L threads
    ;;
  fuzz)
    install_packages "${packages[@]}" "${test_packages[@]}" "${fuzz_packages[@]}"
    seconds=${2:-20}
    CC=clang-14 CXX=clang++-14 configure_and_build "$root/build/fuzz" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DZUCORE_BUILD_TESTS=OFF -DZUCORE_BUILD_FUZZERS=ON
    for f in "$root"/build/fuzz/fuzz/fuzz_*; do
      [ -x "$f" ] || continue
      log "fuzzing $(basename "$f") for ${seconds}s"
      mkdir -p "$root/build/fuzz/corpus/$(basename "$f")"
      # fuzz/seeds/<target> holds inputs that once broke a parser; the corpus grows in build/.
      seeds=()
      [ -d "$root/fuzz/seeds/$(basename "$f")" ] && seeds=("$root/fuzz/seeds/$(basename "$f")")
      "$f" -max_total_time="$seconds" -print_final_stats=0 "$root/build/fuzz/corpus/$(basename "$f")" \
        ${seeds[@]+"${seeds[@]}"} 2>&1 | tail -3
    done
    ;;
esac
