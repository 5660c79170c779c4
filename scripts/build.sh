# SPDX-License-Identifier: Apache-2.0
# Shell functions of ./run and ./test; read with "." from the repository's root.

# Programs read and write UTF-8 and need no display, whatever the machine is set to.
export LC_ALL=C.UTF-8
export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"

say()
{
    printf '==> %s\n' "$*"
}

# Configures a preset where that is needed: the build itself notices changes of CMake files, but
# neither other options, nor changed presets, nor that the repository was moved. A build that was
# configured with these options and more after them will do.
configure() # PRESET [OPTION...]
{
    preset=$1
    shift
    stamp=build/$preset/configured-with
    if [ -f "build/$preset/build.ninja" ] && [ -f "$stamp" ] \
        && [ -z "$(find CMakePresets.json -newer "$stamp")" ]; then
        case "$(cat "$stamp") " in
        "$PWD $* "*) return 0 ;;
        esac
    fi
    say "Configuring preset $preset"
    case "$(cat "$stamp" 2>/dev/null)" in
    "$PWD "*) cmake --preset "$preset" "$@" ;;
    *) cmake --fresh --preset "$preset" "$@" ;;
    esac
    echo "$PWD $*" >"$stamp"
}

build() # PRESET [TARGET...]
{
    preset=$1
    shift
    say "Building preset $preset"
    if [ $# -gt 0 ]; then
        cmake --build "build/$preset" --parallel "$(nproc)" --target "$@"
    else
        cmake --build "build/$preset" --parallel "$(nproc)"
    fi
}
