#!/bin/sh
# Whether the changes that CONTRIBUTING.md shows still apply to what is there: contributing_changes.sh ROOT
sed -n '/^```diff$/,/^```$/{/^```/!p}' "$1/CONTRIBUTING.md" | patch -p1 --dry-run --force --fuzz=0 -d "$1"
