# What the benchmarks share; each sources it. "$work" is a folder of the benchmark's own; it goes
# with every process that was started here when the benchmark ends.

project=$PWD
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

# digests FOLDER: a line for each file in it: MD5, two spaces, path.
digests() { (cd "$1" && find . -type f -print0 | xargs -0 cmake -E md5sum); }
# content_path MD5: where a published tree has the file.
content_path() {
    local md5
    md5=$(tr a-f A-F <<<"$1")
    echo "pelmora_app/files/${md5:0:2}/$md5"
}
