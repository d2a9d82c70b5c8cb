#!/bin/sh
# Reads each hostile workbook of the exchange tests with the program's workbook reader, as the
# program starts it ("tarnwick --read-workbook <file>", under its own limits), and prints the
# time to the end, the reader's peak memory and how it ended. The program itself only receives
# what the reader writes; the end-to-end check "hostile" measures the program's side.
# Usage: bench/measure-hostile-workbooks.sh path/to/tarnwick
set -eu
program=${1:?usage: $0 path/to/tarnwick}
here=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
python3 "$here/../tests/exchange/make_hostile_workbooks.py" "$folder"
printf '%-16s %8s %8s %8s %s\n' file wall-s cpu-s peak-MB end
for file in crash.xls claims-4gb.xlsx bomb.xlsx repeat.ods longref.xlsx; do
    /usr/bin/time -o "$folder/time" -f '%e %U %S %M %x' \
        "$program" --read-workbook "$folder/$file" 2>/dev/null | wc -c > "$folder/bytes" || true
    # time(1) puts "Command terminated by signal N" or "... non-zero status N" before its line.
    read -r wall user system peak code <<LINE
$(tail -n 1 "$folder/time")
LINE
    end="exit $code"
    if grep -q 'signal' "$folder/time"; then end=$(head -n 1 "$folder/time"); fi
    printf '%-16s %8s %8s %8s %s, %s bytes written\n' "$file" "$wall" \
        "$(echo "$user + $system" | bc)" "$((peak / 1024))" "$end" "$(cat "$folder/bytes")"
done
