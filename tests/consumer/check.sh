#!/usr/bin/env bash
# Installs a build to a folder and uses the installation as other projects do.
#   check.sh SOURCE BUILD WORK
set -euo pipefail
source_dir=$1 build_dir=$2 work=$3
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

step() { printf -- '-- %s\n' "$*"; }

rm -rf "$work"
mkdir -p "$work"

step "install"
cmake --install "$build_dir" --prefix "$work/first" >"$work/install.log"
# Moved, so that nothing in it can rely on where it was installed.
mv "$work/first" "$work/moved"
prefix=$work/moved
library_dir=$(dirname "$(find "$prefix" -name libbscan.so)")
device=$prefix/share/bscan/devices/nibble_bus.bsd

step "the CMake package"
cmake -S "$here/cmake" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" >"$work/cmake.log"
cmake --build "$work/cmake" >>"$work/cmake.log"
"$work/cmake/drive" "$device"
"$work/cmake/nets" "$prefix/share/bscan/boards/link_board.net"

step "the source tree within another project"
cmake -S "$here/cmake" -B "$work/subdirectory" -G Ninja -DBSCAN_SOURCE="$source_dir" \
    >"$work/subdirectory.log"
cmake --build "$work/subdirectory" >>"$work/subdirectory.log"
"$work/subdirectory/drive" "$device"
"$work/subdirectory/nets" "$prefix/share/bscan/boards/link_board.net"

step "pkg-config and make"
cp -r "$here/make" "$work/make"
PKG_CONFIG_PATH=$library_dir/pkgconfig make -s -C "$work/make"
LD_LIBRARY_PATH=$library_dir "$work/make/count" "$device"

step "each public header alone"
read -ra flags < <(PKG_CONFIG_PATH=$library_dir/pkgconfig pkg-config --cflags bscan)
compilers=(g++)
if command -v clang++ >/dev/null; then compilers+=(clang++); fi
for compiler in "${compilers[@]}"; do
    check=("$compiler" "${flags[@]}" -Wall -Wextra -Werror -fsyntax-only -x c++)
    find "$prefix/include/bscan" -name '*.h' -print0 |
        xargs -0 -I '{}' -P "$(nproc)" "${check[@]}" -std=c++17 -include '{}' /dev/null
    # What differs between languages differs in all of them.
    for language in -std=c++20 '-std=c++17 -fno-exceptions'; do
        # shellcheck disable=SC2086  # one or two options
        printf '#include <bscan/%s>\n' bscan.h pin_order.h text.h | "${check[@]}" $language -
    done
done

step "the tool, its manual page and its completions"
"$prefix/bin/bscan" --version
"$prefix/bin/bscan" show "$device" >/dev/null
"$prefix/bin/bscan" board "$prefix/share/bscan/boards/link_board.toml" >/dev/null
bash -n "$prefix/share/bash-completion/completions/bscan"
test -s "$prefix/share/zsh/site-functions/_bscan"
MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$prefix/share/man/man1/bscan.1" \
    2>&1 >/dev/null | tee "$work/man.log"
test ! -s "$work/man.log"

step "all found"
