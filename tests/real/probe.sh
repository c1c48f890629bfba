#!/usr/bin/env bash
# The program for real machines, in Wine: from a folder laid out like the bundle, every row that can run here does, and the
# others say why not. Rows need different machines: an empty one, one whose screen has double scaling, and one whose card
# has a driver that is said to be the system's own.
# shellcheck disable=SC2154,SC2317 # the libraries set what is used here; promises call functions by name
set -euo pipefail
# shellcheck source=../package/lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/../package/lib/package.sh"
# shellcheck source=../package/lib/imports.sh
source "$(dirname -- "$(readlink -f -- "$0")")/../package/lib/imports.sh"

probe=$build_dir/windows/tests/real/morvix_probe.exe
version=$(product_version)
newer=${version%.*}.$((${version##*.} + 1))
# Rows that Wine cannot do, whatever the machine.
impossible='InBoxDriver.BoundThroughTheInstallerLibraryOnceMoreKeepsTheCardWorking
PackageLifetime.AStandardUserReadsTheFolderAndCannotWriteToIt
RestorePoint.IsBegunBeforeTheDevicesEndedAfterThemAndKept
RunsWithoutAdapter.AsAStandardUserIsRefused
RunsWithoutAdapter.AsATaskOfTheSystemAccountIsTheSameRun
RunsWithoutAdapter.AtDoubleScalingShowsItsTextsWithinTheScreen
RunsWithoutAdapter.FromADiscIsTheSameRun
RunsWithoutAdapter.FromAMappedDriveIsTheSameRun
RunsWithoutAdapter.FromAShareIsTheSameRun
RunsWithoutAdapter.InARemoteSessionShowsItsTexts
RunsWithoutAdapter.WithUtf8AsTheCodePageShowsItsTexts'

lay_out_bundle() {
    bundle=$work/bundle
    mkdir -p -- "$bundle"/{dist,packages,tests/traces}
    find "$dist" -mindepth 1 -maxdepth 1 ! -name '*.msi' -exec cp -a -t "$bundle/dist" -- {} +
    cp -- "$probe" "$bundle/tests/"
    cp -- "${probe%/*}"/traces/*.txt "$bundle/tests/traces/"
    copy_kit kit
    package_kit
    mv -- "$kit_package" "$bundle/packages/morvix-old.msi"
    package_kit "$newer"
    mv -- "$kit_package" "$bundle/packages/morvix-new.msi"
}

all_rows() {
    run_limited 60 wine "$bundle/tests/morvix_probe.exe" --gtest_list_tests 2>/dev/null | tr -d '\r' |
        awk '/^[A-Za-z]*\.$/ { suite = $1 } /^  / { print suite $1 }'
}

# run_rows NAME FILTER [VARIABLE=VALUE]: the program's rows, and what became of them in `proved`, `refused` and `left_out`.
run_rows() {
    report=$work/$1.xml
    run_limited 600 env "MORVIX_PROOF=$(windows_path "$bundle")" "MORVIX_PROOF_RESULTS=$(windows_path "$work/results-$1")" "${@:3}" \
        wine "$bundle/tests/morvix_probe.exe" --gtest_filter="$2" "--gtest_output=xml:$(windows_path "$report")" \
        >"$work/$1.log" 2>&1 || true
    proved=$(rows proved) refused=$(rows refused) left_out=$(rows skipped)
}

# rows RESULT: the rows of the report that ended so: proved, refused, skipped.
rows() {
    python3 - "$report" "$1" <<'END'
import sys
import xml.etree.ElementTree as tree

for case in tree.parse(sys.argv[1]).iter("testcase"):
    skipped = case.find("skipped")
    result = "refused" if case.find("failure") is not None else "proved" if skipped is None else "skipped"
    if skipped is not None and "not here: " not in (skipped.get("message") or ""):
        result = "refused"
    if case.get("result") == "completed" or skipped is not None:
        if result == sys.argv[2]:
            print(case.get("classname") + "." + case.get("name"))
END
}

row_proved() { grep -qxF "$1" <<<"$proved" || { sed -n "/RUN.*$1/,/FAILED.*$1/p" "${report%.xml}.log" | sed 's/^/  /'; return 1; }; }

only_these_are_left_out() { diff <(LC_ALL=C sort <<<"$left_out") <(printf '%s\n' "$impossible"); }

starts_on_the_oldest_system() {
    diff <(imported "$probe" | LC_ALL=C comm -23 - <(listed "$repo/tests/e2e/imports.txt")) <(listed "$repo/tests/real/imports.txt")
}

nothing_is_left() { [[ -z $(list_left) ]] || { list_left; return 1; }; }

list_left() {
    (cd -- "$drive" && find . -type f | LC_ALL=C sort) | LC_ALL=C comm -13 "$work/before" - |
        grep -vE '^\./(users/[^/]*/(AppData/Local/)?Temp|windows/(temp|Installer))/' || true
}

# Another reader of images finds on the disc what was to be on it.
disc_is_read_elsewhere() {
    run_limited 120 wine "$probe" --child disc "$(windows_path "$work/disc-report.txt")" \
        "$(windows_path "$bundle/dist")" "$(windows_path "$work/disc.iso")" >/dev/null 2>&1
    mkdir -- "$work/disc"
    run_limited 60 cmake -E chdir "$work/disc" cmake -E tar xf "$work/disc.iso"
    diff -r "$bundle/dist" "$work/disc/dist"
}

left_alone() {
    same "$left_out" InBoxDriver.BoundThroughTheInstallerLibraryOnceMoreKeepsTheCardWorking && grep -q 'the only card that is connected' "$work/line.log"
}

start_machine probe
lay_out_bundle
promise "the disc of the kit is read by other programs" disc_is_read_elsewhere
(cd -- "$drive" && find . -type f | LC_ALL=C sort) >"$work/before"
promise "the program imports what the oldest system has" starts_on_the_oldest_system
run_rows machine '*'
while read -r row; do
    promise "$row" row_proved "$row"
done < <(all_rows | grep -vxF "$impossible")
promise "only what Wine cannot do is left out" only_these_are_left_out
promise "nothing is left on the machine" nothing_is_left

# Wine keeps the name of a stored INF, so that it looks like one of the system's own; its driver lies beside it.
plug_in "$gigabit"
run_limited 120 wine "$bundle/dist/Morvix.exe" /s /nr
cp -- "$bundle/dist/Drv/Win7x64/ngea62x64.sys" "$drive/windows/inf/"
run_rows line 'InBoxDriver.*'
promise "the only connected card is left alone" left_alone
run_rows card 'InBoxDriver.*' MORVIX_CUT_NETWORK=1
promise "a card with a driver of the system's own is bound to it once more" \
    row_proved InBoxDriver.BoundThroughTheInstallerLibraryOnceMoreKeepsTheCardWorking
run_rows adapter 'RunsWithoutAdapter.*:RestorePoint.*'
promise "a machine with an adapter runs no row that needs one without" same "$proved$refused" ''

run_limited 60 wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d 192 /f >/dev/null 2>&1
unplug "$gigabit"
run_rows double 'RunsWithoutAdapter.AtDoubleScaling*'
promise "a screen with double scaling shows the dialog" row_proved RunsWithoutAdapter.AtDoubleScalingShowsItsTextsWithinTheScreen
end_promises
