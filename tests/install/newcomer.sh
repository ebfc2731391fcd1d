#!/usr/bin/env bash
# Follows README.md and docs/tutorial.md to the letter: newcomer.sh SOURCES FOLDER NAME
# The library NAME and its example are installed in FOLDER/prefix.
set -euo pipefail -m
sources=$1 prefix=$2/prefix package=$3 suffix=${3#plugininterface}
export HOME=$2/home TMPDIR=$2/home/tmp PATH=$prefix/bin:$PATH CMAKE_PREFIX_PATH=$prefix
mkdir -p "$TMPDIR" "$HOME/minimal" "$HOME/notes"
trap 'for job in $(jobs -p); do kill -- "-$job" || true; done; wait' EXIT

# Runs the blocks of commands with a word in them: follow PAGE WORD. What the pages leave open is replaced: Qt 6, the
# place of the installation, the port of the game server. Clients run on, with their messages in files.
follow() {
    local commands
    commands=$(awk -v word="$2" '/^```sh$/ {inside = 1; block = ""; next}
        /^```$/ {if (inside && index(block, word)) printf "%s", block; inside = 0}
        inside {block = block $0 "\n"}' "$sources/$1" |
        sed -e "s/^cmake -B build/& -D PLUGININTERFACE=$package/" \
            -e "s/plugininterface-example\>/&$suffix/" -e "s|CMAKE_PREFIX_PATH=/usr|CMAKE_PREFIX_PATH=$prefix|" \
            -e 's/PORT$/$(port)/' -e 's|\(.* --folder ~/\([a-z]*\)/[^&]*\).*|\1 2>~/\2.log \&|')
    [ -n "$commands" ]
    eval "$commands"
}

# Waits until a text is in a file, and prints the line: await FILE TEXT
await() {
    local end=$((SECONDS + 120))
    until grep -s "$2" "$1"; do
        if [ $SECONDS -gt $end ]; then
            echo "\"$2\" isn't in $1" >&2
            cat "$1" >&2
            return 1
        fi
        sleep 0.1
    done
}

# Prints the port of the game server, which writes it into a file of its own before the client starts.
port() {
    await ~/cardroom.log started >/dev/null
    sed -n 's/^listening on //p' "$TMPDIR"/tmp.*/gameserver
}

cd "$HOME/minimal"
cp "$sources"/examples/minimal/* . # README shows them as they are
follow README.md build/host >answer 2>&1
await answer 'the game server has 3 tables'

# The plugin in the pieces in which the page shows them, and the files that it shows as a whole.
cd "$HOME/notes"
for file in $(sed -n 's|^@include ||p' "$sources/docs/tutorial.md"); do
    cp "$sources/examples/$file" .
done
for piece in $(sed -n 's|^@snippet plugins/notes/NotesPlugin.cpp ||p' "$sources/docs/tutorial.md"); do
    awk "/\/\/! .*\[$piece\]/ {on = !on; next} on && !/\/\/! \[/" "$sources/examples/plugins/notes/NotesPlugin.cpp"
done >NotesPlugin.cpp
follow docs/tutorial.md 'cmake --build build'
cp "$HOME/minimal/build/hello.so" "$(find "$prefix/lib" -path "*/plugininterface-example$suffix/Contents/Client/Plugins")"
follow docs/tutorial.md --folder
for client in cardroom second; do
    await ~/$client.log 'Plugin "notes" 1.0 started'
    await ~/$client.log 'the game server has [0-9]* tables'
    [ -f ~/$client/Tmp/settings.sqlite ]
    if grep -E "is missing|can't be|is no plugin" ~/$client.log; then
        exit 1
    fi
done
