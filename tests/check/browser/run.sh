#!/bin/sh
# Pages in a browser without a screen, at the width of a phone and of a desk, light and dark: run.sh VETRO_CHECK
# PROJECT_FOLDER SCRATCH_FOLDER. Exit status 77 where no browser is, or none that starts.
#
# A copy of each page gets a script that measures it (measure.js) and a policy that forbids all but that script and the
# style sheet beside the page. One page around them (around.js) shows each in frames of the two widths and collects what
# the scripts say.
set -u

check=$1
project=$2
scratch=$3
here=$(cd "$(dirname "$0")" && pwd)
bad=0

browser=$(command -v chromium || command -v chromium-browser || command -v google-chrome) || {
  echo "skipped: no browser is installed"
  exit 77
}
complain() {
  echo "$*"
  bad=1
}

rm -rf "$scratch"
mkdir -p "$scratch/measured" "$scratch/home"
cd "$scratch" || exit 1

# page ADDRESS OPTION ...: the document that the browser makes of it.
page() (
  address=$1
  shift
  HOME=$scratch/home XDG_RUNTIME_DIR=$scratch/home XDG_CONFIG_HOME=$scratch/home XDG_CACHE_HOME=$scratch/home \
    timeout 40 "$browser" --headless --no-sandbox --disable-gpu --disable-dev-shm-usage --disable-background-networking \
    --no-first-run --user-data-dir="$scratch/profile" --window-size=1400,1000 "$@" --dump-dom "$address" 2>>browser.log
)
page about:blank | grep -q '<html' || {
  echo "skipped: $browser does not start here"
  exit 77
}

# The proofs: what fails, what does not parse, names and formulas that are too long for a phone.
long=x
i=0
while [ $i -lt 60 ]; do
  long="$long + x"
  i=$((i + 1))
done
cat >proofs.jsonl <<END
{"id": "verified", "gap_text": "ASSUM:\n1. x > 1\nGOAL:\nx > 0\n", "script_text": "autosolve all_hypothesis\n"}
{"id": "a_long_name/without_any_place_at_which_it_could_be_broken/so_that_it_is_wider_than_a_telephone", "gap_text": "ASSUM:\n1. $long > 0\n2. f = fun t . cases{ t^2 if t > 0; otherwise -frac(1, t) }\n3. sum_{k = 1}^{n}(frac(1, k^2)) + int_{0}^{1}(sqrt(t) * diff(t)) + lim_{t → 0}(sin(t) / t) = sqrtn(3, 1 + 1 / (1 + 1 / a))\nGOAL:\nFunDeri(f, 1, 2, a) + ValDeri(t^2, t, 2, 3) = f'(a) ∧ x^2|_{0}^{1} = b_n\n", "script_text": "assert (hypothesis 4: {$long + 1 > 0})\nassert (hypothesis 5: {sin^2(x) = 1}) by admit\nassert (hypothesis 6: {x > x}) by proof {\n  autosolve all_hypothesis\n}\n"}
{"id": "does not parse", "gap_text": "ASSUM:\n1. $long > > 0\nGOAL:\nx > 0\n", "script_text": "autosolve all_hypothesis\n"}
{"id": "admitted", "gap_text": "ASSUM:\nGOAL:\nx > 0\n", "script_text": "assert (hypothesis 1: {x > 0}) by admit\nautosolve all_hypothesis\n"}
{"id": "unreadable", "gap": "nowhere", "script": "nowhere"}
END
"$check" --library "$project/examples/library/analysis.txt" --times --html pages proofs.jsonl \
  "$project/examples/limit_by_definition" "$project/examples/function_by_cases" >/dev/null
pages=$(cd pages && ls -- *.html)
[ "$(echo "$pages" | wc -l)" = 8 ] || complain "other pages than were expected: $pages"
grep -o 'href="[^"]*"' pages/*.html | sed 's/.*href="\(.*\)"/\1/' | LC_ALL=C sort -u | while read -r name; do
  [ -e "pages/$name" ] || echo "$name"
done >missing
[ ! -s missing ] || complain "links lead to $(cat missing)"

cp "$here/measure.js" "$here/around.js" pages/style.css measured
policy="default-src 'none'; style-src file: 'unsafe-inline'; script-src file:"
for name in $pages; do
  sed "s|</head>|<meta http-equiv=\"Content-Security-Policy\" content=\"$policy\"/><script src=\"measure.js\"></script></head>|" \
    "pages/$name" >"measured/$name"
done
for mode in light dark; do
  {
    echo '<!DOCTYPE html><html><head><meta charset="utf-8"><meta name="color-scheme" content="light dark"></head><body>'
    echo '<pre id="said"></pre><script src="around.js"></script>'
    for name in $pages; do
      for width in 390 1280; do
        echo "<iframe src=\"$name?width=$width&amp;mode=$mode\" width=\"$width\" height=\"900\" style=\"border: 0\"></iframe>"
      done
    done
    echo '</body></html>'
  } >measured/all.html
  scheme=1
  [ $mode = light ] || scheme=0
  # A browser on a machine under load may give up early: it has three tries.
  for try in 1 2 3; do
    page "file://$scratch/measured/all.html" --blink-settings=preferredColorScheme=$scheme --virtual-time-budget=20000 |
      sed -n '/<pre id="said">/,/<\/pre>/{s/.*<pre id="said">//;/<\/pre>/d;p;}' >said
    [ "$(grep -c '^measured' said)" != 16 ] || break
  done
  [ "$(grep -c '^measured' said)" = 16 ] || complain "$mode: not all pages were measured: $(cat said; tail -n 3 browser.log)"
  grep -q '^measured 2-.* with [1-9][0-9]* formulas' said || complain "$mode: a page without formulas"
  grep -v '^measured' said >problems && complain "$mode: $(cat problems)"
done
exit $bad
