#!/usr/bin/env python3
"""Checks that every relative link and image of the project's Markdown files leads to a file, and every in-page link to a
heading. Prints one line for each fault; exit code 1 when there is any."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)[^)]*\)")


def anchors(path):
    headings = re.findall(r"^#+\s+(.*)$", path.read_text(encoding="utf-8"), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", h.lower()).strip().replace(" ", "-") for h in headings}


def main():
    faults = []
    pages = [p for p in ROOT.rglob("*.md") if "build" not in p.relative_to(ROOT).parts]
    for page in sorted(pages):
        for target in LINK.findall(page.read_text(encoding="utf-8")):
            if re.match(r"^[a-z]+:", target):
                continue
            file, _, anchor = target.partition("#")
            path = (page.parent / file).resolve() if file else page
            if not path.exists():
                faults.append(f"{page.relative_to(ROOT)}: {target} leads nowhere")
            elif anchor and path.suffix == ".md" and anchor not in anchors(path):
                faults.append(f"{page.relative_to(ROOT)}: no heading for {target}")
    print("\n".join(faults) if faults else f"links: {len(pages)} pages, no fault")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
