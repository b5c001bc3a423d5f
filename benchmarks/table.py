#!/usr/bin/env python3
"""Reads the results of the benchmarks and prints the table of ratios.

usage: table.py FOLDER

The folder holds what scripts/bench left there: Google Benchmark's JSON of each group, wmi.json from the program that
runs under Wine, if there is one, and machine.txt. Every figure is the best of many short repetitions: whoever else uses
the machine makes some of them longer, none shorter. What threads say to each other over the network is the exception:
how they meet is chance either way, so it is told by the median.
"""

import json
import math
import pathlib
import statistics
import sys

FEWEST_REPETITIONS = 10

# What is compared: title, the group's benchmark, the one that it is held against, and the largest ratio that is good.
OPERATIONS = [
    ("enumerate_1000_adapters", "enumerate 1,000 adapters"),
    ("read_60_settings", "read one adapter's 60 settings"),
    ("method_call", "one provider method call"),
]
RATIOS = [
    row
    for name, title in OPERATIONS
    for row in (
        (f"{title}, tracing off / by hand", f"operation/{name}/library", f"operation/{name}/plain", 1.05),
        (f"{title}, client layer / CQuillet", f"operation/{name}/client", f"operation/{name}/library", 1.05),
        (f"{title}, tracing on / by hand", f"operation/{name}/library_traced", f"operation/{name}/plain", None),
        (f"{title}, tracing off / by hand, one thread's proxies", f"operation/{name}/library",
         f"operation/{name}/plain_one_thread", None),
    )
] + [
    (f"over the wire: {title}{by} / libcurl", f"wsman/{name}/{side}", f"wsman/{name}/libcurl", most)
    for name, title, most in (("enumerate_1000_adapters", "enumerate 1,000 adapters", 2.0),
                              ("method_call", "one provider method call", 1.3))
    for side, by in (("wmi", ""), ("library", ", CQuillet"), ("client", ", client layer"))
] + [
    # Tells less than a line of ours: for information.
    ("a trace line / spdlog, its own pattern", "trace/line/quillet", "trace/line/spdlog", None),
    ("a trace line / spdlog, the same head", "trace/line/quillet", "trace/line/spdlog_same_head", 1.0),
    ("fetch by path, 10,000 / 100 instances", "simulator/fetch_by_path/10000", "simulator/fetch_by_path/100", 1.3),
    ("WQL by key, 10,000 / 100 instances", "simulator/query_by_key/10000", "simulator/query_by_key/100", None),
    ("start of the built-in machine, packed / compiling schema and machine", "simulator/start_builtin",
     "simulator/start_builtin_texts", None),
    ("association query, 10,000 / 100 instances", "simulator/query_by_association/10000",
     "simulator/query_by_association/100", None),
    # Two copies are what OLE needs: one into the VARIANT, one into the caller's buffer.
    ("16 MiB flash read / memcpy", "flash/read_16_MiB/library", "flash/read_16_MiB/memcpy", 2.1),
    ("50 clients: 1,000 answers of the server / of cpp-httplib alone", "wsman/50_clients/server",
     "wsman/50_clients/httplib", None),
    ("start of quilletctl --simulate adapter list / of python3 -c pass", "start/adapter_list", "start/python", None),
    ("start of quilletctl --simulate adapter list / of /bin/true", "start/adapter_list", "start/true", None),
    ("start of quilletctl version / of /bin/true", "start/version", "start/true", None),
]
# Throughput of two threads against one: the smallest ratio that is good.
THREADS = [
    ("enumerate_100_adapters", "two threads / one, enumerate 100 adapters", 1.8),
    ("read_60_settings", "two threads / one, read 60 settings", 1.8),
    ("method_call", "two threads / one, one provider method call", 1.8),
    ("basic_information", "two threads / one, read one adapter", 1.8),
    ("enumerate_100_adapters_apart", "two threads / one, enumerate 100 adapters, a machine each", None),
    ("method_call_apart", "two threads / one, one provider method call, a machine each", None),
    ("nothing_shared", "two threads / one, arithmetic: what the machine gives", None),
]
# Held against a figure in nanoseconds: what a WBEM mock written in Python took for the same on such a machine, measured
# once; the goal is a hundredth of it.
REFERENCE = [
    ("simulator/compile_1000_small", "compile 1,000 small instances / a mock in Python", 463e6),
    ("simulator/enumerate_1000_small", "enumerate 1,000 small instances / a mock in Python", 171e6),
    ("simulator/get_1_of_1000_small", "get one of 1,000 small instances / a mock in Python", 126e3),
    ("simulator/compile_builtin", "compile the built-in machine / a mock in Python", 1.5e9),
]
LARGEST_SHARE = 0.01
# Measured for themselves, and the most nanoseconds that are good.
ALONE = [
    ("simulator/load_10000_instances", "loading a machine of 10,000 instances", None),
    ("trace/switched_off/quillet", "a trace line that is switched off", None),
    ("start/adapter_list", "quilletctl --simulate adapter list, from its start to its end", 10e6),
]
# An exponent has to be about 1 or less; caches make a large machine somewhat dearer than linear.
LARGEST_EXPONENT = 1.1
# The requests of fifty clients that are timed together.
LOAD = 1000


