#!/usr/bin/env bash
# Whole-process figures of the release build with many domains in force:
#   - the editor until its first window is painted (offscreen), 250 domains;
#   - `quorlin-profile check` of one profile, 250 domains;
#   - the editor's resident memory at rest, 500 domains.
# The domains come from the manifest corpus: its manifests are copied as many
# times as needed under made-up domains, standardized by
# `quorlin-profile manifests standardize`, and put in force as the local
# manifest repository of settings made for the run. Times are the median of
# RUNS runs (default 7) of /usr/bin/time.
# Usage: bench/startup.sh [build-dir]   (default build/release)
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "${1:-build/release}")
runs=${RUNS:-7}
corpus=$(realpath ../shared/corpus/profile-manifests)
work=$(mktemp -d "${TMPDIR:-/tmp}/quorlin-startup.XXXXXX")
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen

# Copies of the corpus's manifests, the first under their own domains and the
# rest under numbered ones, until they describe $2 domains.
make_originals() {
    python3 - "$corpus/Manifests" "$1" "$2" <<'EOF'
import pathlib, plistlib, sys
source, target, count = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), int(sys.argv[3])
files = sorted(source.rglob("*.plist"))
seen = set()
index = 0
# Manifests of one domain merge into one, so each copy must bring a new domain.
while len(seen) < count:
    original = files[index % len(files)]
    copy = index // len(files)
    index += 1
    manifest = plistlib.loads(original.read_bytes())
    domain = manifest.get("pfm_domain", "org.quorlin.bench")
    if copy:
        domain = manifest["pfm_domain"] = f"{domain}.copy{copy}"
        manifest["pfm_title"] = f"{manifest.get('pfm_title', original.stem)} {copy + 1}"
    if domain in seen:
        continue
    seen.add(domain)
    folder = target / "Manifests" / original.parent.relative_to(source)
    folder.mkdir(parents=True, exist_ok=True)
    (folder / f"{original.stem}-{copy}.plist").write_bytes(plistlib.dumps(manifest))
EOF
}

# A settings folder whose local manifest repository holds $1 domains.
prepare() {
    local count=$1 home="$work/$1"
    mkdir -p "$home/config/quorlin-profile-editor" "$home/data"
    make_originals "$home/originals" "$count"
    XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" \
        "$build/bin/quorlin-profile" manifests standardize "$home/originals" "$home/standard" >/dev/null
    python3 - "$home/config/quorlin-profile-editor/com.quorlin.ProfileEditor.plist" "$home/standard" <<'EOF'
import plistlib, sys
settings = {"manifestRepositoryType": "local", "localRepositoryPathBookmark": sys.argv[2].encode()}
open(sys.argv[1], "wb").write(plistlib.dumps(settings))
EOF
    # The first start makes the repository's store; the runs measured read it.
    in_home "$count" "$build/bin/quorlin-profile-editor" --list-domains >"$home/domains.txt"
    echo "$(wc -l <"$home/domains.txt") domains in force"
}

in_home() {
    local home="$work/$1"
    shift
    XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" "$@"
}

# Seconds of a "[h:]m:s" clock, or plain seconds, as milliseconds.
milliseconds() {
    awk -v t="$1" 'BEGIN {n = split(t, p, ":"); s = 0; for (i = 1; i <= n; ++i) s = s * 60 + p[i]; printf "%d", s * 1000}'
}

median() {
    printf '%s\n' "$@" | sort -n | awk '{a[NR] = $1} END {print a[int((NR + 1) / 2)]}'
}

# The medians of the runs' elapsed and CPU (user + system) times, and the
# largest resident size. On a shared machine the CPU time is the steadier figure.
measure() {
    local count=$1 label=$2
    shift 2
    local elapsed=() cpu=() peak=0
    for _ in $(seq "$runs"); do
        in_home "$count" /usr/bin/time -v -o "$work/time.txt" "$@" >/dev/null 2>&1 || true
        elapsed+=("$(milliseconds "$(awk -F': ' '/Elapsed \(wall clock\)/ {print $2}' "$work/time.txt")")")
        cpu+=("$(awk -F': ' '/User time|System time/ {s += $2} END {printf "%d", s * 1000}' "$work/time.txt")")
        local rss
        rss=$(awk -F': ' '/Maximum resident set size/ {print $2}' "$work/time.txt")
        ((rss > peak)) && peak=$rss
    done
    echo "$label: median $(median "${elapsed[@]}") ms elapsed (${elapsed[*]}), $(median "${cpu[@]}") ms CPU" \
        "(${cpu[*]}), peak $((peak / 1024)) MB resident"
}

# The resident size of the editor a while after its first window, read from /proc.
at_rest() {
    local count=$1
    # Started here, not through in_home, so that $! is the editor itself.
    XDG_CONFIG_HOME="$work/$count/config" XDG_DATA_HOME="$work/$count/data" QUORLIN_EXIT_AFTER_FIRST_WINDOW=6000 \
        "$build/bin/quorlin-profile-editor" >/dev/null 2>&1 &
    local pid=$!
    sleep 5
    local rss
    rss=$(awk '/VmRSS/ {print $2}' "/proc/$pid/status" 2>/dev/null || echo "?")
    wait "$pid" || true
    echo "editor at rest, $count domains: $((rss / 1024)) MB resident"
}

prepare 250
prepare 500
# A profile of three of the domains, one of them a copy.
mapfile -t chosen < <(awk -F'\t' 'NR == 2 || NR == 60 || NR == 200 {print $1}' "$work/250/domains.txt")
in_home 250 "$build/bin/quorlin-profile" new "${chosen[@]}" -o "$work/profile.mobileconfig" >/dev/null

measure 250 "editor to its first window, 250 domains" \
    env QUORLIN_EXIT_AFTER_FIRST_WINDOW=0 "$build/bin/quorlin-profile-editor"
measure 250 "check of one profile, 250 domains" "$build/bin/quorlin-profile" check "$work/profile.mobileconfig"
at_rest 500
