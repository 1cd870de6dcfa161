"""A copy of the sources, its build, and what becomes of them with a change."""

import contextlib
import json
import os
import pathlib
import resource
import shlex
import shutil
import subprocess

from families import LIBRARY

COPIED = ["CMakeLists.txt", "cmake", "include", "component", "core", "dct", "fft", "filterbanks",
          "kernels", "limiter", "services", "tests", "LICENSE", "docs/Doxyfile.in"]


class Failure(Exception):
    """A message for the user."""


class Unbuildable(Exception):
    """A change makes no program."""


def run(command, folder, what):
    result = subprocess.run(command, cwd=folder, text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT)
    if result.returncode != 0:
        tail = "\n".join(result.stdout.splitlines()[-30:])
        raise Failure(f"{what} failed: {shlex.join(map(str, command))}\n{tail}")


def limit_processor(seconds):
    """An endless loop ends, and leaves nothing behind."""
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def succeeds(command, folder, seconds=600, environment=None):
    """Whether a program, of which only that is of interest, does within this processor time."""
    return subprocess.run(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                          preexec_fn=lambda: limit_processor(seconds)).returncode == 0


def with_output(words, output):
    i = words.index("-o") + 1
    return words[:i] + [str(output)] + words[i + 1:]


def copy_sources(root, copy):
    """With their times, so that only what has changed is compiled again."""
    shutil.rmtree(copy, ignore_errors=True)
    for name in COPIED:
        source, target = root / name, copy / name
        target.parent.mkdir(parents=True, exist_ok=True)
        if source.is_dir():
            shutil.copytree(source, target)
        else:
            shutil.copy2(source, target)


class Build:
    """Builds a target as CMake does, and once more with a change: only what the change reaches."""

    def __init__(self, copy, folder, target, vectors, optimised):
        self.copy, self.folder, self.target = copy, folder, target
        self.mutant_folder = folder / "mutant"
        run(["cmake", "-S", copy, "-B", folder, "-G", "Unix Makefiles",
             "-DCMAKE_BUILD_TYPE=Mutation", f"-DCMAKE_CXX_FLAGS_MUTATION={optimised} -w",
             f"-DMVK_SIMD={vectors}", "-DMVK_TOOLS=OFF", "-DMVK_EXAMPLES=OFF", "-DMVK_BENCH=OFF",
             "-DMVK_TESTS=ON"], copy, "Configuring")
        run(["cmake", "--build", folder, "--target", target], folder, "Building")
        self.read_commands()

    def read_commands(self):
        """How the target is linked of which objects, how these are compiled, and of which files."""
        in_tests = self.target != LIBRARY
        place = self.folder / "tests" if in_tests else self.folder
        link = place / f"CMakeFiles/{self.target}.dir/link.txt"
        self.link_folder, self.link = place, shlex.split(link.read_text())
        self.result = (place / self.link[self.link.index("-o") + 1]).resolve()
        self.objects, self.compile, self.reached = [], {}, {}
        commands = {}
        for entry in json.loads((self.folder / "compile_commands.json").read_text()):
            words = shlex.split(entry["command"])
            output = pathlib.Path(entry["directory"]) / words[words.index("-o") + 1]
            commands[output.resolve()] = words, entry["directory"]
        for word in self.link:
            path = (place / word).resolve()
            if not word.endswith(".o") or path not in commands:
                continue
            self.objects.append(path)
            words, directory = commands[path]
            # The flags of the sources would turn warnings on again, and into errors.
            self.compile[path] = [w for w in words if not w.startswith("-W") or "," in w], directory
            dependencies = path.with_name(path.name + ".d").read_text().replace("\\\n", " ")
            for dependency in dependencies.partition(":")[2].split():
                dependency = (self.folder / dependency).resolve()
                if dependency.is_relative_to(self.copy):
                    name = dependency.relative_to(self.copy).as_posix()
                    self.reached.setdefault(name, []).append(path)

    def with_change(self, change):
        """The target with a change, built again with each of the sources that it reaches, the
        quickest first: what fails with some of them needn't wait for the others. There is nothing
        if all are the same with the change; Unbuildable is raised if one can't be compiled."""
        shutil.rmtree(self.mutant_folder, ignore_errors=True)
        self.mutant_folder.mkdir()
        objects = dict(zip(self.objects, self.objects))
        for path in sorted(self.reached.get(change.path, []), key=lambda path: path.stat().st_size):
            mutant = self.mutant_folder / f"{len(list(self.mutant_folder.iterdir()))}.o"
            with self.changed(change):
                if not succeeds(with_output(self.compile[path][0], mutant), self.compile[path][1]):
                    raise Unbuildable
            if mutant.read_bytes() != path.read_bytes():
                objects[path] = mutant
                yield self.linked(objects)

    @contextlib.contextmanager
    def changed(self, change):
        """The copy's file is changed, and afterwards as it was."""
        source = self.copy / change.path
        text, times = source.read_text(), os.stat(source)
        source.write_text(change.applied(text))
        try:
            yield
        finally:
            source.write_text(text)
            os.utime(source, ns=(times.st_atime_ns, times.st_mtime_ns))

    def linked(self, objects):
        words = [str(objects.get((self.link_folder / word).resolve(), word)) for word in self.link]
        output = self.mutant_folder / self.result.name
        if not succeeds(with_output(words, output), self.link_folder):
            raise Unbuildable
        return output


# ---- Tests ----------------------------------------------------------------------

def processor_time():
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime


class Tests:
    """A family's program of tests, run with a library or rebuilt."""

    def __init__(self, folder, family):
        self.program = folder / "tests" / f"test_{family}"
        self.seconds = None    # of processor time, once they have passed

    def pass_with(self, built):
        """Whether the tests pass with a library, or as a program that has been built."""
        preloaded = built.suffix == ".so"
        environment = dict(os.environ, **({"LD_PRELOAD": str(built)} if preloaded else {}))
        limit = 600 if self.seconds is None else int(10 + 4 * self.seconds)
        began = processor_time()
        passed = succeeds([self.program if preloaded else built, "--gtest_fail_fast",
                           "--gtest_brief=1", "--gtest_break_on_failure"],
                          None, limit, environment)
        if self.seconds is None:
            self.seconds = processor_time() - began
        return passed
