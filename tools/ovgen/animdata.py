"""Reading animation data files the way the game does: formatted scanning, field by field.

The game's reader does not check its results, so a typo silently zeroes every later clip. The
generators read their own files back with the same rules and stop on the first field that does not
match, before anything is written.
"""


def scan(text, pos, fmt):
    """C's fscanf on a string: a blank in `fmt` skips any white space (or none), %d reads an
    integer after optional white space, any other character must match. Returns (values, pos, ok);
    on a mismatch the position stays where matching stopped, as in the game's reader."""
    values, i = [], 0
    while i < len(fmt):
        c = fmt[i]
        if c.isspace():
            while pos < len(text) and text[pos].isspace():
                pos += 1
        elif fmt.startswith("%d", i):
            while pos < len(text) and text[pos].isspace():
                pos += 1
            j = pos + (pos < len(text) and text[pos] in "+-")
            k = j
            while k < len(text) and text[k].isdigit():
                k += 1
            if k == j:
                return values, pos, False
            values.append(int(text[pos:k]))
            pos, i = k, i + 1
        elif pos < len(text) and text[pos] == c:
            pos += 1
        else:
            return values, pos, False
        i += 1
    return values, pos, True


class FieldReader:
    """Reads one file's fields in order; `need` raises where matching stops."""

    def __init__(self, text, what):
        self.text, self.what, self.pos = text, what, 0

    def need(self, fmt):
        values, self.pos, ok = scan(self.text, self.pos, fmt)
        if not ok:
            at = self.text[self.pos:self.pos + 30]
            raise ValueError(f"{self.what} stops matching {fmt!r} at {at!r}")
        return values

    def finish(self):
        if self.text[self.pos:].strip():
            raise ValueError(f"{self.what} has trailing text")


def clip_line(label, frames, rate, tail=None):
    """A clip's line: "<label> | NbFrame : n / FrameRate : r", then " / <word> Frame : k" when
    tail is (word, k), as the enemies' damage and dash frames are written."""
    line = f"{label} | NbFrame : {frames} / FrameRate : {rate}"
    if tail is not None:
        line += f" / {tail[0]} Frame : {tail[1]}"
    return line


def read_clip(reader, label, word=None):
    """Reads back a line written by clip_line: (label, frames, rate, k or None)."""
    n, rate = reader.need(label + " | NbFrame : %d / FrameRate : %d")
    k = reader.need(f" / {word} Frame : %d")[0] if word is not None else None
    reader.need("\n")
    return (label, n, rate, k)
