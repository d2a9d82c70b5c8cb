#!/usr/bin/env bash
# Measures the real program on a generated catalogue under Xvfb: the time from start to the
# main window, the time from a close request (Alt+F4 through the window manager) to the end
# of the process, and the peak memory of the whole run (GNU time -v).
#     bench/measure-program.sh <build folder> <products>
# Needs xvfb-run, openbox, xdotool and /usr/bin/time. Prints one line of figures.
set -euo pipefail
build=$(cd "$1" && pwd)
products=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$build/bin/tarnwick" "$work/"
"$build/bench/tarnwick_make_catalogue" "$work/twdata.dat" "$products"

cat >"$work/session.sh" <<'EOF'
#!/usr/bin/env bash
set -euo pipefail
cd "$1"
openbox >/dev/null 2>&1 &
sleep 1
start=$(date +%s.%N)
HOME="$1" XDG_CONFIG_HOME="$1/config" /usr/bin/time -v -o "$1/time.txt" ./tarnwick \
    >/dev/null 2>&1 &
runner=$!
window=""
for _ in $(seq 1 600); do
    window=$(xdotool search --onlyvisible --name '^Tarnwick' 2>/dev/null | head -1 || true)
    [ -n "$window" ] && break
    sleep 0.05
done
shown=$(date +%s.%N)
sleep 2
xdotool windowactivate "$window" >/dev/null 2>&1 || true
sleep 0.5
asked=$(date +%s.%N)
xdotool key --clearmodifiers alt+F4
wait "$runner"
ended=$(date +%s.%N)
peak=$(awk -F': ' '/Maximum resident/ {print $2}' "$1/time.txt")
printf 'window after %.2f s, close request to exit %.2f s, peak %.1f MiB\n' \
    "$(echo "$shown - $start" | bc)" "$(echo "$ended - $asked" | bc)" "$(echo "$peak / 1024" | bc -l)"
EOF
chmod +x "$work/session.sh"
xvfb-run -a -s "-screen 0 1280x1024x24" "$work/session.sh" "$work"
