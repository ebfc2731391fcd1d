"""Whether the changes that CONTRIBUTING.md shows still apply: contributing_changes.py ROOT

Each is made twice in memory, because others make such changes too: it has to be anchored on lines that stay."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
files = re.findall(r"^--- a/(.+)\n\+\+\+ b/\1\n((?:(?!---)[@ +-].*\n)+)", (root / "CONTRIBUTING.md").read_text(), re.M)
texts = {name: (root / name).read_text() for name, _ in files}
for name, hunks in files * 2:
    text = texts[name]
    for old_count, new_count, lines in re.findall(r"^@@ -\d+,(\d+) \+\d+,(\d+) @@.*\n((?:[ +-].*\n)+)", hunks, re.M):
        lines = lines.splitlines(True)
        old = [line[1:] for line in lines if line[0] != "+"]
        new = [line[1:] for line in lines if line[0] != "-"]
        if (len(old), len(new)) != (int(old_count), int(new_count)):
            sys.exit(f"{name}: the numbers of lines are {len(old)} and {len(new)} in the change with\n{''.join(new)}")
        if text.count("".join(old)) != 1:
            sys.exit(f"{name} doesn't have these lines, or has them more than once:\n{''.join(old)}")
        text = text.replace("".join(old), "".join(new))
    texts[name] = text
print(f"{len(files)} changed files")
