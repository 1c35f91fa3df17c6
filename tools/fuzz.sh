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
# AddressSanitizer holds freed memory back (256 MB by default) to catch its
# later use; spread over every size class by a reader's many short-lived
# allocations, that alone took the OpenStep fuzzer past 1 GB while the reader
# held next to nothing. A smaller quarantine keeps a run near 100 MB, so the
# limits below catch real growth: a process above 1 GB, or one allocation
# above 256 MB from an input of a few kilobytes.
export ASAN_OPTIONS=${ASAN_OPTIONS:-quarantine_size_mb=32}
targets=("$@")
[[ ${#targets[@]} -eq 0 ]] && targets=(xml_reader binary_reader openstep_reader domain_builder standardize profile_document
    signed_message manifest_index third_party_manifest user_defaults macho_reader signature_reader app_store_json
    icns_reader)
for target in "${targets[@]}"; do
    work=build/fuzz/corpus/$target
    mkdir -p "$work" build/fuzz/findings
    echo "== fuzz-${target//_/-} for ${seconds}s"
    build/fuzz/bin/fuzz-${target//_/-} -max_total_time="$seconds" -rss_limit_mb=1024 -malloc_limit_mb=256 -timeout=10 \
        -print_final_stats=1 -artifact_prefix=build/fuzz/findings/ "$work" "fuzz/corpus/$target"
done
