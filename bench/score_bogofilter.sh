#!/usr/bin/env bash
# Bayes scoring and training beside a mature C filter (bogofilter, Debian's
# package): the corpus split in two by the order of its files, the first of
# every pair to train on, the second to score. Vonel trains with `--train`
# over a store of the training half (ham in the inbox, spam in its spam
# folder) and scores with `--score`; bogofilter trains with -n/-s and scores
# with -B over the same files. Each pair is timed in the same run, twice.
# Usage: bench/score_bogofilter.sh path/to/vonel CORPUS_FOLDER   (from tools: get-corpus.sh)
set -euo pipefail
vonel=$(realpath "$1")
corpus=$2
command -v bogofilter >/dev/null || { echo "bogofilter is not installed (apt-get install bogofilter)" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
home="$work/home"
mkdir -p "$home/Messages/Inbox" "$home/Messages/SpamBayes" "$work/ham" "$work/spam" "$work/score"
printf 'TITLE0,None\r\n' >"$home/Vonel.ini"

# The messages without their mbox "From " line, as a mail program stores them.
python3 - "$corpus" "$work" "$home/Messages" <<'PY'
import os, sys
corpus, work, store = sys.argv[1:]
names = sorted(os.path.join(r, n) for r, _, ns in os.walk(corpus) for n in ns if n.endswith(".txt"))
for i, name in enumerate(names):
    with open(name, "rb") as f:
        data = f.read()
    if data.startswith(b"From "):
        data = data[data.find(b"\n") + 1:]
    data = data.replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")
    spam = "/spam" in name
    if i % 2 == 0:
        side = "spam" if spam else "ham"
        targets = [os.path.join(work, side, f"m{i:05d}.eml"),
                   os.path.join(store, "SpamBayes" if spam else "Inbox", f"m{i:05d}.eml")]
    else:
        targets = [os.path.join(work, "score", f"m{i:05d}.eml")]
    for target in targets:
        with open(target, "wb") as f:
            f.write(data)
PY
trained=$(find "$work/ham" "$work/spam" -type f | wc -l)
scored=$(find "$work/score" -type f | wc -l)

seconds() { python3 -c 'import time; print(f"{time.time():.6f}")'; }
timed() {  # prints the seconds the command took
  local start end
  start=$(seconds)
  "$@" >/dev/null 2>&1 </dev/null
  end=$(seconds)
  python3 -c "import sys; print(float(sys.argv[2]) - float(sys.argv[1]))" "$start" "$end"
}
line() {  # what count anchor vonel
  python3 -c "import sys; w, n, a, v = sys.argv[1], int(sys.argv[2]), float(sys.argv[3]), float(sys.argv[4]); print(f'{w} of {n} messages: bogofilter {a:.2f} s, Vonel {v:.2f} s: Vonel {a / v:.2f}x as fast')" "$@"
}
bogo_train() {
  rm -rf "$work/bogo"
  mkdir -p "$work/bogo"
  find "$work/ham" -type f -print0 | xargs -0 bogofilter -d "$work/bogo" -n -B
  find "$work/spam" -type f -print0 | xargs -0 bogofilter -d "$work/bogo" -s -B
}
for round in 1 2; do
  anchor=$(timed bogo_train)
  own=$(timed "$vonel" --home "$home" --train)
  line "training, round $round," "$trained" "$anchor" "$own"
  anchor=$(timed bash -c "find '$work/score' -type f -print0 | xargs -0 bogofilter -d '$work/bogo' -B")
  own=$(timed bash -c "find '$work/score' -type f -print0 | QT_QPA_PLATFORM=offscreen xargs -0 '$vonel' --home '$home' --score")
  line "scoring, round $round," "$scored" "$anchor" "$own"
done
