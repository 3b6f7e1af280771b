"""Judges what gcovr counted: count_coverage.py ALL.json COUNTED.json

Fails when the tests reach less than 95 of 100 lines of Cross/ and tools/ or branches of the parsers, the sources that
read bytes which may be hostile. Fails too when a branch of a parser is neither reached nor explained in
tests/coverage/unreached.txt, and when an entry there explains nothing. COUNTED.json is ALL.json with the branches that
count, which are those that stand in the source:

- Not the way on behind a call, and not the way of an exception out of it: every call that may throw has this pair.
- Not a choice that no test came to, on a line that was run: the way to it counts as not taken already, unless it is the
  clean-up of an exception. On a line that was not run, clean-ups do not count either; they come in no pairs.
- Not the way past a `catch`, for an exception of another type; gcovr leaves it out.
"""

import json
import sys
from collections import Counter
from pathlib import Path

LEAST = 95.0  # of 100

LIST = Path("tests/coverage/unreached.txt")

PARSERS = """
    Cross/Util/BasicMeshIO.cpp Cross/Util/BinaryConfigIO.cpp Cross/Util/BinaryConfigVerify.cpp
    Cross/Util/BoundVolumeIO.cpp Cross/Util/CheatMenuLines.h Cross/Util/CheatMenuLoad.cpp Cross/Util/ConfigFile.cpp
    Cross/Util/ConfigFileLines.h Cross/Util/Dca.cpp Cross/Util/DictionaryLoad.cpp Cross/Util/KeyValueContainerIO.cpp
    Cross/Util/SystemConfigIO.cpp Cross/Util/TGAIO.cpp Cross/engine/core/Utf.cpp Cross/engine/filesystem/Chunky.cpp
    Cross/engine/filesystem/PathText.cpp tools/ChunkList.cpp tools/ChunkNotes.cpp tools/ChunkValues.h
    tools/ConfigLint.cpp tools/LineReader.h tools/MenuLint.cpp tools/MeshCheck.cpp tools/ObjSource.cpp tools/PngFile.cpp
    tools/StatsLog.cpp tools/TableFile.cpp tools/TableNotes.cpp tools/TargaCheck.cpp tools/syncdiff/SyncDiff.cpp
    tools/tablesource/SourceTree.cpp tools/tablesource/SourceTypes.cpp tools/tablesource/TableSource.cpp
""".split()


def choices_of(line):
    """The branches of a line, in the groups in which one is taken: pairs, and the rest alone."""
    branches = []
    for branch in line["branches"]:
        if not branch["throw"]:
            branches.append(branch)
        elif branches and branches[-1]["fallthrough"]:
            branches.pop()
    while branches:
        is_pair = len(branches) > 1 and branches[0]["fallthrough"] != branches[1]["fallthrough"]
        size = 2 if is_pair else 1
        yield branches[:size]
        del branches[:size]


def counted(line):
    was_run = line["count"] > 0
    return [
        branch
        for choice in choices_of(line)
        if any(way["count"] for way in choice) or (len(choice) == 2 and not was_run)
        for branch in choice
    ]


def explained():
    """How many branches of (file, line) are explained. A file with the line "*" is one that is never counted."""
    entries = Counter()
    for number, text in enumerate(LIST.read_text().splitlines(), 1):
        if text.startswith(("    ", "#")) or not text:
            continue
        place, _, line = text.partition(": ")
        file, _, ways = place.partition(" x")
        if not line or not ways.isdigit():
            sys.exit(f"{LIST}:{number}: is no \"FILE xBRANCHES: LINE\"")
        entries[file, line] += int(ways)
    return entries


def unreached(file):
    """How many branches of (file, line) were not taken, by their texts."""
    source = Path(file["file"]).read_text().splitlines()
    ways = Counter()
    for line in file["lines"]:
        missing = sum(branch["count"] == 0 for branch in line["branches"])
        if missing:
            ways[file["file"], source[line["line_number"] - 1].strip()] += missing
    return ways


def share(name, counts):
    counts = list(counts)
    reached = sum(count > 0 for count in counts)
    percent = 100.0 * reached / len(counts) if counts else 0.0
    print(f"{name}: {reached} of {len(counts)}, {percent:.2f} %")
    return [] if percent >= LEAST else [f"{name}: less than {LEAST} % are reached"]


def differences(missing, entries):
    for file, line in sorted(missing.keys() | entries.keys()):
        found, told = missing[file, line], entries[file, line]
        if found != told:
            yield f"{file}: {found} branches are not reached, {LIST} explains {told}: {line}"


def main(source, target):
    coverage = json.loads(Path(source).read_text())
    for file in coverage["files"]:
        for line in file["lines"]:
            line["branches"] = counted(line)
    Path(target).write_text(json.dumps(coverage))

    files = {file["file"]: file for file in coverage["files"]}
    faults = [f"{name}: is not there, or was not built" for name in PARSERS if name not in files]
    parsers = [files[name] for name in PARSERS if name in files]
    entries = explained()
    missing = sum((unreached(file) for file in parsers), Counter())

    # A process that aborts writes no counters.
    for name in [file for file, line in entries if line == "*"]:
        if name not in files or any(line["count"] for line in files.pop(name)["lines"]):
            faults.append(f"{name}: is counted, but {LIST} says that it never is")
        del entries[name, "*"]

    lines = [line for file in files.values() for line in file["lines"] if not line["gcovr/noncode"]]
    faults += share("lines of Cross/ and tools/", (line["count"] for line in lines))
    branches = [branch for file in parsers for line in file["lines"] for branch in line["branches"]]
    faults += share("branches of the parsers", (branch["count"] for branch in branches))
    faults += differences(missing, entries)
    print(f"explained branches of the parsers: {sum(entries.values())}")
    for fault in faults:
        print(f"coverage: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
