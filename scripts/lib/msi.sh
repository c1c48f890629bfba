# shellcheck shell=bash
# The Windows Installer package of a folder. The same folder gives the same bytes, on every machine and at every time.
# Sourced after common.sh.
# shellcheck disable=SC2154

# shellcheck source=publisher.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/publisher.sh"

# Never changed: by it the engine knows every version of the package.
msi_upgrade_code='ED0FD907-DB1D-468A-B3EE-C525716BD32A'

# The product's version, from the one place that has it.
product_version() {
    local version
    version=$(sed -n 's/^project(Morvix VERSION \([0-9.]*\) .*/\1/p' "$repo/CMakeLists.txt")
    [[ $version =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || fail "CMakeLists.txt names no version of three numbers"
    printf '%s' "$version"
}

# The version after that one, for packages that upgrade it.
next_version() {
    local version
    version=$(product_version)
    printf '%s' "${version%.*}.$((${version##*.} + 1))"
}

# The one time that everything made here carries, in seconds: that of the commit, unless the caller says otherwise.
source_date() {
    local date=${SOURCE_DATE_EPOCH:-}
    [[ -n $date ]] || date=$(git -C "$repo" log -1 --format=%ct 2>/dev/null) || true
    # Without a commit, the earliest time that an archive can hold.
    printf '%s' "${date:-315532800}"
}

# collect_built BUILT COMPONENT FOLDER [--strip]: the files of a component that was built in the build folder BUILT. The
# tools that change a program write a time into it: this one.
collect_built() {
    run_limited 120 env "SOURCE_DATE_EPOCH=$(source_date)" \
        cmake --install "$1" --component "$2" --prefix "$3" "${@:4}"
}

# make_catalogs FOLDER: the catalog that each INF file below the folder names, unsigned.
make_catalogs() { run_limited 60 find "$1" -iname '*.inf' -exec python3 "$repo/scripts/lib/kit_catalogs.py" make {} +; }

# collect_shippable BUILT FOLDER: the shippable folder of what was built in the build folder BUILT, with the catalogs of the
# sample kit. They list the drivers as they are shipped, without debug information.
collect_shippable() { collect_built "$1" dist "$2" --strip && make_catalogs "$2/Drv"; }

# named_guid NAME: an identifier made of the upgrade code and a name, the same one each time (a version 5 UUID).
named_guid() {
    local hash
    hash=$({ xxd -r -p <<<"${msi_upgrade_code//-/}"; printf '%s' "$1"; } | sha1sum)
    hash=${hash:0:12}5${hash:13:3}$(printf '%x' $((0x${hash:16:1} & 3 | 8)))${hash:17:15}
    hash=${hash^^}
    printf '%s-%s-%s-%s-%s' "${hash:0:8}" "${hash:8:4}" "${hash:12:4}" "${hash:16:4}" "${hash:20:12}"
}

product_code() { named_guid "product $1"; }

# The four numbers of a file's version resource; nothing for a file without one.
file_version() {
    local at words
    at=$(LC_ALL=C grep -obUaPm1 '\xbd\x04\xef\xfe\x00\x00\x01\x00' "$1" | head -n 1 | cut -d : -f 1) || true
    [[ -n $at ]] || return 0
    read -r -a words < <(od -An -v -tu2 --endian=little -j "$((at + 8))" -N 8 "$1")
    printf '%d.%d.%d.%d' "${words[1]}" "${words[0]}" "${words[3]}" "${words[2]}"
}

# table_id PREFIX PATH: the name of a row, made of a path below the folder; it says what it stands for and is unique.
table_id() {
    local readable=${2//[^A-Za-z0-9.]/_} hash
    hash=$(printf '%s' "${2,,}" | sha1sum)
    ((${#readable} <= 45)) || readable=${readable: -45}
    printf '%s_%s_%s' "$1" "$readable" "${hash:0:8}"
}

# two_names NAME COUNTER: the name as the tables want it, with a short one before it when it is no short one itself. The
# counter tells the short names of one folder apart.
two_names() {
    local name=$1 base=${1%.*} extension=
    if [[ $name =~ ^[A-Za-z0-9_]{1,8}(\.[A-Za-z0-9_]{1,3})?$ ]]; then
        printf '%s' "$name"
        return
    fi
    [[ $name != *.* ]] || extension=${name##*.}
    base=${base//[^A-Za-z0-9_]/} extension=${extension//[^A-Za-z0-9_]/}
    base=${base:0:7-${#2}}~$2
    [[ -z $extension ]] || base+=.${extension:0:3}
    printf '%s|%s' "${base^^}" "$name"
}

# list_kit FOLDER: the folders and files below the folder as a source file for wixl, which will find them in "kit/". Each
# file is a component of its own.
list_kit() {
    local path id parent counter components=
    local -A counters=()
    printf '<?xml version="1.0" encoding="utf-8"?>\n<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi"><Fragment>\n'
    # Sorted, so that a folder comes before what is in it and the order is the same everywhere.
    while read -r path; do
        [[ $path =~ ^[][A-Za-z0-9_.,\;~@#%+=!\ (){}/-]+$ ]] || fail "the package cannot hold a file named $path"
        parent=INSTALLDIR
        [[ $path != */* ]] || parent=$(table_id folder "${path%/*}")
        counters[$parent]=$((${counters[$parent]:-0} + 1)) counter=${counters[$parent]}
        printf '<DirectoryRef Id="%s">' "$parent"
        if [[ -d $1/$path ]]; then
            printf '<Directory Id="%s" Name="%s"/>' "$(table_id folder "$path")" "$(two_names "${path##*/}" "$counter")"
        else
            id=$(table_id file "$path")
            components+="<ComponentRef Id=\"part_$id\"/>"
            printf '<Component Id="part_%s" Guid="%s" Win64="yes">' "$id" "$(named_guid "file ${path,,}")"
            printf '<File Id="%s" Name="%s" Source="%s" KeyPath="yes"/></Component>' \
                "$id" "$(two_names "${path##*/}" "$counter")" "kit/$path"
        fi
        printf '</DirectoryRef>\n'
    done < <(cd -- "$1" && find . -mindepth 1 -printf '%P\n' | LC_ALL=C sort)
    printf '<ComponentGroup Id="Kit">%s</ComponentGroup>\n</Fragment></Wix>\n' "$components"
}

# Fills `queries` with what is to be changed in the tables that wixl has written: what it has no words for.
list_changes() {
    local action path version id
    queries=(
        # Users without administrator rights may set these: nothing that steers a step is among them.
        "UPDATE \`Property\` SET \`Value\` = 'NEWERFOUND;OLDERFOUND' WHERE \`Property\` = 'SecureCustomProperties'"
        # Looked for where a 64-bit package writes.
        "UPDATE \`RegLocator\` SET \`Type\` = 18"
        # The one feature is neither advertised nor left out.
        "UPDATE \`Feature\` SET \`Attributes\` = 24"
        # Library, in the script, with the rights of the system, for rollback: 1 + 1024 + 2048 + 256.
        "UPDATE \`CustomAction\` SET \`Type\` = 3329 WHERE \`Target\` = 'RestoreRecords'"
    )
    # There is no dialog: with any user interface, the engine's service decides everything, and nothing of what the user's
    # side has worked out reaches it. One row at a time: a query that matches several deletes others.
    for action in FindRelatedProducts AppSearch LaunchConditions ValidateProductID CostInitialize FileCost CostFinalize \
        MigrateFeatureStates; do
        queries+=("DELETE FROM \`InstallUISequence\` WHERE \`Action\` = '$action'")
    done
    # A file with a version is known by it, another one by its hash.
    while read -r path; do
        version=$(file_version "$1/$path")
        [[ -n $version ]] || continue
        id=$(table_id file "$path")
        queries+=(
            "UPDATE \`File\` SET \`Version\` = '$version', \`Language\` = '1033' WHERE \`File\` = '$id'"
            "DELETE FROM \`MsiFileHash\` WHERE \`File_\` = '$id'"
        )
    done < <(cd -- "$1" && find . -type f -printf '%P\n' | LC_ALL=C sort)
}

# Adds to `queries` what the list of programs shows beside name, version and maker, as far as the publisher has filled it in.
list_publisher() {
    local property key text
    while read -r property key; do
        text=$(publisher "$key")
        [[ -z $text ]] || queries+=("INSERT INTO \`Property\` (\`Property\`, \`Value\`) VALUES ('$property', '$text')")
    done <<<'ARPCONTACT contact
ARPHELPLINK support_url
ARPURLINFOABOUT product_url
ARPURLUPDATEINFO update_url'
}

# list_permissions: the permissions of the kit's folder, as a table file. Whoever may write there owns the step: only
# administrators, among them the system, may; everybody may read and run what is in it. These two names are the ones that
# every engine knows in every language, and this is the table that every engine has: version 5 has another one, which the
# older ones do not read, and it refuses a package that has both.
list_permissions() {
    local full=2032127 read_and_run=1179817
    printf '%s\t%s\t%s\t%s\t%s\r\n' LockObject Table Domain User Permission s72 s32 S255 s255 I4
    printf 'LockPermissions\tLockObject\tTable\tDomain\tUser\r\n'
    printf '%s\t%s\t%s\t%s\t%s\r\n' INSTALLDIR CreateFolder '' Administrators "$full" \
        INSTALLDIR CreateFolder '' Everyone "$read_and_run"
}

# list_action_texts: what the engine shows while the steps run, as a table file. [1] is the time that has passed.
list_action_texts() {
    printf '%s\t%s\t%s\r\n' Action Description Template s72 L0 L0
    printf 'ActionText\tAction\r\n'
    printf '%s\t%s\t%s\r\n' RunMorvix 'Installing network drivers' '[1]' RunUninstaller 'Removing network drivers' '[1]' \
        UndoRunMorvix 'Rolling back the records of the drivers' '' UndoRunUninstaller 'Rolling back the records of the drivers' ''
}

# The package's summary, with the one date and with a code made of all that is in it: another content is another package.
# It goes in as a table file.
list_summary() {
    local date code
    date=$(TZ=UTC date -d "@$(source_date)" '+%Y/%m/%d %H:%M:%S')
    code=$(cd -- "$1" && find . -type f -print0 | LC_ALL=C sort -z | xargs -0 sha256sum -- "$2" "$repo"/packaging/{Morvix.wxs,Morvix.ico,_Validation.idt} "$publisher_file" "${BASH_SOURCE[0]}" |
        cut -d ' ' -f 1 | sha256sum)
    printf '%s\t%s\r\n' PropertyId Value i2 l255 _SummaryInformation PropertyId 1 1252 2 'Installation Database' \
        3 "Morvix $3" 4 Norda 5 Installer 6 'Drivers for Norda network adapters' 7 'x64;1033' \
        9 "{$(named_guid "package $3 $date $code")}" 12 "$date" 13 "$date" 14 200 15 2 18 'Morvix' 19 2
}

# make_msi FOLDER LIBRARY PACKAGE [VERSION]: the package of a folder, with this library of steps, in the file PACKAGE.
# The package itself may lie in the folder: no package is packed.
make_msi() {
    local version=${4:-$(product_version)} parts=$3.parts log=$3.log
    local -a queries
    rm -rf -- "$parts"
    mkdir -p -- "$parts/kit"
    cp -a -- "$1/." "$parts/kit"
    rm -f -- "$parts"/kit/*.msi "$parts"/kit/*.msi.log
    cp -- "$2" "$parts/MorvixActions.dll"
    find "$parts" -exec touch -h -d "@$(source_date)" -- {} +
    list_kit "$parts/kit" >"$parts/kit.wxs"
    list_changes "$parts/kit"
    list_publisher
    list_summary "$parts/kit" "$parts/MorvixActions.dll" "$version" >"$parts/_SummaryInformation.idt"
    list_permissions >"$parts/LockPermissions.idt"
    list_action_texts >"$parts/ActionText.idt"
    cp -- "$repo"/packaging/{Morvix.wxs,Morvix.ico,_Validation.idt} "$parts/"
    # wixl takes names relative to its folder only. The cabinet's times are local ones.
    if ! TZ=UTC run_limited 120 env -C "$parts" wixl --arch x64 -o package.msi -D "Version=$version" \
        -D "ProductCode=$(product_code "$version")" -D "UpgradeCode=$msi_upgrade_code" \
        -D "VendorComponent=$(named_guid 'folder norda')" -D "FolderComponent=$(named_guid 'value InstallDir')" \
        -D Actions=MorvixActions.dll -D "Program=$(table_id file Morvix.exe)" \
        Morvix.wxs kit.wxs >"$log" 2>&1 ||
        ! TZ=UTC run_limited 60 msibuild "$parts/package.msi" -i "$parts/_Validation.idt" \
            -i "$parts/_SummaryInformation.idt" -i "$parts/LockPermissions.idt" -i "$parts/ActionText.idt" \
            -q "${queries[@]}" >>"$log" 2>&1; then
        fail "the package cannot be made (see $log)"
    fi
    mv -- "$parts/package.msi" "$3"
    rm -rf -- "$parts" "$log"
}
