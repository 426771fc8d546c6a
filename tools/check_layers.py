#!/usr/bin/env python3
"""Checks the include rules of the source tree: includes run downwards through the layers, headers form no circle,
operating-system headers and conditionals stay in the platform layer, and no exported header uses a bare long.
Prints one line for each fault; exit code 1 when there is any."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# From the bottom up; the first pattern that matches a file decides its layer.
LAYERS = [
    ("platform", r"^platform/"),
    ("accessors", r"^frame/(accessors|export|byte_order|build_info|random)\.h$"),
    ("sync", r"^concurrency/(locks|event|sync|lockable|semaphore|object_name|crit_sec_inl)\b"),
    ("memory", r"^memory/"),
    ("text", r"^text/"),
    ("services", r"^(time|geometry)/"),
    ("storage", r"^storage/"),
    ("security", r"^security/"),
    ("threads", r"^concurrency/"),
    ("logging", r"^logging/"),
    ("messaging", r"^messaging/"),
    ("managers", r"^(typeahead|system|orvcache)/"),
    ("frame", r"^frame/"),
]
# A file of the upper frame that lower layers may call: small functions without managers behind them.
RANK_OF_NAME = {name: rank for rank, (name, _) in enumerate(LAYERS)}

SYSTEM_HEADER = re.compile(
    r"^#\s*include\s*<(windows|winsock2|unistd|pthread|sys/|fcntl|dlfcn|signal|csignal|dirent|termios|execinfo|"
    r"semaphore|poll|sched|linux/)")
OWN_INCLUDE = re.compile(r'^#\s*include\s*"dorvutil/([^"]+)"')
BARE_LONG = re.compile(r"(?<!std::)\b(unsigned\s+)?long\b(?!\s*double)")


def library_name(path):
    """The path below dorvutil/, as an include line spells it."""
    for base in ("include/dorvutil", "src/dorvutil"):
        try:
            return path.relative_to(ROOT / base).as_posix()
        except ValueError:
            continue
    return None


def layer_of(name):
    for rank, (_, pattern) in enumerate(LAYERS):
        if re.match(pattern, name):
            return rank
    return None  # an umbrella header: includes whole subsystems


def code_lines(path):
    in_comment = False
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        bare = line.strip()
        if in_comment:
            in_comment = "*/" not in bare
            continue
        if bare.startswith("/*"):
            in_comment = "*/" not in bare
            continue
        yield number, line.split("//")[0]


def check_file(path, includes, faults):
    name = library_name(path)
    rank = layer_of(name)
    in_platform = re.match(r"^platform/(posix|win32)/", name)
    for number, line in code_lines(path):
        where = f"{path.relative_to(ROOT)}:{number}"
        if SYSTEM_HEADER.match(line) and not in_platform:
            faults.append(f"{where}: operating-system header outside platform/posix and platform/win32")
        if "_WIN32" in line and not name.startswith("platform/") and name != "frame/export.h":
            faults.append(f"{where}: system conditional outside platform/")
        if path.is_relative_to(ROOT / "include") and BARE_LONG.search(line) and "include" not in line:
            faults.append(f"{where}: bare long in an exported header")
        found = OWN_INCLUDE.match(line)
        if not found:
            continue
        target = found.group(1)
        includes.setdefault(name, []).append(target)
        target_rank = layer_of(target)
        if rank is not None and target_rank is None:
            faults.append(f"{where}: includes the umbrella {target}; name the topic")
        elif rank is not None and target_rank > rank:
            faults.append(f"{where}: {LAYERS[rank][0]} includes {target}, which lies above ({LAYERS[target_rank][0]})")


def find_circle(includes):
    done, path = set(), []

    def visit(name):
        if name in path:
            return path[path.index(name):] + [name]
        if name in done:
            return None
        path.append(name)
        for target in includes.get(name, []):
            circle = visit(target)
            if circle:
                return circle
        path.pop()
        done.add(name)
        return None

    for start in sorted(includes):
        circle = visit(start)
        if circle:
            return circle
    return None


def main():
    faults, includes = [], {}
    files = sorted(p for base in ("include", "src") for p in (ROOT / base).rglob("*") if p.suffix in (".h", ".cpp"))
    for path in files:
        check_file(path, includes, faults)
    circle = find_circle(includes)
    if circle:
        faults.append("circle of headers: " + " -> ".join(circle))
    print("\n".join(faults) if faults else f"layers: {len(files)} files, no fault")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
