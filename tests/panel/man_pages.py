"""The manual pages describe the options that the programs have, all of them and no others.

Usage: man_pages.py MANDOC PROGRAM PAGE
"""
import re
import subprocess
import sys

WIDE = "width=1000"  # a paragraph is a line


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          timeout=20, check=False).stdout


def options_of(help_text):
    """(name, takes a value, default or None) for each option of --help."""
    unwrapped = re.sub(r"\n {20,}", " ", help_text)
    for name, value, text in re.findall(r"^  (?:-h, )?--([a-z-]+)( <[^>]+>)? +(.*)$", unwrapped, re.M):
        preset = re.search(r"\(default ([^)]*)\)", text)
        yield name, bool(value), preset and preset.group(1)


def description(page, name, takes_value):
    """The paragraph on an option; None when there is none."""
    head = rf"^ +(?:-h, )?--{name}{' [^ ]+' if takes_value else ''}(?:\n +| {{2,}})(\S.*)$"
    found = re.search(head, page, re.M)
    return found and found.group(1)


def main(mandoc, program, page_file):
    complaints = output(mandoc, "-Tlint", "-Wwarning", page_file).splitlines()
    page = re.sub(".\b", "", output(mandoc, "-Tutf8", "-O", WIDE, page_file))
    options = list(options_of(output(program, "--help")))
    if len(options) < 6:
        complaints.append(f"--help shows {len(options)} options")
    for name, takes_value, preset in options:
        said = description(page, name, takes_value)
        if said is None:
            complaints.append(f"--{name} is not described")
        elif preset is not None and f"Default: {preset}" not in said:
            complaints.append(f"--{name}: the default {preset} is not told: {said}")
    names = {name for name, _, _ in options}
    for name in set(re.findall(r"--([a-z][a-z-]*)", page)) - names:
        complaints.append(f"--{name} is described, but there is none")
    print("\n".join(complaints) or f"{len(options)} options agree")
    return 1 if complaints else 0


sys.exit(main(*sys.argv[1:]))
