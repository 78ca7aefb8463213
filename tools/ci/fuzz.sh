#!/usr/bin/env bash
# Builds the fuzz preset and runs every libFuzzer target it makes for a bounded time,
# failing on the first target that crashes (a sanitizer report, a deadly signal, a leak,
# a timeout or running out of memory all make libFuzzer exit non-zero).
#
#   ZR_FUZZ_SECONDS  time per target, default 30
#   ZR_FUZZ_SEED     libFuzzer's -seed; unset, every run draws its own (libFuzzer prints
#                    it as "Seed: N"), so that repeated runs explore different inputs
#
# Targets are found by name, build/fuzz/fuzz/*_fuzz, so new ones join without a change
# here. Target <name>_fuzz reads its seeds from fuzz/corpus/<name> and never writes there:
# the inputs it finds go to build/fuzz/ci/<name>, cleared first, and a crashing input to
# build/fuzz/ci/<name>-crash-... .
set -euo pipefail
cd "$(dirname "$0")/../.."

seconds=${ZR_FUZZ_SECONDS:-30}
cmake --preset fuzz
cmake --build --preset fuzz

export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
scratch=build/fuzz/ci
shopt -s nullglob
targets=(build/fuzz/fuzz/*_fuzz)
if ((${#targets[@]} == 0)); then
  echo "fuzz: no *_fuzz targets were built" >&2
  exit 1
fi

seed=()
if [ -n "${ZR_FUZZ_SEED:-}" ]; then seed=(-seed="$ZR_FUZZ_SEED"); fi

for exe in "${targets[@]}"; do
  [ -x "$exe" ] || continue
  target=$(basename "$exe")
  name=${target%_fuzz}
  seeds=fuzz/corpus/$name
  rm -rf "${scratch:?}/$name"
  mkdir -p "$scratch/$name"
  corpora=("$scratch/$name")
  if [ -d "$seeds" ]; then
    corpora+=("$seeds")
  else
    echo "fuzz: $target has no seed corpus ($seeds); starting from nothing"
  fi
  echo "==== $target: ${seconds}s"
  if ! "$exe" "${corpora[@]}" -max_total_time="$seconds" -timeout=25 "${seed[@]}" \
      -print_final_stats=1 -artifact_prefix="$scratch/$name-" 2>"$scratch/$name.log"; then
    tail -n 60 "$scratch/$name.log"
    echo "fuzz: $target failed; the input is in $scratch/$name-*" >&2
    exit 1
  fi
  grep -E 'Seed: |^stat::(number_of_executed_units|new_units_added)' \
    "$scratch/$name.log" | sed 's/^/  /' || true
done
echo "fuzz: ${#targets[@]} targets, ${seconds}s each, no crash"
