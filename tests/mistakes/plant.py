#!/usr/bin/env python3
"""Plants the mistakes of list.txt one at a time and tells which of them the tests notice.

A mistake is noticed when a test of its own library fails. All mistakes that can be chosen at run time are compiled
together, in a copy of the sources: an expression `a` becomes `(mistake(17) ? (b) : (a))`, statements go into the two
branches of an if, and the text of a shader is changed in memory. One build then serves all of them, and OV_MISTAKE=17
chooses. What only a compiler sees (headers, tables of constants) is planted and built by itself, one after another.

usage: tests/mistakes/plant.py [--only REGEX] [--report FILE]
"""
import argparse
import os
import pathlib
import re
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
COPY = ROOT / "build" / "mistakes" / "source"
# Where the preset puts it: relative to the sources it is the same as everywhere, so that ccache knows what is unchanged.
BUILD = COPY / "build" / "dev"
HELPER = ROOT / "tests" / "mistakes" / "ChosenMistake.h"
# Longer than any library's tests take; an endless loop counts as noticed.
TIMEOUT_SECONDS = 400


class Mistake:
    def __init__(self, number, path, original, replacement, alone):
        self.number, self.path, self.original, self.replacement = number, path, original, replacement
        self.is_shader = path.endswith(".ovsl")
        self.is_alone = alone or path.endswith(".h")
        self.is_statement = original.rstrip().endswith((";", "}"))
        self.library = path.split("/")[1] if path.startswith("src/") else "veldrisParts"

    def instrumented(self):
        condition = re.fullmatch(r"(if|while) \((.*)\)", self.original, re.DOTALL)
        if condition:
            wrong = re.fullmatch(r"(if|while) \((.*)\)", self.replacement, re.DOTALL).group(2)
            return (f"{condition.group(1)} (ovMistakes::isChosen({self.number}) ? bool({wrong}) "
                    f": bool({condition.group(2)}))")
        if self.is_statement:
            return f"{{ if (ovMistakes::isChosen({self.number})) {{ {self.replacement} }} else {{ {self.original} }} }}"
        return f"(ovMistakes::isChosen({self.number}) ? ({self.replacement}) : ({self.original}))"

    def filters(self):
        """Tests to run, one set after another until one of them notices: those that mirror the file, those that mirror
        its folder, and all of the library."""
        folder = ROOT / "tests" / pathlib.Path(self.path.removeprefix("src/")).parent
        suites = sorted(test.name.removesuffix("Test.cpp") for test in folder.glob("*Test.cpp"))
        own = pathlib.Path(self.path).name.split(".")[0].removesuffix("Internal")
        return f"*{own}*", ":".join(f"*{suite}*" for suite in suites) or "none", "*"

    def __str__(self):
        return f"{self.number:3} {self.path}: {self.original.splitlines()[0].strip()}"


def read_list():
    """Blocks of lines, parted by empty ones: a path holds for the mistakes below it; - original, + replacement,
    ! before them where the mistake must be compiled by itself."""
    mistakes, path = [], None
    for block in re.split(r"\n\s*\n", (ROOT / "tests/mistakes/list.txt").read_text()):
        lines = [line for line in block.splitlines() if line and not line.startswith("#")]
        original = "\n".join(line[2:] for line in lines if line.startswith("-"))
        replacement = "\n".join(line[2:] for line in lines if line.startswith("+"))
        for line in lines:
            if line[0] not in "-+!":
                path = line
        if original:
            alone = any(line.startswith("!") for line in lines)
            mistakes.append(Mistake(len(mistakes) + 1, path, original, replacement, alone))
    return mistakes


def check(mistakes):
    faults = []
    for mistake in mistakes:
        path = ROOT / mistake.path
        count = path.read_text().count(mistake.original) if path.exists() else 0
        if count != 1:
            faults.append(f"{mistake}\n    stands {count} times in the file, not once")
    return faults


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)


def must(command):
    result = run(command)
    if result.returncode != 0:
        sys.exit(result.stdout[-4000:])


def copy_sources():
    """Files keep their time where they are the same, so that the next build finds little to do."""
    COPY.mkdir(parents=True, exist_ok=True)
    files = run(["git", "-C", str(ROOT), "ls-files", "-co", "--exclude-standard"]).stdout.splitlines()
    for name in files:
        if (ROOT / name).is_file():
            write(COPY / name, (ROOT / name).read_bytes())
            (COPY / name).chmod((ROOT / name).stat().st_mode)
    known = set(files)
    for folder in [COPY / name for name in ("src", "apps", "tests")]:
        for path in folder.rglob("*"):
            if path.is_file() and str(path.relative_to(COPY)) not in known:
                path.unlink()


def write(path, content):
    if path.exists() and path.read_bytes() == content:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


