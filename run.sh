#!/usr/bin/env bash
# Installs what is missing, builds what has changed, and runs the tool with the arguments given. Without any, that is the
# phone's screen on a terminal, else the demonstration.
set -euo pipefail
home=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)

"$home/scripts/install-deps.sh" run
"$home/scripts/build.sh" release wideseek

# By its own name, which the tool gives to the commands that it says can be typed next.
exec -a "$0" "$home/build/release/wideseek" "$@"
