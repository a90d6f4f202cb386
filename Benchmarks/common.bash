# What the benchmarks share; each sources it. "$work" is a folder of the benchmark's own; it goes
# with every process that was started here when the benchmark ends. Each is called by scripts/bench
# with the rows that it is to measure, and adds them to "$VARNHOLT_BENCH_TABLE".

project=$PWD
runs=${VARNHOLT_BENCH_RUNS:-3}
md5sum=$(command -v md5sum || command -v md5)
export md5sum
work=$(mktemp -d "${VARNHOLT_BENCH_FOLDER:-${TMPDIR:-/tmp}}/varnholt-bench.XXXXXX")
app="World of Warcraft.app/Contents/MacOS" # where the game's executable lies
PATH=$PATH:/usr/sbin
# A proxy of the environment would be asked for loopback addresses too.
unset http_proxy https_proxy all_proxy HTTP_PROXY HTTPS_PROXY ALL_PROXY

clean_up() {
    local process
    for process in $(jobs -pr); do
        # What is being measured is a child of time(1), which ends with it.
        pkill -P "$process" || kill "$process" 2>/dev/null || true
    done
    wait
    [ ! -s "$work/nginx.pid" ] || kill "$(cat "$work/nginx.pid")"
    rm -rf "$work"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# measure COMMAND...: leaves its output in "$work/out" and "$work/err", its seconds and its largest
# memory in KiB in "seconds" and "memory". Ends the benchmark when the command fails.
measure() {
    local form=(-f '%e %M')
    [ "$(uname)" != Darwin ] || form=(-l)
    /usr/bin/time "${form[@]}" -o "$work/time" "$@" >"$work/out" 2>"$work/err" &
    wait $! || {
        tail -n 20 "$work/out" "$work/err" >&2
        exit 1
    }
    if [ "$(uname)" = Darwin ]; then
        awk '$2 == "real" { seconds = $1 } /maximum resident/ { bytes = $1 }
            END { print seconds, int(bytes / 1024) }' "$work/time" >"$work/usage"
    else
        cp "$work/time" "$work/usage"
    fi
    # shellcheck disable=SC2034 # for those who source this
    read -r seconds memory <"$work/usage"
}

# serve_tree PORT [CONFIGURATION]: nginx with docs/nginx/content.conf on "$work/www", and with what
# else is to stand in its http block.
serve_tree() {
    mkdir -p "$work/temp"
    chmod -R a+rX "$work"
    {
        [ "$(id -u)" -ne 0 ] || echo "user root;"
        cat <<CONF
worker_processes auto;
pid $work/nginx.pid;
error_log $work/error.log;
events { worker_connections 1024; }
http {
access_log off;
client_body_temp_path $work/temp;
proxy_temp_path $work/temp;
fastcgi_temp_path $work/temp;
uwsgi_temp_path $work/temp;
scgi_temp_path $work/temp;
${2:-}
CONF
        sed -e "s#listen 80;#listen 127.0.0.1:$1;#; s#root /srv/www;#root $work/www;#" \
            "$project/docs/nginx/content.conf"
        echo "}"
    } >"$work/nginx.conf"
    nginx -p "$work" -c "$work/nginx.conf" 2>>"$work/error.log" || {
        cat "$work/error.log" >&2
        exit 1
    }
}

calculate() { awk "BEGIN { printf \"%.3f\", $1 }"; }
median() { printf '%s\n' "$@" | sort -n | awk '{ all[NR] = $1 } END { print all[int((NR + 1) / 2)] }'; }

# turns OURS THEIRS: both measure something, and are called in turns. Leaves the medians of their
# seconds in "ours" and "theirs", what the first is of the second in "ratio", and its most memory in
# "most".
turns() {
    local i our_seconds=() their_seconds=()
    most=0
    for ((i = 0; i < runs; i++)); do
        "$2"
        their_seconds+=("$seconds")
        "$1"
        our_seconds+=("$seconds")
        [ "$memory" -le "$most" ] || most=$memory
    done
    ours=$(median "${our_seconds[@]}") theirs=$(median "${their_seconds[@]}")
    ratio=$(calculate "$ours / $theirs")
}

# goal FIGURE "<="|">=" GOAL [UNIT]: the words of the table.
goal() {
    local sign=≤ verdict=
    [ "$2" = "<=" ] || sign=≥
    [ "$(calculate "($1 $2 $3)")" = 1.000 ] || verdict=" MISSED"
    echo "$sign $3${4:+ $4}$verdict"
}
# goal_of_memory KIB GOAL: none but when it is missed.
goal_of_memory() { [ "$1" -le "$2" ] || echo "; ≤ $(($2 / 1024)) MiB MISSED"; }
# row WORK OURS TOOL RATIO GOAL KIB: a line of the table.
row() {
    local ratio=$4 memory=$6
    [ -z "$ratio" ] || ratio=$(printf '%.2f' "$ratio")
    [ -z "$memory" ] || memory="$(((memory + 512) / 1024)) MiB"
    printf '| %s | %s | %s | %s | %s | %s |\n' "$1" "$2" "$3" "$ratio" "$5" "$memory" |
        tee -a "$VARNHOLT_BENCH_TABLE" >&2
}
# row_of_seconds WORK TOOL GOAL: what "turns" has left.
row_of_seconds() {
    row "$1" "$(printf '%.2f s' "$ours")" "$2 $(printf '%.2f s' "$theirs")" "$ratio" "$3" "$most"
}

# publish_game RULES PORT...: "$work/source" as build 1, with mirrors on these ports. \"\": no rules
publish_game() {
    local hosts rules=()
    hosts=$(printf ',127.0.0.1:%s' "${@:2}")
    [ -z "$1" ] || rules=(--rules "$1")
    rm -rf "$work/www"
    measure varnholt-publish build --source "$work/source" --output "$work/www" --build 1 \
        --hosts "${hosts#,}" ${rules[@]+"${rules[@]}"}
    chmod -R a+rX "$work/www"
}
# host PORT ARGUMENT...: the host, with the content server there.
host() {
    measure varnholt-host --settings "$work/host.ini" --content-url "http://127.0.0.1:$1/" --yes \
        "${@:2}"
}

# digests FOLDER: a line for each file in it: MD5, two spaces, path.
digests() { (cd "$1" && find . -type f -print0 | xargs -0 cmake -E md5sum); }
# content_path MD5: where a published tree has the file.
content_path() {
    local md5
    md5=$(tr a-f A-F <<<"$1")
    echo "pelmora_app/files/${md5:0:2}/$md5"
}
