# shellcheck shell=bash
# Releases: makes them of what was built, and looks into them. Sourced after package.sh.
# shellcheck disable=SC2154

# shellcheck source=../../../scripts/lib/signing.sh
source "$lib/signing.sh"
# shellcheck source=../../../scripts/lib/sbom.sh
source "$lib/sbom.sh"
# shellcheck source=../../../scripts/lib/manifests.sh
source "$lib/manifests.sh"
# shellcheck source=../../../scripts/lib/release.sh
source "$lib/release.sh"

# holds_sums_of FOLDER COUNT: SHA256SUMS has the sums of so many files, which are all but itself and its signature.
holds_sums_of() {
    (
        cd -- "$1" || exit
        sha256sum --check --quiet --strict SHA256SUMS && (($(wc -l <SHA256SUMS) == $2)) &&
            (($(find . -type f ! -name 'SHA256SUMS*' | wc -l) == $2))
    )
}

unpack() { run_limited 60 unzip -q -d "$2" "$1"; }

# fits_schema SCHEMA FILE: a JSON or YAML file against a schema of tests/package/schemas.
fits_schema() {
    run_limited 60 python3 -c '
import json, sys, yaml, jsonschema
with open(sys.argv[1]) as schema, open(sys.argv[2]) as file:
    validator = jsonschema.Draft7Validator(json.load(schema))
    problems = list(validator.iter_errors(yaml.safe_load(file)))
for problem in problems:
    print("  ", "/".join(map(str, problem.absolute_path)), problem.message)
sys.exit(bool(problems))' "$repo/tests/package/schemas/$1" "$2"
}

# does_not_fit SCHEMA FILE EXPRESSION: the schema refuses the file after this change by sed.
does_not_fit() {
    sed "$3" "$2" >"$work/misfit"
    ! cmp -s -- "$2" "$work/misfit" && ! fits_schema "$1" "$work/misfit" >/dev/null
}
