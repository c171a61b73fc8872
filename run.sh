#!/usr/bin/env bash
# Installs what is missing, builds what has changed, and runs the tool with the arguments given. Without any, that is the
# phone's screen on a terminal, else the demonstration.
set -euo pipefail
home=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)

"$home/scripts/install-deps.sh" run
"$home/scripts/build.sh" release wideseek

exec "$home/build/release/wideseek" "$@"
