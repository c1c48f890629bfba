#!/usr/bin/env bash
# shellcheck disable=SC2016,SC2154,SC2317 # Markdown's quotes are the shell's; promises call functions by name
# What the documents say about files, tests, texts and tables is so: nothing in them drifts away from the source.
set -euo pipefail
tests=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=../../scripts/lib/common.sh
source "$tests/../../scripts/lib/common.sh"
# shellcheck source=../../scripts/lib/documents.sh
source "$tests/../../scripts/lib/documents.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$tests/../../scripts/lib/promises.sh"

guide=$repo/docs/KIT-AUTHORS.md
administrators=$repo/docs/ADMINISTRATORS.md
architecture=$repo/docs/ARCHITECTURE.md
fleet=$repo/docs/FLEET.md
signing=$repo/docs/SIGNING.md
documents+=("$repo"/{CHANGELOG,SECURITY,CONTRIBUTING}.md "$repo"/packaging/README.md "$repo"/packaging/ansible/README.md)

# without_blocks FILE: the text outside fenced blocks.
without_blocks() { awk '/^ *```/ { inside = !inside; next } !inside' "$1"; }

# The names that headings can be linked by.
anchors() {
    without_blocks "$1" | sed -n 's/^##* //p' | tr '[:upper:]' '[:lower:]' | sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}

links_lead_somewhere() {
    local document link file
    for document in "${documents[@]}"; do
        while read -r link; do
            [[ $link != http* ]] || continue
            file=$document
            [[ $link == '#'* ]] || file=$(dirname -- "$document")/${link%%#*}
            [[ -e $file ]] || { printf '%s: no %s\n' "$document" "$link"; return 1; }
            if [[ $link == *'#'* ]] && ! anchors "$file" | grep -qx -- "${link#*#}"; then
                printf '%s: no heading %s\n' "$document" "$link"
                return 1
            fi
        done < <(without_blocks "$document" | grep -oE '\]\([^)]+\)' | sed 's/^](//; s/)$//')
    done
}

first_page_links() { grep -qF "](docs/$1)" "$repo/README.md"; }

drawings_are_drawn() {
    rm -rf -- "$build_dir/docs/drawings"
    "$repo/scripts/drawings" "$build_dir/docs/drawings"
    diff <(cd -- "$build_dir/docs/drawings" && ls) <(cd -- "$repo/docs" && ls -- *.svg) || return 1
    local drawing
    for drawing in "$build_dir"/docs/drawings/*.svg; do
        cmp -- "$drawing" "$repo/docs/${drawing##*/}" || return 1
    done
}

# Every drawing is well-formed and some document shows it.
drawings_are_shown() {
    local drawing
    for drawing in "$repo"/docs/*.svg; do
        xmllint --noout "$drawing" || return 1
        grep -qF "${drawing##*/})" "${documents[@]}" || { printf 'nobody shows %s\n' "$drawing"; return 1; }
    done
}

pictures_are_shown() {
    local picture
    for picture in "$repo"/docs/*.png; do
        identify -- "$picture" >/dev/null || return 1
        grep -qF "${picture##*/})" "${documents[@]}" || { printf 'nobody shows %s\n' "$picture"; return 1; }
    done
}

# The oddities' tests: "Suite.Test", or "script.sh: promise".
oddities_are_held() {
    local test rows=0
    while IFS= read -r test; do
        rows=$((rows + 1))
        if [[ $test == *.sh:* ]]; then
            grep -rqF -- "\"${test#*: }\"" "$repo/tests/restart/${test%%:*}"
        else
            grep -rqE "^(TEST|TEST_F|TEST_P)\(${test%.*}, ${test#*.}\)" "$repo/tests"
        fi || { printf 'no test %s\n' "$test"; return 1; }
    done < <(sed -n '/^## Kept oddities/,/^## /p' "$architecture" | sed -n 's/^|.*| `\([^`]*\)` |$/\1/p')
    ((rows > 20))
}