def instrument(mistakes):
    """Writes all mistakes that are chosen at run time into the copy."""
    for path in sorted({mistake.path for mistake in mistakes}):
        text = (ROOT / path).read_text()
        for mistake in [m for m in mistakes if m.path == path]:
            if mistake.original not in text:
                sys.exit(f"{mistake}\n    is cut by a mistake above it in the list; mark one of them with !")
            if mistake.is_shader:
                # Both of one length, so that one can be written over the other in memory.
                length = max(len(mistake.original), len(mistake.replacement))
                text = text.replace(mistake.original, mistake.original.ljust(length))
            else:
                text = text.replace(mistake.original, mistake.instrumented())
        if not path.endswith(".ovsl"):
            text = f'#include "{HELPER}"\n#line 1\n{text}'
        write(COPY / path, text.encode())
    shaders = [mistake for mistake in mistakes if mistake.is_shader]
    script = COPY / "cmake" / "OvEmbedShadersScript.cmake"
    write(script, (ROOT / "cmake/OvEmbedShadersScript.cmake").read_text()
          .replace("#pragma once", f"#pragma once\\n#include \\\"{HELPER}\\\"")
          .replace("inline constexpr std::string_view ${name} = R\\\"ovsl(${body})ovsl\\\";",
                   "inline char ${name}_text[] = R\\\"ovsl(${body})ovsl\\\";\\n"
                   "inline constexpr std::string_view ${name}{${name}_text, sizeof(${name}_text) - 1};\\n"
                   "inline const bool ${name}_isPlanted = ovMistakes::plant(\\\"${name}\\\", ${name}_text);").encode())
    rows = []
    for mistake in shaders:
        length = max(len(mistake.original), len(mistake.replacement))
        name = pathlib.Path(mistake.path).name.removesuffix(".ovsl").replace(".", "_")
        rows.append(f'{{{mistake.number}, "{name}", R"m({mistake.original.ljust(length)})m", '
                    f'R"m({mistake.replacement.ljust(length)})m"}},\n')
    write(HELPER.parent.parent.parent / "build/mistakes/ShaderMistakes.inc", "".join(rows).encode())


def build(target):
    return run(["ninja", "-C", str(BUILD), target])


def run_tests(library, pattern, number):
    """Returns the first test that failed under a mistake, what else went wrong, or None."""
    program = next(BUILD.glob(f"tests/**/{library}Tests"))
    environment = dict(os.environ, OV_MISTAKE=str(number), MESA_SHADER_CACHE_DIR=str(BUILD / "mesa_shader_cache"),
                       OV_TEST_OUTPUT_DIR=str(BUILD / "test_output"))
    try:
        result = run([str(program), f"--gtest_filter={pattern}", "--gtest_fail_fast"], env=environment,
                     cwd=program.parent, timeout=TIMEOUT_SECONDS)
    except subprocess.TimeoutExpired:
        return "never ended"
    if result.returncode == 0:
        return None
    failed = re.search(r"\[  FAILED  \] ([\w/.]+)", result.stdout)
    running = re.findall(r"\[ RUN      \] (\S+)", result.stdout)
    return failed.group(1) if failed else f"crash in {running[-1] if running else 'the start'}"


def test(mistake, number):
    for pattern in mistake.filters():
        noticed = run_tests(mistake.library, pattern, number)
        if noticed:
            return noticed
    return None


def test_alone(mistake):
    """Plants a mistake in the copy that is otherwise sound, builds, tests and takes it back."""
    path = COPY / mistake.path
    sound = path.read_bytes()
    write(path, sound.decode().replace(mistake.original, mistake.replacement).encode())
    built = build(f"{mistake.library}Tests")
    noticed = test(mistake, 0) if built.returncode == 0 else "the compiler"
    write(path, sound)
    return noticed


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("--only", default="", help="regular expression of paths, or numbers parted by commas")
    arguments.add_argument("--report", default=str(ROOT / "build/mistakes/report.txt"))
    options = arguments.parse_args()
    mistakes = read_list()
    wanted = [m for m in mistakes if str(m.number) in options.only.split(",") or re.search(options.only, m.path)]
    faults = check(mistakes)
    if faults:
        sys.exit("\n".join(faults))

    copy_sources()
    together = [m for m in mistakes if not m.is_alone]
    instrument(together)
    must(["cmake", "--preset", "dev", "-S", str(COPY)])
    libraries = sorted({m.library for m in wanted})
    must(["ninja", "-C", str(BUILD), *(f"{library}Tests" for library in libraries)])
    for library in libraries:
        failed = run_tests(library, "*", 0)
        if failed:
            sys.exit(f"{library}: {failed} fails without a mistake; mend it first")
    lines = []
    # Those that change the copy come last, and the highest library first: each makes those above it stale.
    for mistake in [m for m in wanted if not m.is_alone] + [m for m in reversed(wanted) if m.is_alone]:
        started = time.time()
        noticed = test_alone(mistake) if mistake.is_alone else test(mistake, mistake.number)
        lines.append(f"{mistake}\n    {noticed or 'NOT NOTICED'}")
        print(f"{lines[-1]}  ({time.time() - started:.0f} s)", flush=True)
    count = sum("NOT NOTICED" not in line for line in lines)
    lines.append(f"{count} of {len(wanted)} mistakes noticed")
    print(lines[-1])
    pathlib.Path(options.report).write_text("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
