# Shared settings for the scripts in this folder; sourced, not run.

REPO_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
JOBS=2

GENERATOR_ARGS=()
if command -v ninja >/dev/null 2>&1; then
    GENERATOR_ARGS=(-G Ninja)
fi

# configure <build-dir> <cmake args...>
# Keeps the generator of an existing build directory so that reconfiguring never fails.
configure() {
    local dir="$1"
    shift
    if [[ -f "$dir/CMakeCache.txt" ]]; then
        cmake -S "$REPO_ROOT" -B "$dir" "$@"
    else
        cmake -S "$REPO_ROOT" -B "$dir" "${GENERATOR_ARGS[@]}" "$@"
    fi
}
