# Shared by the scripts: where we are, and a line of progress a step.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
started=$SECONDS
step() { printf '[%4ds] %s\n' "$((SECONDS - started))" "$*"; }
# What ccache needs to keep results of compilations with precompiled headers.
export CCACHE_SLOPPINESS=pch_defines,time_macros
