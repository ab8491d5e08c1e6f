#!/usr/bin/env bash
# lint.sh BUILD_DIR: formatting, clang-tidy over the build's compile commands, and the rules that no compiler knows.
set -euo pipefail
build=$1
failed=0
sources() { git ls-files -- '*.cpp' '*.h'; }

echo "== format"
sources | xargs clang-format --dry-run --Werror || failed=1

echo "== rules"
long=$(sources | xargs wc -l | awk '$2 != "total" && $1 > 600 {print $2 ": " $1 " lines"}')
[ -z "$long" ] || { echo "over 600 lines:"; echo "$long"; failed=1; }
if git grep -nE 'QTest::q(Sleep|Wait\([0-9])|QThread::(m|u)?sleep|std::this_thread::sleep|usleep\(' -- tests; then
  echo "tests must not sleep"; failed=1
fi
if git grep -nIE '\b(TODO|FIXME|XXX)\b' -- host client panels bench; then echo "left open"; failed=1; fi

echo "== clang-tidy"
sources | grep -E '^(client|panels)/.*\.cpp$' | xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p "$build" 2>/dev/null || failed=1

[ "$failed" = 0 ] && echo "lint: clean"
exit "$failed"
