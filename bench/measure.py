"""Runs the programs of the bench: the table of rows, times, instructions, allocations."""
import collections
import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

REPETITIONS = 5
SECONDS_PER_REPETITION = 0.05

Row = collections.namedtuple("Row", "name operations limit peer measure at_most parts threads")
Cost = collections.namedtuple("Cost", "time instructions allocations")


# The order of hashed entries is part of the cost, and must be the same in every run. Valgrind counts
# every step of the processor's string instructions, with which the C library moves more than 2 KiB,
# as one: it is to move them with its vector loop.
ENVIRONMENT = {"QT_HASH_SEED": "0"}
COUNTED_ENVIRONMENT = {**ENVIRONMENT, "GLIBC_TUNABLES": "glibc.cpu.hwcaps=-ERMS"}


def output(*command, environment=None):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                          env={**os.environ, **(environment or ENVIRONMENT)}, check=False)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}: status {done.returncode}\n{done.stderr}")
    return done.stdout


def read_table(folder):
    table = {}
    for line in output(folder / "bench_once").splitlines():
        name, operations, limit, peer, measure, at_most, parts, threads = line.split("\t")
        table[name] = Row(name, int(operations), int(limit), peer, measure, float(at_most),
                          int(parts), threads != "")
    return table


def instructions(folder, row):
    """Of one operation; none where a second thread takes part."""
    if row.threads:
        return None
    with tempfile.NamedTemporaryFile() as profile:
        output("valgrind", "--tool=callgrind", "--instr-atstart=no", "--collect-atstart=no",
               f"--callgrind-out-file={profile.name}", str(folder / "bench_once"), row.name,
               str(row.operations), environment=COUNTED_ENVIRONMENT)
        total = re.search(r"^totals: (\d+)$", pathlib.Path(profile.name).read_text(), re.M)
    counted = int(total.group(1)) if total else 0
    if counted == 0:
        sys.exit(f"callgrind counted nothing of the row '{row.name}'")
    return counted / row.operations


def count_all(folder, rows):
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        counts = pool.map(lambda row: instructions(folder, row), rows)
        return {row.name: count for row, count in zip(rows, counts)}


def time_all(folder, table):
    said = json.loads(output(
        folder / "bench_times", "--benchmark_format=json",
        f"--benchmark_repetitions={REPETITIONS}", "--benchmark_enable_random_interleaving=true",
        f"--benchmark_min_time={SECONDS_PER_REPETITION}"))
    times = {}
    for run in said["benchmarks"]:
        if run["run_type"] == "iteration":
            name = run["run_name"]
            measured = run["real_time" if table[name].threads else "cpu_time"]
            times[name] = min(measured, times.get(name, measured))
    return times


def allocations(folder):
    lines = output(folder / "bench_allocations").splitlines()
    return {name: float(count) for name, count in (line.split("\t") for line in lines)}


def all_costs(folder, table):
    allocated = allocations(folder)  # first, since it is quick and checks every row
    times = time_all(folder, table)
    counted = count_all(folder, table.values())
    return {name: Cost(times[name], counted[name], allocated[name]) for name in table}
