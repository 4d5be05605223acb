#!/bin/bash
# Installs the Debian packages of a set, those only that are not there yet.
set -euo pipefail

usage() {
    echo "usage: $0 demo|tests|bench|armhf|i386" >&2
    exit 2
}

[ $# -eq 1 ] || usage
packages=(g++ cmake ninja-build qtbase5-dev libqt5serialport5-dev libncurses-dev)
case $1 in
demo) ;;
tests)
    packages+=(clang clang-format clang-tidy libclang-rt-14-dev pkg-config binutils gcovr doxygen)
    packages+=(abigail-tools dpkg-dev file lintian python3) # the packages and the interface
    # Peers of the programs, and what looks at them as a person does.
    packages+=(libmodbus-dev python3-pymodbus python3-serial-asyncio mbpoll tshark tmux mandoc)
    ;;
bench) packages+=(libbenchmark-dev libmodbus-dev pkg-config python3 valgrind) ;;
armhf) packages+=(g++-arm-linux-gnueabihf qemu-user) ;;
i386) packages+=(g++-i686-linux-gnu) ;;
*) usage ;;
esac

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
    echo "Packages of the set '$1': all there."
    exit 0
fi

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "Installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
