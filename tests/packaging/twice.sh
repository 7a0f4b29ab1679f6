#!/usr/bin/env bash
# Builds the program with debug information, and the package, twice, at different times and in
# different directories. Both builds must be the same byte for byte.
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"
needs dpkg-deb dpkg-shlibdeps gzip
export SOURCE_DATE_EPOCH=1795262400
# A compiler cache could return objects of the first build.
export CCACHE_DISABLE=1

setting() {
    sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"
}

# build_in DIRECTORY: without optimisation, which takes long and does not depend on directories.
build_in() {
    mkdir -p "$1/sources"
    tar -C "$source" --exclude=./.git --exclude='./build*' --exclude=./demo-region -c . |
        tar -C "$1/sources" -x
    {
        cmake -S "$1/sources" -B "$1/built" -G "$(setting CMAKE_GENERATOR)" \
            -DCMAKE_CXX_COMPILER="$(setting CMAKE_CXX_COMPILER)" -DCMAKE_BUILD_TYPE=None \
            -DCMAKE_CXX_FLAGS='-O0 -g1' -DBUILD_TESTING=OFF &&
            cmake --build "$1/built" --parallel 2
    } >"$1/log" 2>&1 || fail "$(cat "$1/log")"
    cp "$1/built/gatescope" "$1/program"
    cpack -G DEB --config "$1/built/CPackConfig.cmake" -B "$1/made" >"$1/log" 2>&1 ||
        fail "cpack: $(cat "$1/log")"
    mv "$1"/made/*.deb "$1/package.deb"
    # Removed, so that the next build cannot find it.
    rm -r "$1/built" "$1/made" "$1/sources"
}

build_in "$work/one"
build_in "$work/another-place"
for made in program package.deb; do
    cmp "$work/one/$made" "$work/another-place/$made" || fail "two builds differ: $made"
done
