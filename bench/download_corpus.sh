#!/usr/bin/env bash
# Downloads real mail from a Dovecot mailbox with `vonel --download` and
# prints how many stored files equal the server's messages byte for byte
# (without the store's header lines); then downloads again, which must store
# nothing. The corpus is a folder of messages in files, one each, that may
# start with an mbox "From " line. Run by hand, not in CI.
# Usage: bench/download_corpus.sh path/to/vonel CORPUS_FOLDER [COUNT]   (default 500)
set -euo pipefail
vonel=$(realpath "$1")
corpus=$2
count=${3:-500}
source_dir=$(cd "$(dirname "$0")/.." && pwd)
source "$source_dir/tools/one-dovecot.sh"
home="$work/home"
mkdir -p "$home"
account0_settings >"$home/Vonel.ini"

python3 - "$corpus" "$maildir/new" "$count" <<'PY'
import os, sys
corpus, folder, count = sys.argv[1], sys.argv[2], int(sys.argv[3])
names = sorted(os.path.join(root, n) for root, _, ns in os.walk(corpus) for n in ns if n.endswith(".txt"))
for i, name in enumerate(names[:count]):
    with open(name, "rb") as f:
        data = f.read()
    if data.startswith(b"From "):
        data = data[data.find(b"\n") + 1:]
    with open(os.path.join(folder, f"corpus{i:05d}"), "wb") as f:
        f.write(data)
PY
chmod -R a+rwX "$maildir"

start=$(date +%s.%N)
stored=$("$vonel" --home "$home" --download </dev/null | grep -c '^stored' || true)
end=$(date +%s.%N)
python3 "$source_dir/tools/compare-store.py" "$maildir" "$home/Messages" || true
again=$("$vonel" --home "$home" --download </dev/null | grep -c '^stored' || true)
python3 -c "print(f'{$stored} stored in {$end - $start:.1f} s; a second download stored {$again}')"
