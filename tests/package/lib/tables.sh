# shellcheck shell=bash
# The tables of a package, read without the engine. Each check prints what is wrong and fails then. Sourced after package.sh.
# shellcheck disable=SC2154

# Which column names a row of which other table.
references='FeatureComponents.Feature_ Feature.Feature
FeatureComponents.Component_ Component.Component
Component.Directory_ Directory.Directory
Directory.Directory_Parent Directory.Directory
File.Component_ Component.Component
MsiFileHash.File_ File.File
RemoveFile.Component_ Component.Component
RemoveFile.DirProperty Directory.Directory
CreateFolder.Component_ Component.Component
CreateFolder.Directory_ Directory.Directory
LockPermissions.LockObject CreateFolder.Directory_
Registry.Component_ Component.Component
AppSearch.Signature_ RegLocator.Signature_'

standard_actions=' AppSearch CostFinalize CostInitialize CreateFolders ExecuteAction FileCost FindRelatedProducts
 InstallAdminPackage InstallFiles InstallFinalize InstallInitialize InstallValidate LaunchConditions MigrateFeatureStates
 ProcessComponents PublishFeatures PublishProduct RegisterProduct RegisterUser RemoveExistingProducts RemoveFiles
 RemoveFolders RemoveRegistryValues UnpublishFeatures ValidateProductID WriteRegistryValues '

# What the engine, the caller or a step sets, beside the rows of the tables.
known_properties=' CallerIsAdministrator FAILONFAILURE Installed OEMVARIANT ProgramFiles64Folder REBOOT REINSTALL REINSTALLMODE
 REMOVE UILevel UPGRADINGPRODUCTCODE VersionNT64 '

# read_tables PACKAGE: the package whose tables the checks look at.
read_tables() {
    tables=$work/tables
    rm -rf -- "$tables"
    mkdir -- "$tables"
    # It writes libraries into the folder that it is started in as well.
    run_limited 60 env -C "$tables" msidump -t -s -d "$tables" "$1" >"$work/msidump.log" 2>&1
}

# rows TABLE COLUMN...: these columns of each row, separated by tabs.
rows() {
    tr -d '\r' <"$tables/$1.idt" | awk -F '\t' -v OFS='\t' -v wanted="${*:2}" '
        NR == 1 {
            count = split(wanted, names, " ")
            for (field = 1; field <= NF; ++field) place[$field] = field
            for (i = 1; i <= count; ++i) if (!(names[i] in place)) { print "no column " names[i]; exit 1 }
        }
        NR > 3 {
            line = $place[names[1]]
            for (i = 2; i <= count; ++i) line = line OFS $place[names[i]]
            print line
        }'
}

# cell TABLE KEY-COLUMN KEY COLUMN
cell() { rows "$1" "$2" "$4" | awk -F '\t' -v key="$3" '$1 == key { print $2 }'; }

property() { cell Property Property "$1" Value; }

sequence_of() { cell InstallExecuteSequence Action "$1" Sequence; }

condition_of() { cell InstallExecuteSequence Action "$1" Condition; }

# complain TEXT: for lists on the standard input that have to be empty.
complain() {
    local lines
    lines=$(cat)
    [[ -z $lines ]] || { printf '  %s: %s\n' "$1" "${lines//$'\n'/, }"; return 1; }
}

# others_than PATTERN: the lines that do not match as a whole.
others_than() { grep -vxiE "$1" || true; }

# missing FROM TO: what the first list names and the second has not.
missing() { LC_ALL=C comm -23 <(LC_ALL=C sort -u <<<"$1" | sed '/^$/d') <(LC_ALL=C sort -u <<<"$2"); }

