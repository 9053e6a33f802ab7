#!/usr/bin/env python3
"""Check that the committed generated files are exactly what the generators make today.

Regenerates everything into a temporary directory and compares byte for byte with the
repository root. Prints each differing or missing file and exits 1; exits 0 when all match.
"""
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True  # keep tools/ free of __pycache__
sys.path.insert(0, str(Path(__file__).resolve().parent))

from make_assets import ROOT, make_all  # noqa: E402


def main():
    with tempfile.TemporaryDirectory() as tmp:
        files = make_all(tmp)
        bad = []
        for rel in files:
            committed = ROOT / rel
            if not committed.is_file():
                bad.append(f"missing: {rel}")
            elif committed.read_bytes() != (Path(tmp) / rel).read_bytes():
                bad.append(f"differs: {rel}")
    for line in bad:
        print(line)
    if bad:
        print(f"{len(bad)} of {len(files)} generated files do not match; "
              "run /usr/bin/python3 tools/make_assets.py")
        return 1
    print(f"assets reproduce: {len(files)} files")
    return 0


if __name__ == "__main__":
    sys.exit(main())
