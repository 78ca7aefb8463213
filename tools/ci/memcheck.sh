#!/usr/bin/env bash
# Runs the whole test suite under valgrind memcheck and fails on any memory error or any
# definitely or indirectly lost block.
#
#   tools/ci/memcheck.sh [extra ctest arguments, e.g. -R zr_arrays]
#
# The memcheck preset is RelWithDebInfo without sanitizers (valgrind and the sanitizers'
# runtimes do not mix). ctest's memcheck mode wraps every test in valgrind, one log per
# test; ctest itself reports defects without failing on them, so valgrind's exit code
# fails the test and the logs are read once more at the end.
#
# Left out, being no program of the library under valgrind: the embedding and install
# tests (cmake driving a compiler and a build) and the README text comparison (Python).
set -euo pipefail
cd "$(dirname "$0")/../.."

command -v valgrind >/dev/null || { echo "memcheck: valgrind is not installed" >&2; exit 2; }

dir=build/memcheck
cmake --preset memcheck
cmake --build --preset memcheck

options=(
  --error-exitcode=1
  --leak-check=full
  --show-leak-kinds=definite,indirect
  --errors-for-leak-kinds=definite,indirect
  --track-origins=no
  --num-callers=30
)
suppressions=tools/ci/memcheck.supp
exclude='^(zr_embedded_by_add_subdirectory|zr_install_.*|zr_readme_snippets_match)$'

logs=$dir/Testing/Temporary
rm -f "$logs"/MemoryChecker.*.log

status=0
ctest --test-dir "$dir" -T memcheck -j2 --output-on-failure --no-tests=error \
  --overwrite MemoryCheckCommand="$(command -v valgrind)" \
  --overwrite MemoryCheckCommandOptions="${options[*]}" \
  --overwrite MemoryCheckSuppressionFile="$PWD/$suppressions" \
  -E "$exclude" "$@" || status=$?

# Every test's log: an error count other than 0 is a failure even if ctest let it pass.
shopt -s nullglob
checked=0
bad=()
for log in "$logs"/MemoryChecker.*.log; do
  checked=$((checked + 1))
  if grep -qE 'ERROR SUMMARY: [1-9]' "$log"; then bad+=("$log"); fi
done
if ((checked == 0)); then
  echo "memcheck: no valgrind logs were written" >&2
  exit 1
fi
for log in "${bad[@]}"; do
  echo "==== $log"
  cat "$log"
done
echo "memcheck: $checked logs read, ${#bad[@]} with errors, ctest exit $status"
if ((${#bad[@]} || status)); then exit 1; fi
