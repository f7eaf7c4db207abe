#!/usr/bin/env bash
# Fails, listing the files, when a C or C++ file under version control differs from what
# clang-format makes of it. Generated tables are left as their generators write them.
# With --fix, formats the files in place instead.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.c' '*.cpp' '*.h' |
  grep -v -E '(CCaseTable|PluralRuleTable|LanguageCodeTable|DefaultCountryTable|PluralCategoryTable)\.cpp$')
if [ "${1:-}" = --fix ]; then
  clang-format -i "${files[@]}"
  exit 0
fi
bad=()
for f in "${files[@]}"; do
  clang-format --dry-run --Werror "$f" >/dev/null 2>&1 || bad+=("$f")
done
if [ ${#bad[@]} -gt 0 ]; then
  printf 'not formatted (tools/check_format.sh --fix): %s\n' "${bad[@]}"
  exit 1
fi
echo "format: ${#files[@]} files follow .clang-format"
