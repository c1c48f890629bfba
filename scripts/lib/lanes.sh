# shellcheck shell=bash
# Work that goes on side by side: programs in Wine mostly wait. Sourced after common.sh and results.sh.

# lane FUNCTION...: runs the functions one after the other beside the other lanes.
lanes=()
lane() {
    ((${#lanes[@]} > 0)) || at_exit stop_lanes
    (
        own_cleanups
        for step in "$@"; do
            "$step"
        done
    ) &
    lanes+=("$!")
}

# A step of a lane whose programs run in Wine: each such lane has a processor, and several may have the same one.
keep_lane_together() { stay_on_processor "${#lanes[@]}"; }

stop_lanes() {
    ((${#lanes[@]} > 0)) || return 0
    kill -TERM "${lanes[@]}" 2>/dev/null
    wait "${lanes[@]}" 2>/dev/null
}

# A lane that ends early has tests left that nobody ran.
wait_for_lanes() {
    local pid
    for pid in "${lanes[@]}"; do
        wait "$pid" || record failed "lane" "a lane of test programs ended early"
    done
    lanes=()
}
