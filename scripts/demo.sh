#!/usr/bin/env bash
# The demo: builds the client and the reference service, starts the service on a free
# loopback port and runs the client against it.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake --preset default
cmake --build --preset default --target tunebrook tunebrook-service
./build/default/apps/tunebrook/tunebrook
