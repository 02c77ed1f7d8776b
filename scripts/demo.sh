#!/usr/bin/env bash
# The demo: builds the client and the reference service, starts the service on a free
# loopback port with its generated catalogue, and takes the client through it: the launch,
# signing in as the service's demo listener, the remote variables, the charts, trending and
# recent music, an artist, a search and the featured spots.
#
# State lives in .demo/ at the top of the tree (the service's database, audio and keys; the
# client's preferences and store), so a second run starts at once and finds what the first
# one left. `bash scripts/demo.sh --fresh` starts from nothing.
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ "${1:-}" == "--fresh" ]]; then
  rm -rf .demo/service .demo/client
fi

bash scripts/install-deps.sh
cmake --preset default >/dev/null
cmake --build --preset default --target tunebrook tunebrook-service

demo=.demo
mkdir -p "$demo/service" "$demo/client" "$demo/media"
service_bin=./build/default/apps/tunebrook-service/tunebrook-service
client_bin=./build/default/apps/tunebrook/tunebrook

service_out="$demo/service.out"
: >"$service_out"
echo "== Starting the reference service (the first start makes its catalogue and audio)"
"$service_bin" --data "$demo/service" --port 0 --media-cache "$demo/media" \
  >"$service_out" 2>"$demo/service.log" &
service_pid=$!
trap 'kill "$service_pid" 2>/dev/null || true; wait "$service_pid" 2>/dev/null || true' EXIT

for _ in $(seq 1 600); do
  if [[ -s "$service_out" ]]; then break; fi
  if ! kill -0 "$service_pid" 2>/dev/null; then
    echo "The service stopped while starting:" >&2
    cat "$demo/service.log" >&2
    exit 1
  fi
  sleep 0.1
done
base_url=$(head -n 1 "$service_out")
if [[ -z "$base_url" ]]; then
  echo "The service did not say where it listens; see $demo/service.log" >&2
  exit 1
fi
echo "   service at $base_url (log: $demo/service.log)"

client() {
  echo
  echo "== tunebrook $*"
  "$client_bin" --home "$demo/client" --keys "$demo/service/keys.json" "$@"
}

# The launch once in full; after that only what each command printed.
quiet_client() {
  echo
  echo "== tunebrook $*"
  "$client_bin" --home "$demo/client" --keys "$demo/service/keys.json" "$@" 2>&1 |
    grep -v -e '^launch: ' -e '^\[Keychain\]' || true
}

client
# The service made a demo listener at its first start; sign in as them, the password on
# standard input so that it shows nowhere.
demo_email=$(grep -o '"email": *"[^"]*"' "$demo/service/demo-account.json" | sed 's/.*"\([^"]*\)"$/\1/')
echo
echo "== tunebrook login --email $demo_email --password-stdin"
grep -o '"password": *"[^"]*"' "$demo/service/demo-account.json" | sed 's/.*"\([^"]*\)"$/\1/' |
  "$client_bin" --home "$demo/client" --keys "$demo/service/keys.json" \
    login --email "$demo_email" --password-stdin 2>&1 | grep -v -e '^launch: ' -e '^\[Keychain\]' || true
quiet_client whoami
quiet_client remote-vars
quiet_client trending
quiet_client recent --genre electronic
quiet_client chart songs --genre rap --period weekly
quiet_client chart albums --period monthly
# The first uploader of the trending list, picked out of the client's own JSON records.
artist=$("$client_bin" --home "$demo/client" --keys "$demo/service/keys.json" --json trending \
  2>/dev/null | grep -o '"uploaderSlug": *"[^"]*"' | head -n 1 | sed 's/.*"\([^"]*\)"$/\1/' || true)
if [[ -n "$artist" ]]; then
  quiet_client artist "$artist"
  quiet_client artist "$artist" uploads
fi
quiet_client search love
quiet_client search signal --category artists
quiet_client featured
quiet_client song 99999999

echo
echo "== Done. The service stops now; run this script again to come back to the same state."
