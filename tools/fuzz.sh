#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for a while on its seed
# corpus (default 600 s each; FUZZ_SECONDS overrides). New inputs the fuzzer
# finds go to build/fuzz/corpus/<target>, never into the committed seeds.
# Usage: tools/fuzz.sh [target...]   e.g. tools/fuzz.sh xml_reader binary_reader
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install-deps.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"

seconds=${FUZZ_SECONDS:-600}
targets=("$@")
[[ ${#targets[@]} -eq 0 ]] && targets=(xml_reader binary_reader openstep_reader domain_builder standardize macho_reader signature_reader app_store_json)
for target in "${targets[@]}"; do
    work=build/fuzz/corpus/$target
    mkdir -p "$work" build/fuzz/findings
    echo "== fuzz-${target//_/-} for ${seconds}s"
    build/fuzz/bin/fuzz-${target//_/-} -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=10 \
        -print_final_stats=1 -artifact_prefix=build/fuzz/findings/ "$work" "fuzz/corpus/$target"
done
