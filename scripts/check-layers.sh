#!/usr/bin/env bash
# Fails when a folder of src/ includes a header of a higher layer, when the portable
# platform includes its Linux implementations, or when two folders of the same rank include
# each other. Prints each offending file:line. Tests and the apps are not checked.
#
# Layers, lowest first: platform < core < model < api < accounts < offline < player, audio <
# browse, ads, analytics, links < app.
set -uo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

grep -rn --include='*.h' --include='*.cpp' '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' src |
    awk '
    BEGIN {
        split("platform:0 core:1 model:2 api:3 accounts:4 offline:5 player:6 audio:6 " \
              "browse:7 ads:7 analytics:7 links:7 app:8", pairs, " ")
        for (i in pairs) {
            split(pairs[i], kv, ":")
            rank[kv[1]] = kv[2]
        }
        failed = 0
    }
    {
        # file:line:#include "target"
        split($0, parts, ":")
        file = parts[1]
        line = parts[2]
        target = $0
        sub(/^[^"]*"/, "", target)
        sub(/".*$/, "", target)
        split(file, path, "/")
        from = path[2]
        split(target, into, "/")
        to = into[1]
        if (!(from in rank) || !(to in rank) || index(target, "/") == 0) {
            next
        }
        where = file ":" line ": includes \"" target "\""
        if (from == "platform" && path[3] != "linux" && target ~ /^platform\/linux\//) {
            print where " (the portable platform must not include its Linux implementations)"
            failed = 1
        } else if (rank[to] > rank[from]) {
            print where " (" from " is below " to ")"
            failed = 1
        } else if (rank[to] == rank[from] && to != from) {
            edge = from " " to
            seen[edge] = seen[edge] where "\n"
        }
    }
    END {
        for (edge in seen) {
            split(edge, ends, " ")
            back = ends[2] " " ends[1]
            if ((back in seen) && ends[1] < ends[2]) {
                printf "%s%s", seen[edge], seen[back]
                print "  (" ends[1] " and " ends[2] " include each other)"
                failed = 1
            }
        }
        exit failed
    }'
status=$?
if [[ $status -eq 0 ]]; then
    echo "check-layers: every include points down"
fi
exit $status
