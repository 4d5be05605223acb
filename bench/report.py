#!/usr/bin/env python3
"""Runs the rows of the bench and prints what they cost, or guards what they must not exceed.

Times are the fastest of the repetitions, in the CPU time of the process, so that a busy machine
matters little; ratios compare rows of one run. Instructions are counted by callgrind, Qt's and the
C library's among them, and come out the same in every run.
"""
import argparse
import pathlib
import sys

import measure

MARGIN = 1.10  # what the guard lets pass


def ratio_of(row, table, costs):
    """To the peer, of one part of an operation; None without a peer."""
    if not row.peer:
        return None
    of, to = (getattr(costs[name], row.measure) / table[name].parts
              for name in (row.name, row.peer))
    return of / to


def shares(row, cost, ratio):
    """What the row takes of its targets for instructions and ratio; more than 1 is over."""
    taken = ([cost.instructions / row.limit] if row.limit else []) + (
        [round(ratio, 2) / row.at_most] if row.at_most else [])
    over = " over" if any(share > 1 for share in taken) else ""
    return ", ".join(f"{share:.2f}" for share in taken) + over


def cells(row, table, costs):
    cost = costs[row.name]
    ratio = ratio_of(row, table, costs)
    targets = ([f"{row.limit:,}"] if row.limit else []) + (
        [f"{row.at_most:.2f} x"] if row.at_most else [])
    unit = "x instr." if row.measure == "instructions" else "x time"
    return [row.name, f"{cost.time:,.0f}",
            "" if cost.instructions is None else f"{cost.instructions:,.0f}",
            f"{cost.allocations:,.0f}", "" if ratio is None else f"{ratio:.2f} {unit}",
            ", ".join(targets), shares(row, cost, ratio), row.peer]


HEADINGS = ["row", "time, ns", "instructions", "allocations", "ratio", "at most", "of that",
            "peer"]
LEFT = (0, 6, 7)


def print_table(lines, markdown):
    if markdown:
        rule = [":--" if i in LEFT else "--:" for i in range(len(HEADINGS))]
        for line in [HEADINGS, rule] + lines:
            print("| " + " | ".join(line) + " |")
        return
    widths = [max(map(len, column)) for column in zip(HEADINGS, *lines)]
    for line in [HEADINGS] + lines:
        print("  ".join(cell.ljust(width) if i in LEFT else cell.rjust(width)
                        for i, (cell, width) in enumerate(zip(line, widths))).rstrip())


def report(folder, markdown):
    table = measure.read_table(folder)
    costs = measure.all_costs(folder, table)
    print_table([cells(row, table, costs) for row in table.values()], markdown)


def guard(folder, path, renew):
    """Fails when a row of the guard's file has become dearer, beyond the margin."""
    table = measure.read_table(folder)
    stored = dict(line.rsplit(" ", 1) for line in path.read_text().splitlines())
    unknown = [name for name in stored if name not in table]
    if unknown or not stored:
        sys.exit(f"{path}: expected names of rows, got {unknown}")
    counted = measure.count_all(folder, [table[name] for name in stored])
    if renew:
        path.write_text("".join(f"{name} {counted[name]:.0f}\n" for name in stored))
        return
    failed = False
    for name, before in stored.items():
        change = counted[name] / float(before)
        over = change > MARGIN
        failed |= over
        note = "  OVER" if over else "  lower: --renew keeps it" if change < 1 / MARGIN else ""
        print(f"{name:45} {counted[name]:12,.0f}  was {float(before):12,.0f}  x {change:.3f}{note}")
    if failed:
        sys.exit("More instructions than the guard allows.")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", type=pathlib.Path, help="where the bench programs are")
    parser.add_argument("--markdown", action="store_true")
    parser.add_argument("--guard", type=pathlib.Path, metavar="FILE")
    parser.add_argument("--renew", action="store_true", help="rewrite the guard's file")
    given = parser.parse_args()
    if given.guard:
        guard(given.folder, given.guard, given.renew)
    else:
        report(given.folder, given.markdown)


if __name__ == "__main__":
    main()
