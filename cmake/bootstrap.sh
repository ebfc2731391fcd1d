# Sourced by ./demo and ./test: installs missing packages and builds a preset. Both run in the project's folder.

# say PART: tells what begins, and remembers how long the part before it took.
times=()
say() {
    [ -z "${said-}" ] || times+=("$(printf '%5d s  %s' $((SECONDS - since)) "$said")")
    said=$*
    since=$SECONDS
    printf '\n== %s\n' "$said"
}

say_times() {
    say "All of it took $SECONDS s"
    printf '%s\n' "${times[@]}"
}

# install_packages LIST...: installs the missing ones of the Debian packages in cmake/packages.txt, and in each
# cmake/packages-LIST.txt.
install_packages() {
    local missing=() package list lists=(cmake/packages.txt) as_root=()
    for list in "$@"; do lists+=("cmake/packages-$list.txt"); done
    for package in $(grep -hv '^#' "${lists[@]}"); do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    say "Installing ${missing[*]}"
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
        >/dev/null
}

# build_preset NAME [TARGET...]: says that it builds a preset, or targets of it, and does so.
build_preset() {
    say "Building $1"
    build "$@"
}

# build NAME [TARGET...]: configures and builds a preset, or targets of it.
build() {
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$1" ${2:+--target "${@:2}"}
}

# take_tour PRESET: drives the example client, and saves screenshots in build/PRESET/tour.
take_tour() {
    say "The tour, $1"
    local build=$PWD/build/$1 data=$PWD/examples/data keys=$PWD/build/$1/keys folder
    for folder in "$keys" "$keys/impostor"; do
        "$build"/bin/plugininterface-data* certificate make "$folder" --force --host 127.0.0.1 >/dev/null
    done
    tests/support/on_desktop 2560x1800 "$build/installation/Contents/Client/tour.exe" "$build/tour" \
        --game-server "$build/bin/gameserver" --tables "$data/tables.json" --accounts "$data/accounts.json" \
        --web-server "$build/bin/webserver" --pictures "$data/pictures" \
        --keys "$keys" || return
    echo "Screenshots: build/$1/tour"
}