named_files_are_there() {
    local document name
    for document in "$architecture" "$repo/README.md" "$repo/packaging/ansible/README.md"; do
        while IFS= read -r name; do
            [[ $name == build/* || -e $repo/$name || -e $(dirname -- "$document")/$name ]] ||
                { printf '%s: no %s\n' "$document" "$name"; return 1; }
        done < <(without_blocks "$document" | grep -oE '`[A-Za-z]+/[A-Za-z0-9_./-]*`' | tr -d '`' | sort -u)
    done
}

# Trace lines are quoted as a viewer shows them, as far as they are the same in every run.
quoted_trace_is_written() {
    local line found=0
    while IFS= read -r line; do
        found=$((found + 1))
        grep -rqF --include=*.cpp --include=*.h -- "$line" "$repo/config" "$repo/devices" "$repo/installer" ||
            { printf 'nobody traces "%s"\n' "$line"; return 1; }
    done < <(grep -oE '`Morvix: [^`]+`' "$administrators" | sed 's/^`Morvix: //; s/`$//' | sort -u)
    ((found > 10))
}

shown_texts_are_shown() {
    local text found=0
    while IFS= read -r text; do
        found=$((found + 1))
        grep -qF -- "\"$text\"" "$repo/resources/texts/English.rc" || { printf 'no text "%s"\n' "$text"; return 1; }
    done < <(grep -oE 'shows "[^"]+"' "$administrators" | sed 's/^shows "//; s/"$//')
    ((found > 3))
}

# The kit author's table of families, as rows "prefix result form".
families_of_source() {
    sed -n 's/^ *{R"(\\\([A-Z0-9]*\))", "\([A-Z_]*\)_", DriverFilesFor61::\([A-Za-z0-9]*\)},$/\1 \2 \3/p' \
        "$repo/devices/DriverFamilies.h" | sort
}
families_of_guide() {
    local names values form name
    sed -n '/^| names of INF files/,/^$/p' "$guide" | grep '^| `' | while IFS='|' read -r _ names values form _; do
        values=${values%%_Install*}
        values=${values##*\`}
        form=$([[ $form == *62* ]] && printf Named62 || printf LikeElsewhere)
        for name in ${names//\`/}; do
            printf '%s %s %s\n' "$name" "$values" "$form"
        done
    done | sort
}
same_families() { [[ -n $(families_of_source) ]] && diff <(families_of_source) <(families_of_guide); }

same_sections() {
    diff <(sed -n 's/^\[\(Win.*\)\]\r*$/\1/p' "$repo/kit/Morvix.ini" | sort) \
        <(sed -n '/^### One section/,/^The ending/p' "$guide" | grep -oE '`Win[A-Za-z0-9]+`' | tr -d '`' | sort)
}

same_variables() {
    diff <(sed -n 's/^      \(morvix_[a-z_]*\):$/\1/p' "$repo/packaging/ansible/roles/morvix/meta/argument_specs.yml" | sort) \
        <(sed -n '/^Variables of the role/,$p' "$fleet" | sed -n 's/^| `\(morvix_[a-z_]*\)` .*/\1/p' | sort)
}

# Each value that the guide lists is one that the program writes, and the other way round.
same_values() {
    local value
    for value in Install Version Reboot RebootNeeded; do
        sed -n '/^## Result keys/,/^## /p' "$administrators" | grep -q "^| \`$value\` " || return 1
        grep -qF "\"$value\"" "$repo/platform/RecordNames.h" || { printf 'nobody writes %s\n' "$value"; return 1; }
    done
}

# Every code that the engine may end with is explained, in one row.
exit_codes_are_explained() {
    local code
    for code in 0 3010 1641 1602 1603 1612 1618 1633 1638; do
        [[ $(sed -n '/^\*\*Exit code of the package/,/^All commands/p' "$fleet" | grep -c "^| $code | ") == 1 ]] ||
            { printf 'no row for %s\n' "$code"; return 1; }
    done
}

# A refusal as the guide tells it: status, trace line, text, the package's log and its switch are the sources' own.
refusal_is_as_told() {
    grep -q 'e0000207' "$signing" && grep -q 'kNetInstRefused = 0xE0000207' "$repo"/platform/NetInst.h &&
        grep -qF '`Morvix:  2K/XP UpdateDriver() returned: e0000207 ---> GetLastError = e000022f`' "$signing" &&
        grep -qF '" 2K/XP UpdateDriver() returned: %x ---> GetLastError = %x\n"' "$repo/devices/DeviceInstall.cpp" &&
        grep -qF '"Some drivers could not be installed."' "$signing" && grep -qF '"Some drivers could not be installed."' "$repo/resources/texts/English.rc" &&
        grep -qF '`Morvix: FAILURE of family TAVG_PCIE`' "$signing" && grep -qF 'FAILURE of family ' "$repo/packaging/actions/StepReport.cpp" &&
        grep -qF '`FAILONFAILURE=1`' "$signing"
}

# What the kit author has to know about signatures has a heading, or a row of the table of what machines ask for.
signing_is_covered() {
    local subject
    for subject in '## The catalog' '## Attestation' '## A lab: test signing' '| Secure Boot |' '| memory integrity (HVCI) |' \
        '| Smart App Control' '| application control policies (WDAC) |' '## What a refusal looks like' \
        '| trace |' '| result keys |' '| exit code |'; do
        grep -qF -- "$subject" "$signing" || { printf 'nothing about %s\n' "$subject"; return 1; }
    done
}

# Each option that the guide gives to scripts/package is one of its own.
package_options_are_known() {
    local option found=0
    while read -r option; do
        found=$((found + 1))
        grep -qE -- "(^| )$option( \\||\\)| )" <(sed -n '/case \$option in/,/esac/p' "$repo/scripts/package") || { printf 'no option %s\n' "$option"; return 1; }
    done < <(grep -ohE 'scripts/package [^`#]*' "$signing" "$repo/packaging/README.md" | grep -oE -- '--[a-z0-9-]+' | sort -u)
    ((found >= 5))
}

# The recipe's card has the same IDs in the kit, in QEMU's options and, as decimal numbers, in libvirt's.
recipe_has_one_card() {
    local recipe=$repo/docs/REAL-CARD.md name number of_kit of_qemu of_libvirt=
    of_kit=$(sed -nE "s/^scripts\/lab-kit --ids 'VEN_(....)&DEV_(....)&SUBSYS_(....)(....)' -o lab$/\1 \2 \4 \3/p" "$recipe" | tr '[:upper:]' '[:lower:]')
    of_qemu=$(sed -nE 's/^-device vfio-pci,host=[0-9:.]+,x-pci-vendor-id=0x(....),x-pci-device-id=0x(....),x-pci-sub-vendor-id=0x(....),x-pci-sub-device-id=0x(....)$/\1 \2 \3 \4/p' "$recipe")
    for name in vendor-id device-id sub-vendor-id sub-device-id; do
        number=$(sed -nE "s/^ *<qemu:property name='x-pci-$name' type='unsigned' value='([0-9]+)'\/>$/\1/p" "$recipe")
        of_libvirt+="${of_libvirt:+ }$(printf '%04x' "$number")"
    done
    [[ -n $of_kit && $of_kit == "$of_qemu" && $of_kit == "$of_libvirt" ]] ||
        { printf 'the kit has %s, QEMU %s, libvirt %s\n' "$of_kit" "$of_qemu" "$of_libvirt"; return 1; }
}

no_licence_is_invented() {
    [[ -e $repo/LICENSE ]] || { grep -q 'has not chosen a licence' "$repo/README.md" && [[ -z $(sed -n 's/^license=//p' "$repo/packaging/publisher.conf") ]]; }
}

mkdir -p -- "$build_dir/docs"
promise "every link leads to a file or a heading" links_lead_somewhere
for document in ADMINISTRATORS.md FLEET.md KIT-AUTHORS.md PLANNING.md SIGNING.md ARCHITECTURE.md REAL-MACHINES.md REAL-CARD.md; do
    promise "the first page links $document" first_page_links "$document"
done
promise "the diagrams are those that scripts/drawings draws" drawings_are_drawn
promise "every diagram is well-formed and shown" drawings_are_shown
promise "every picture is one and is shown" pictures_are_shown
promise "every kept oddity is held by a test" oddities_are_held
promise "files that are named are there" named_files_are_there
promise "the trace lines of the administrator's guide are traced" quoted_trace_is_written
promise "the texts of the administrator's guide are shown" shown_texts_are_shown
promise "the kit author's table of families is the program's" same_families
promise "the kit author's table of sections is the kit's" same_sections
promise "the result values of the administrator's guide are written" same_values
promise "a refused driver looks as the guide says" refusal_is_as_told
promise "the guide to signing covers what it has to" signing_is_covered
promise "the options of scripts/package in the documents are its own" package_options_are_known
promise "the card of the recipe has the same IDs in the kit and in both ways of giving them" recipe_has_one_card
promise "without a LICENSE the first page says that the owner has not chosen one" no_licence_is_invented
promise "the exit codes of the package are explained" exit_codes_are_explained
promise "the guide's variables of the role are the role's" same_variables
end_promises
