#!/usr/bin/env bash
# Installs what is missing, builds what has changed, and runs all tests. Arguments go to ctest, e.g. ./test.sh -R Kernel
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")"

scripts/install-deps.sh run test
scripts/build.sh dev
exec ctest --preset dev "$@"