class Results:
    """All measured times, by benchmark."""

    def __init__(self, folder):
        self.times, self.counters = {}, {}
        for file in sorted(folder.glob("*.json")):
            if file.name == "wmi.json":
                continue
            for run in json.loads(file.read_text(encoding="utf-8"))["benchmarks"]:
                if run.get("run_type") == "iteration":
                    self._add(run)

    def _add(self, run):
        name = run["name"]
        if run.get("error_occurred"):
            raise ValueError(f"{name}: {run.get('error_message', 'failed')}")
        # What one thread computes is told by the processor's clock, which others on the machine disturb least.
        wall = name.endswith(("/manual_time", "/real_time"))
        name = name.removesuffix("/manual_time").removesuffix("/real_time").removesuffix("/iterations:1")
        unit = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]
        self.times.setdefault(name, []).append(run["real_time" if wall else "cpu_time"] * unit)
        self.counters[name] = run

    def figure(self, name):
        times = self.times[name]
        if len(times) < FEWEST_REPETITIONS:
            raise ValueError(f"{name}: only {len(times)} repetitions")
        return statistics.median(times) if name.startswith("wsman/") else min(times)

    def excess(self, name):
        """How far the median lies above the best, in per cent."""
        return 100 * (statistics.median(self.times[name]) / min(self.times[name]) - 1)


