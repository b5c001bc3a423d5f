#!/usr/bin/env python3
"""Measures how long programs take from their start to their end, one after the other in turn.

usage: start.py QUILLETCTL [ROUNDS]

Prints JSON as Google Benchmark does. "true" is what starting a process takes, "python" what others take that do nothing.
"""
import json
import os
import random
import sys
import time


def wall_time(command, environment):
    """Milliseconds from the start to the end of a process whose output nobody reads."""
    nowhere = [(os.POSIX_SPAWN_OPEN, descriptor, os.devnull, os.O_RDWR, 0) for descriptor in (0, 1, 2)]
    begin = time.perf_counter()
    process = os.posix_spawn(command[0], command, environment, file_actions=nowhere)
    _, status = os.waitpid(process, 0)
    end = time.perf_counter()
    if status != 0:
        sys.exit(f"start.py: {' '.join(command)} ended with {os.waitstatus_to_exitcode(status)}")
    return 1000 * (end - begin)


def main():
    quilletctl, rounds = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 100
    commands = {"adapter_list": [quilletctl, "--simulate", "adapter", "list"],
                "version": [quilletctl, "version"],
                "true": ["/bin/true"],
                "python": [sys.executable, "-c", "pass"]}
    environment = {**os.environ, "LC_ALL": "C.UTF-8"}
    runs = []
    for turn in range(rounds + 1):
        for name in random.sample(list(commands), len(commands)):
            took = wall_time(commands[name], environment)
            if turn > 0:  # the first finds the files on the disk
                runs.append({"name": f"start/{name}/real_time", "run_type": "iteration", "real_time": took, "time_unit": "ms"})
    print(json.dumps({"benchmarks": runs}))


if __name__ == "__main__":
    main()
