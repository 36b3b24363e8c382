# The steps of ./check; sourced, after scripts/lib.sh. A step is a command whose output goes to
# build/check/<step>.log. While it runs it says how far it is; then it is one line with its seconds.

logs=$build/check
passed=0
failed=0
failures=() # a line each, for the end

# report SECONDS TEXT
report() { printf '%s%5d s  %s\n' "$wipe" "$1" "$2"; }

# On a terminal progress is one line that the next one overwrites; elsewhere a line now and then.
if [ -t 1 ] && [ "${TERM:-dumb}" != dumb ]; then
    wipe=$'\r\e[K'
    progress_every=1
    progress_end=
else
    wipe=
    progress_every=30
    progress_end=$'\n'
fi

# How far the step is that writes the log: what Ninja built of how much; how many test programs CTest
# has run of how many, and which it is running.
how_far() {
    awk '
        /^\[[0-9]+\/[0-9]+\]/ { split(substr($1, 2), part, /[\/\]]/); far = part[1] " of " part[2] }
        /^ *Start +[0-9]+: / { running[$3] = 1 }
        /^ *[0-9]+\/[0-9]+ Test +#/ {
            split($1, part, "/"); far = part[1] " of " part[2]
            delete running[$2 ~ /:$/ ? $3 : $4]
        }
        END { for (name in running) far = far ", " name; print far }' "$1" 2>/dev/null
}

# show_progress NAME LOG: until it is killed.
show_progress() {
    local started=$SECONDS far columns
    columns=$(stty size 2>/dev/null <&1)
    columns=${columns#* }
    while sleep "$progress_every"; do
        far=$(how_far "$2")
        far="$1${far:+: $far}"
        [ -z "$wipe" ] || far=${far:0:$((${columns:-80} - 10))}
        printf '%s%5d s  %s%s' "$wipe" $((SECONDS - started)) "$far" "${progress_end:- ...}"
    done
}

log_of() { echo "$logs/${1//[^a-zA-Z0-9]/-}.log"; }

# What runs now: the command of a step, and what shows its progress.
running=()

# quietly NAME COMMAND...: the command's result; `took` is its seconds. The command runs beside the
# shell, which is then free to be interrupted.
quietly() {
    local log started=$SECONDS result command watcher
    log=$(log_of "$1")
    : >"$log"
    show_progress "$1" "$log" &
    watcher=$!
    shift
    "$@" >"$log" 2>&1 &
    command=$!
    running=("$command" "$watcher")
    wait "$command"
    result=$?
    running=()
    kill "$watcher"
    wait "$watcher" 2>/dev/null
    printf '%s' "$wipe"
    took=$((SECONDS - started))
    return $result
}

# note_failure NAME: the end of its output, and a line for the end of the run.
note_failure() {
    tail -n 40 "$(log_of "$1")"
    report "$took" "$1: FAILED (whole output in $(log_of "$1"))"
    failures+=("$1 ($(log_of "$1"))")
    failed=$((failed + 1))
}

# A step that the later ones need.
required() {
    quietly "$@" || { note_failure "$1"; finish; }
    report "$took" "$1"
}

# A check counts as one; a failed one does not keep the others from running.
check() {
    quietly "$@" || { note_failure "$1"; return; }
    passed=$((passed + 1))
    report "$took" "$1"
}

# build PRESET
build() { configure "$1" && compile "$1"; }

# The cases of a finished test program, from the list that GoogleTest writes: "pass", "skip" or
# "fail" and the name; after a failed one what was wrong, indented.
list_cases() {
    awk '
        /^      "name": / { suite = quoted($0) }
        /^          "name": / { name = suite "." quoted($0); state = "pass"; text = "" }
        /^          "status": "NOTRUN"/ || /^          "result": "SKIPPED"/ { state = "skip" }
        /^              "failure": / { state = "fail"; text = text plain($0) }
        /^        }/ && name { print state, name; printf "%s", text; name = "" }
        function quoted(line) { match(line, /: ".*"/); return substr(line, RSTART + 3, RLENGTH - 4) }
        function plain(line) {
            sub(/^ *"failure": "/, "    ", line); sub(/",?$/, "", line)
            gsub(/\\n/, "\n    ", line); gsub(/\\"/, "\"", line); gsub(/\\\\/, "\\", line)
            return line "\n"
        }' "$1"
}

# show_failed PRESET PROGRAM [CASE]: and how to run it alone.
show_failed() {
    printf 'FAILED: %s%s, alone: %sctest --test-dir build/%s -R '\''^%s$'\'' --output-on-failure\n' \
        "$2" "${3:+ $3}" "${3:+GTEST_FILTER=$3 }" "$1" "$2"
    failures+=("$1: $2${3:+ $3}")
}

# tests NAME PRESET [CTEST ARGUMENT...]: counts cases where a program lists them, else the program as
# one. A program that has no failed case and failed leaked, crashed at its end or ran out of time.
tests() {
    local step=$1 preset=$2 results=$build/$2/test-results good=0 bad=0 skipped=0
    local program state case_state name line
    shift 2
    rm -rf "$results" "$results.xml"
    quietly "$step" ctest --test-dir "$build/$preset" -j "$(nproc)" --output-on-failure \
        --no-tests=error --output-junit "$results.xml" "$@"
    local result=$?
    while read -r program state; do
        local program_bad=0
        if [ -f "$results/$program.json" ]; then
            while IFS= read -r line; do
                read -r case_state name <<<"$line"
                case $line in
                'pass '*) good=$((good + 1)) ;;
                'skip '*) skipped=$((skipped + 1)) ;;
                'fail '*)
                    program_bad=$((program_bad + 1))
                    show_failed "$preset" "$program" "$name"
                    ;;
                *) printf '%s\n' "$line" ;;
                esac
            done < <(list_cases "$results/$program.json")
        elif [ "$state" = run ]; then
            good=$((good + 1))
        fi
        if [ "$state" != run ] && [ "$program_bad" -eq 0 ]; then
            program_bad=1
            show_failed "$preset" "$program"
        fi
        bad=$((bad + program_bad))
    done < <(sed -n 's/.*<testcase name="\([^"]*\)".* status="\([a-z]*\)".*/\1 \2/p' "$results.xml" 2>/dev/null)
    passed=$((passed + good))
    if [ "$result" -eq 0 ] && [ "$bad" -eq 0 ]; then
        report "$took" "$step: $good passed$([ "$skipped" -eq 0 ] || echo ", $skipped skipped")"
    elif [ "$bad" -eq 0 ]; then
        note_failure "$step"
    else
        failed=$((failed + bad))
        report "$took" "$step: $bad FAILED, $good passed (whole output in $(log_of "$step"))"
    fi
}

# The last lines.
finish() {
    trap - EXIT
    [ ${#running[@]} -eq 0 ] || kill "${running[@]}" 2>/dev/null
    wineserver -k 2>/dev/null # the programs of this checkout's own prefix, nobody else's
    local starts
    starts=$(cat "$build/wine-starts.txt" 2>/dev/null | wc -l)
    [ "$starts" -eq 0 ] ||
        echo "Wine failed to start a program $starts times; each was started again."
    [ "$failed" -eq 0 ] || printf 'FAILED: %s\n' "${failures[@]}"
    printf '%d passed, %d failed\n' "$passed" "$failed"
    [ "$failed" -eq 0 ] || exit 1
    exit 0
}