def duration(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def verdict(good):
    return "" if good is None else "met" if good else "MISSED"


def line(title, left, right, ratio, goal, outcome):
    print(f"{title:<74} {left:>9} {right:>9} {ratio:>6}  {goal:<7} {outcome}".rstrip())


def slope(points):
    """The exponent k of the power n**k that fits best: the slope of a line through the logarithms."""
    logs = [(math.log(n), math.log(value)) for n, value in points]
    mean_x = statistics.fmean(x for x, _ in logs)
    mean_y = statistics.fmean(y for _, y in logs)
    return sum((x - mean_x) * (y - mean_y) for x, y in logs) / sum((x - mean_x) ** 2 for x, _ in logs)


def print_ratios(results):
    for title, left, right, most in RATIOS:
        if left not in results.times:
            continue  # only some groups were run
        ratio = results.figure(left) / results.figure(right)
        line(title, duration(results.figure(left)), duration(results.figure(right)), f"{ratio:.2f}",
             f"<= {most:g}" if most else "-", verdict(ratio <= most if most else None))
    for name, title, reference in REFERENCE:
        if name in results.times:
            time = results.figure(name)
            share = time / reference
            line(title, duration(time), duration(reference), f"{share:.2g}", f"<= {LARGEST_SHARE:g}",
                 verdict(share <= LARGEST_SHARE))
    for name, title, least in THREADS:
        if f"threads/{name}/1" not in results.times:
            continue
        two, one = results.figure(f"threads/{name}/2"), results.figure(f"threads/{name}/1")
        # Each thread does all the work: two do twice as much.
        ratio = 2 * one / two
        line(title, duration(two), duration(one), f"{ratio:.2f}", f">= {least:g}" if least else "-",
             verdict(ratio >= least if least else None))


def print_wmi(folder):
    file = folder / "wmi.json"
    if not file.exists():
        return
    for contest in json.loads(file.read_text(encoding="utf-8")):
        times = [min(contest[side]) for side in ("simulator", "system")]
        if len(contest["simulator"]) < FEWEST_REPETITIONS or len(contest["system"]) < FEWEST_REPETITIONS:
            raise ValueError("wmi.json: too few repetitions")
        line(f"{contest['name']}, simulator / Wine's WMI", duration(times[0]), duration(times[1]),
             f"{times[0] / times[1]:.2g}", "-", "")


def print_growth(results):
    series = {}
    for name in results.times:
        parts = name.split("/")
        if parts[0] == "growth":
            series.setdefault((parts[1], parts[2]), []).append(int(parts[3]))
    if not series:
        return
    print()
    print(f"{'growth: the exponent k of n^k':<50} {'n':>12} {'time':>6} {'last':>6} {'calls':>6} "
          f"{'calls at n':>11}  goal")
    for (what, operation), sizes in sorted(series.items()):
        sizes.sort()
        names = [f"growth/{what}/{operation}/{size}" for size in sizes]
        times = list(zip(sizes, map(results.figure, names)))
        calls = [(size, results.counters[name]["calls"]) for size, name in zip(sizes, names)]
        # A quadratic term hides behind a constant one at first: the last decade shows it best.
        exponents = [slope(times), slope([(n, time) for n, time in times if 10 * n >= sizes[-1]])]
        by_calls = slope(calls) if all(count > 0 for _, count in calls) else 0.0
        good = max(*exponents, by_calls) <= LARGEST_EXPONENT
        print(f"{operation + ', ' + what:<50} {f'{sizes[0]}..{sizes[-1]}':>12} {exponents[0]:>6.2f} "
              f"{exponents[1]:>6.2f} {by_calls:>6.2f} {calls[-1][1]:>11,.0f}  <= 1 {verdict(good)}")


def print_requests(results):
    rows = sorted(name for name in results.times if name.startswith("requests/"))
    if not rows:
        return
    print()
    print(f"{'over the wire':<40} {'calls':>6} {'requests':>9} {'of classes':>11} {'again':>6}  goal, again")
    for name in rows:
        counters = results.counters[name]
        calls, needed, first, classes, again = (
            round(counters[key]) for key in ("calls", "needed", "first", "classes", "again"))
        print(f"{name.removeprefix('requests/'):<40} {calls:>6} {first:>9} {classes:>11} {again:>6}  "
              f"<= {needed:<2} {verdict(again <= needed)}")


def print_wire(results):
    for name, title in (("server", "50 clients, the server"), ("httplib", "50 clients, cpp-httplib alone")):
        if f"wsman/50_clients/{name}" in results.times:
            rates = 1e9 * LOAD / results.figure(f"wsman/50_clients/{name}")
            print(f"{title}: {rates:,.0f} requests per second, none failed")
    if "memory/read_16_MiB" in results.times:
        counters = results.counters["memory/read_16_MiB"]
        print(f"16 MiB of flash memory over the wire: {duration(results.times['memory/read_16_MiB'][0])}; most memory: "
              f"client {counters['client_MiB']:,.0f} MiB (before: {counters['client_before_MiB']:,.0f}), "
              f"server {counters['server_MiB']:,.0f} MiB (before: {counters['server_before_MiB']:,.0f})")


def main(arguments):
    if len(arguments) != 1:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    folder = pathlib.Path(arguments[0])
    results = Results(folder)
    print((folder / "machine.txt").read_text(encoding="utf-8"))
    line("ratio", "this", "other", "ratio", "goal", "")
    print_ratios(results)
    print_wmi(folder)
    print_growth(results)
    print_requests(results)
    print()
    for name, title, most in ALONE:
        if name in results.times:
            goal = f"  <= {duration(most)} {verdict(results.figure(name) <= most)}" if most else ""
            print(f"{title}: {duration(results.figure(name))}{goal}")
    print_wire(results)
    repeated = [name for name, times in results.times.items() if len(times) >= FEWEST_REPETITIONS]
    if repeated:
        excesses = sorted(map(results.excess, repeated))
        print(f"how far medians lie above the best: {excesses[0]:.0f} to {excesses[-1]:.0f} %, "
              f"half of them above {statistics.median(excesses):.0f} %")
    return 0


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8")
    sys.exit(main(sys.argv[1:]))
