# shellcheck shell=bash disable=SC2034
# What the scripts share; sourced by bash with the repository as working directory.

# Every preset, in the order of CMakePresets.json.
presets=$(sed -n 's/^ *{"name": "\([a-z0-9-]*\)", "configurePreset".*/\1/p' CMakePresets.json)

# The Debian packages that a leg needs.
packages_of() {
    case $1 in
        demo) echo cmake ninja-build g++ ;;
        lint) echo g++ clang-format clang-tidy shellcheck ;;
        bench) echo g++ binutils python3 strace tftpd-hpa dnsmasq-base tftp-hpa atftp curl ;;
        *) echo cmake ninja-build g++ googletest pkg-config tftpd-hpa dnsmasq-base ;;
    esac
    case $1 in
        dev | clang) echo clang gdb libsnmp-dev ;;
        asan) echo libsnmp-dev ;;
        release)
            echo clang gdb libsnmp-dev libglib2.0-dev libboost-dev libsigc++-2.0-dev qtbase5-dev
            ;;
        coverage) echo gcovr ;;
        i686) echo g++-i686-linux-gnu ;;
        powerpc) echo g++-powerpc-linux-gnu qemu-user ;;
        mips) echo g++-mips-linux-gnu qemu-user ;;
    esac
    case $1 in
        release | i686 | powerpc | mips) echo abigail-tools python3 ;;
    esac
}

# What a package is wanted for, where there are no Debian packages: a command or a file.
tool_of() {
    case $1 in
        ninja-build) echo ninja ;;
        clang) echo clang++ ;;
        googletest) echo /usr/include/gtest/gtest.h ;;
        qemu-user) echo qemu-ppc ;;
        abigail-tools) echo abidiff ;;
        libsnmp-dev) echo /usr/include/net-snmp/net-snmp-includes.h ;;
        tftpd-hpa) echo /usr/sbin/in.tftpd ;;
        dnsmasq-base) echo /usr/sbin/dnsmasq ;;
        libglib2.0-dev) echo /usr/include/glib-2.0/glib-object.h ;;
        libboost-dev) echo /usr/include/boost/version.hpp ;;
        libsigc++-2.0-dev) echo /usr/include/sigc++-2.0/sigc++/sigc++.h ;;
        qtbase5-dev) echo qmake ;;
        tftp-hpa) echo tftp ;;
        binutils) echo readelf ;;
        g++-*) echo "${1#g++-}-g++" ;;
        *) echo "$1" ;;
    esac
}

is_there() {
    if command -v dpkg-query >/dev/null; then
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
    else
        command -v "$(tool_of "$1")" >/dev/null || [ -e "$(tool_of "$1")" ]
    fi
}

# need PACKAGE...: installs what is missing. Where it cannot, it says so and goes on: the tools may
# be there all the same.
need() {
    local package missing=() sudo=()
    for package; do
        is_there "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    if ! command -v apt-get >/dev/null; then
        for package in "${missing[@]}"; do echo "missing: $(tool_of "$package")"; done
        return 0
    fi
    if [ "$(id -u)" != 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "missing, and installing them takes root: ${missing[*]}"
            return 0
        fi
        sudo=(sudo)
    fi
    echo "installing ${missing[*]}"
    quietly "${sudo[@]}" apt-get -q -y update
    install "${missing[@]}" || echo "could not install all of them; going on with what is there"
}

# install PACKAGE...: takes nothing away for it. A server among them is started by tests, where they
# want it, and never becomes a service of the machine.
install() {
    local policy=/usr/sbin/policy-rc.d own_policy=
    if [ ! -e $policy ]; then
        own_policy=$policy
        printf '#!/bin/sh\nexit 101\n' | "${sudo[@]}" tee $policy >/dev/null
        "${sudo[@]}" chmod +x $policy
    fi
    local status=0
    quietly "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y \
        -o DPkg::Lock::Timeout=300 install --no-install-recommends --no-remove "$@" || status=1
    case " $* " in *' tftpd-hpa '*) "${sudo[@]}" update-rc.d tftpd-hpa disable 2>/dev/null ;; esac
    [ -z "$own_policy" ] || "${sudo[@]}" rm -f "$own_policy"
    return $status
}

# quietly COMMAND...: shows what the command prints only when it fails.
quietly() {
    local output
    output=$("$@" 2>&1 </dev/null) && return
    local status=$?
    printf '%s\n' "$output"
    return $status
}

# leg NAME COMMAND...: runs one leg of several. A failure is remembered for the summary, and the
# next leg goes on.
results=()
failures=0
leg() {
    local name=$1 start=$SECONDS verdict=OK
    shift
    echo "== $name"
    "$@" || { verdict=FAIL; failures=$((failures + 1)); }
    results+=("$(printf '%-4s %-22s %4d s' $verdict "$name" $((SECONDS - start)))")
}

# One line per leg. Fails when one of them did.
summary() {
    echo
    printf '%s\n' "${results[@]}"
    [ $failures -eq 0 ]
}
