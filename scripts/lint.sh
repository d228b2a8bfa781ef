#!/usr/bin/env bash
# Runs clang-tidy over the sources of the programs and libraries (src, libs, host, tools, bindings).
#   scripts/lint.sh [--all] [--seconds N]
# Without --all: what was changed since the last landed state, that is $KV_LINT_BASE when it is set, else the newest
# commit that is at least four hours older than HEAD, and in the working tree. A changed header is checked through a
# source file that includes it. --seconds stops starting new files after N seconds; how many files were not checked
# for that reason is printed. Exit status 1: there are findings.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$KV_ROOT"

readonly LANDED_AGE=$((4 * 3600))
readonly BUILD=build/lint

everything=no
seconds=0
while (($# > 0)); do
    case "$1" in
        --all) everything=yes ;;
        --seconds)
            seconds="${2:?--seconds needs a number}"
            shift
            ;;
        *)
            sed -n '2,7s/^# \{0,1\}//p' "$0" >&2
            exit 2
            ;;
    esac
    shift
done

# landed_commit: the state to compare with; empty where the history is too short
landed_commit() {
    if [[ -n "${KV_LINT_BASE:-}" ]]; then
        git rev-parse --verify --quiet "$KV_LINT_BASE^{commit}" && return 0
        complain "KV_LINT_BASE names no commit: $KV_LINT_BASE"
        return 1
    fi
    git rev-list -1 --before=$(($(git log -1 --format=%ct) - LANDED_AGE)) HEAD
}

all_sources() { git ls-files -- 'src/*.cpp' 'libs/*.cpp' 'host/*.cpp' 'tools/*.cpp' 'bindings/*.cpp'; }

# source_of HEADER: the source file of the same name, else the first that includes the header
source_of() {
    local own="${1%.h}.cpp"
    if [[ -f "$own" ]]; then
        echo "$own"
    else
        all_sources | xargs grep -lE "#include [\"<]([^\">]*/)?$(basename "$1")[\">]" | head -1 || true
    fi
}

# changed_sources BASE
changed_sources() {
    local file
    { git diff --name-only --diff-filter=d "$1" && git ls-files --others --exclude-standard; } |
        { grep -E '^(src|libs|host|tools|bindings|include)/.*\.(h|cpp)$' || true; } |
        while read -r file; do
            if [[ "$file" == *.h ]]; then source_of "$file"; else echo "$file"; fi
        done | awk '!seen[$0]++'
}

# The compile commands of the release build, less what only g++ understands.
write_compile_commands() {
    configure_preset release
    mkdir -p "$BUILD"
    sed -E 's/ -Winvalid-pch -include [^ ]*cmake_pch\.hxx//' build/release/compile_commands.json >"$BUILD/compile_commands.json"
}

# lint_file DEADLINE FILE: prints the findings, then one line that says how it ended
lint_file() {
    if (($(date +%s) >= $1)); then
        echo "left: $2"
    elif clang-tidy --quiet -p "$BUILD" "$2" 2>/dev/null; then
        echo "clean: $2"
    else
        echo "findings: $2"
    fi
}

base=""
[[ $everything == yes ]] || base="$(landed_commit)"
if [[ -z "$base" ]]; then
    say "linting all sources"
    files="$(all_sources)"
else
    say "linting what changed since $(git log -1 --format='%h (%ci)' "$base")"
    files="$(changed_sources "$base")"
fi
if [[ -z "$files" ]]; then
    echo "clang-tidy: no source has changed, 0 files linted"
    exit 0
fi

install_missing "${KV_DEVELOPMENT_PACKAGES[@]}"
write_compile_commands
deadline=$(($(date +%s) + (seconds > 0 ? seconds : 1000000)))
export -f lint_file
export BUILD
report="$(xargs -P "$(nproc)" -I{} bash -c 'lint_file "$1" "$2"' lint "$deadline" {} <<<"$files")"
grep -vE '^(clean|left): ' <<<"$report" || true
clean="$(grep -c '^clean: ' <<<"$report" || true)"
bad="$(grep -c '^findings: ' <<<"$report" || true)"
left="$(grep -c '^left: ' <<<"$report" || true)"
echo "clang-tidy: $((clean + bad)) files linted ($clean clean, $bad with findings), $left not linted for lack of time"
((bad == 0))
