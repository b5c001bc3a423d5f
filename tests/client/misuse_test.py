"""Compiles Misuse.cpp once for each of its misuses, none of which may compile, and once without any."""
import re
import subprocess
import sys

compiler, source, *options = sys.argv[1:]
with open(source, encoding="utf-8") as file:
    cases = [int(number) for number in re.findall(r"^#(?:el)?if MISUSE == (\d+)", file.read(), re.MULTILINE)]
if cases != list(range(len(cases))) or len(cases) < 2:
    sys.exit(f"{source}: the misuses are not numbered from 0 on: {cases}")

failures = 0
for case in cases:
    command = [compiler, "-std=c++20", "-Wall", "-Wextra", "-Werror", "-fsyntax-only", f"-DMISUSE={case}", *options, source]
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    compiles = done.returncode == 0
    print(f"{case}: {'compiles' if compiles else next((l for l in done.stderr.splitlines() if 'error' in l), '?')}")
    if compiles != (case == 0):
        failures += 1
        print(f"misuse {case} should {'' if case == 0 else 'not '}compile\n{done.stderr}")
sys.exit(failures != 0)
