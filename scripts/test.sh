#!/usr/bin/env bash
# Builds everything with warnings as errors and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake --preset ci
cmake --build --preset ci
ctest --preset ci -j "$(nproc)"
