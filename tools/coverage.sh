#!/usr/bin/env bash
# Builds the suite with gcc's coverage counters, runs it, and prints line and
# branch coverage for each layer of src/ and for all of it. Branches that only
# exist for exceptions the compiler might throw are left out: they are not
# choices the code makes, and counting them buries the real ones.
# Usage: tools/coverage.sh [--no-build]   (writes build/coverage/coverage.json)
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install-deps.sh

if [[ "${1:-}" != "--no-build" ]]; then
    cmake --preset coverage >/dev/null
    cmake --build --preset coverage -j "$(nproc)"
fi
find build/coverage -name '*.gcda' -delete
ctest --preset coverage -j "$(nproc)" >build/coverage/ctest.log || {
    tail -30 build/coverage/ctest.log
    exit 1
}
gcovr --root . --filter 'src/' --object-directory build/coverage \
    --exclude-throw-branches --exclude-unreachable-branches \
    --json build/coverage/coverage.json -j "$(nproc)" build/coverage >/dev/null

python3 - build/coverage/coverage.json <<'PY'
import collections, json, sys

files = json.load(open(sys.argv[1]))["files"]
totals = collections.defaultdict(lambda: [0, 0, 0, 0])
for entry in files:
    layer = entry["file"].split("/")[1]
    for line in entry["lines"]:
        if line.get("gcovr/noncode"):
            continue
        for key in (layer, "all"):
            t = totals[key]
            t[0] += 1
            t[1] += line["count"] > 0
            t[2] += len(line["branches"])
            t[3] += sum(b["count"] > 0 for b in line["branches"])

def percent(part, whole):
    return f"{100.0 * part / whole:5.1f}%" if whole else "    -"

print(f"{'layer':<12} {'lines':>14} {'line cov':>9} {'branches':>16} {'branch cov':>10}")
for layer in sorted(k for k in totals if k != "all") + ["all"]:
    lines, hit, branches, taken = totals[layer]
    print(f"{layer:<12} {hit:>6}/{lines:<7} {percent(hit, lines):>9} {taken:>7}/{branches:<8} {percent(taken, branches):>10}")
PY