references_resolve() {
    local from to broken_ones=0
    while read -r from to; do
        missing "$(rows "${from%.*}" "${from#*.}")" "$(rows "${to%.*}" "${to#*.}")" | complain "$from without a row" || broken_ones=1
    done <<<"$references"
    return "$broken_ones"
}

# A component has a key path of the kind that its attributes say: a registry value (4), or a file of its own, or none.
key_paths_resolve() {
    missing "$(rows Component Attributes KeyPath | awk -F '\t' '!int($1 / 4 % 2) { print $2 }')" "$(rows File File)" |
        complain 'no such file' &&
        missing "$(rows Component Attributes KeyPath | awk -F '\t' 'int($1 / 4 % 2) { print $2 }')" "$(rows Registry Registry)" |
        complain 'no such registry value'
}

actions_resolve() {
    local action all_known
    all_known=$(rows CustomAction Action; tr ' ' '\n' <<<"$standard_actions")
    for action in Install{Execute,UI} Admin{Execute,UI} AdvtExecute; do
        missing "$(rows "${action}Sequence" Action)" "$all_known" | complain "no such action in ${action}Sequence" || return 1
    done
    missing "$(rows CustomAction Action)" "$(rows InstallExecuteSequence Action; rows InstallUISequence Action)" |
        complain 'action that nothing runs' &&
        missing "$(rows CustomAction Type Source | awk -F '\t' '$1 % 64 == 1 { print $2 }')" "$(rows Binary Name)" |
        complain 'no such library' &&
        missing "$(rows CustomAction Type Target | awk -F '\t' '$1 % 64 == 1 { print $2 }')" \
            "$(x86_64-w64-mingw32-objdump -p "$tables/_Streams/Binary.MorvixActions" | sed -n 's/^\t\[ *[0-9]*\].* \([A-Za-z]*\)$/\1/p')" |
        complain 'no such entry point in the library'
}

# Names in conditions and between brackets.
properties_resolve() {
    local used known
    used=$(
        rows InstallExecuteSequence Condition | cat - <(rows InstallUISequence Condition) <(rows LaunchCondition Condition) |
            sed 's/"[^"]*"//g' | grep -oE '[A-Za-z_][A-Za-z0-9_]*' | grep -vxE 'AND|OR|NOT'
        rows CustomAction Target | cat - <(rows Registry Value) | grep -oE '\[[^]]*\]' | tr -d '[]'
    )
    # A reference to a file begins with "#"; an action of the kind 51 sets a property.
    known=$(rows Property Property; rows Directory Directory; rows AppSearch Property; rows Upgrade ActionProperty
        rows File File | sed 's/^/#/'; rows CustomAction Type Source | sed -n 's/^51\t//p'; tr ' ' '\n' <<<"$known_properties")
    missing "$used" "$known" | complain 'no such property'
}

# Users without administrator rights may set what the upgrade needs and nothing else: whatever steers a step that runs
# with the rights of the system is left out.
only_upgrade_properties_are_secure() {
    diff <(property SecureCustomProperties | tr ';' '\n') <(rows Upgrade ActionProperty | LC_ALL=C sort) >/dev/null ||
        { say "  secure: $(property SecureCustomProperties)"; return 1; }
}

# One file a component, which is its key path; each identifier well formed and used once; each component 64-bit and in the
# one feature.
component_rules() {
    rows File Component_ | sort | uniq -d | complain 'component with more than one file' &&
        missing "$(rows File File)" "$(rows Component KeyPath)" | complain 'file that is no key path' &&
        rows Component ComponentId | sort | uniq -d | complain 'component identifier used twice' &&
        rows Component ComponentId | others_than '\{[0-9A-F]{8}-[0-9A-F]{4}-5[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\}' |
        complain 'component identifier not well formed' &&
        rows Component Component Attributes | awk -F '\t' '!int($2 / 256 % 2) { print $1 }' | complain 'component not 64-bit' &&
        missing "$(rows Component Component)" "$(rows FeatureComponents Component_)" | complain 'component in no feature'
}

# Short names are short ones, and no two names of one folder are the same to a system that knows no case.
file_names() {
    { rows File FileName; rows Directory DefaultDir; } | sed 's/|.*//' |
        others_than '\.|SourceDir|[A-Za-z0-9_~]{1,8}(\.[A-Za-z0-9_~]{1,3})?' | complain 'no short name' || return 1
    {
        rows Directory Directory_Parent DefaultDir
        LC_ALL=C join -t "$(printf '\t')" -o 2.2,1.2 <(rows File Component_ FileName | LC_ALL=C sort) \
            <(rows Component Component Directory_ | LC_ALL=C sort)
    } | awk -F '\t' '{ count = split(tolower($2), names, "|"); for (i = 1; i <= count; ++i) print $1 "\t" names[i] }' |
        sort | uniq -d | complain 'name used twice in a folder'
}

# Numbers in each sequence are single, so that the order is the one that was meant.
sequences_are_orders() {
    local table
    for table in InstallExecuteSequence InstallUISequence AdminExecuteSequence AdminUISequence AdvtExecuteSequence; do
        rows "$table" Sequence | sort | uniq -d | complain "number used twice in $table" || return 1
    done
}

# in_order ACTION...: the installation runs these in this order.
in_order() {
    local action last=0 number
    for action in "$@"; do
        number=$(sequence_of "$action")
        if ((${number:-0} <= last)); then
            say "  $action has number ${number:-none} after $last"
            return 1
        fi
        last=$number
    done
}

# Each file of the package is in its cabinet, and the cabinet is there.
media_holds_files() {
    [[ $(rows Media Cabinet) == '#Morvix.cab' && -s $tables/_Streams/Morvix.cab ]] || { say "  no cabinet"; return 1; }
    rows File Sequence | awk -v last="$(rows Media LastSequence)" '$1 < 1 || $1 > last' | complain 'file after the last one'
}

# Every cell fits the rule that the package itself has for its column, and every column has one.
cells_fit_their_rules() { run_limited 60 python3 "$repo/tests/package/lib/validation.py" "$tables"; }

tables_are_sound() {
    cells_fit_their_rules && references_resolve && key_paths_resolve && actions_resolve && properties_resolve && only_upgrade_properties_are_secure &&
        component_rules && file_names && sequences_are_orders && media_holds_files
}
