"""A copy of the source tree below build/mutate with a build folder of its own, and the tests that it builds."""

import filecmp
import hashlib
import json
import os
import resource
import shlex
import shutil
import signal
import subprocess
import time
from dataclasses import dataclass, field
from pathlib import Path

LONG_TEST = 1.5  # seconds; a longer one is run in several shards at once, since most of its time is waiting


class Failed(Exception):
    """The scratch tree can't be built or its tests fail before any fault was put in."""


@dataclass
class Test:
    name: str
    command: list
    environment: dict
    target: str
    folder: str  # of its sources
    seconds: float = 0.0
    shards: int = 1
    sees: set = field(default_factory=set)  # target identifiers that it is built from


class Scratch:
    def __init__(self, root, build, number, jobs):
        self.root, self.windows = root, build == 'windows'
        self.folder = root / 'build' / 'mutate' / f'{build}-{number}'
        self.source, self.build = self.folder / 'source', self.folder / 'build'
        self.jobs = jobs
        self.running = set()
        self.environment = dict(os.environ, CCACHE_DEPEND='1', CCACHE_NOHASHDIR='1', CCACHE_BASEDIR=str(self.source),
                                HOME=str(self.folder / 'home'), TMPDIR=str(self.folder / 'temporary'))
        if 'CCACHE_DIR' not in os.environ and 'HOME' in os.environ:
            cache = subprocess.run(['ccache', '-k', 'cache_dir'], capture_output=True, text=True, check=False)
            self.environment['CCACHE_DIR'] = cache.stdout.strip()

    def copy_sources(self):
        """Makes the copy equal to the working tree; a file that is equal keeps its time and isn't built again."""
        listed = subprocess.run(['git', 'ls-files', '-co', '--exclude-standard', '-z'], cwd=self.root, check=True,
                                capture_output=True).stdout.decode().split('\0')
        wanted = {name for name in listed if name and (self.root / name).is_file()}
        for name in wanted:
            old, new = self.root / name, self.source / name
            if not new.exists() or not filecmp.cmp(old, new, shallow=False):
                new.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(old, new)
        for path in [path for path in self.source.rglob('*') if path.is_file()]:
            if str(path.relative_to(self.source)) not in wanted:
                path.unlink()

    def configure(self):
        for folder in (self.folder / 'home', self.folder / 'temporary', self.build):
            folder.mkdir(parents=True, exist_ok=True)
        query = self.build / '.cmake' / 'api' / 'v1' / 'query' / 'codemodel-v2'
        query.parent.mkdir(parents=True, exist_ok=True)
        query.touch()
        options = ['-DCMAKE_BUILD_TYPE=Debug', '-DCMAKE_CXX_FLAGS_DEBUG=-O0', '-DCMAKE_C_FLAGS_DEBUG=-O0',
                   '-DCMAKE_EXPORT_COMPILE_COMMANDS=ON', '--log-level=WARNING']
        if self.windows:
            options += [f'-DCMAKE_TOOLCHAIN_FILE={self.source}/cmake/windows.toolchain.cmake']
        else:
            options += [f'-DCMAKE_{kind}_LINKER_FLAGS=-fuse-ld=gold' for kind in ('EXE', 'MODULE', 'SHARED')]
        self.call(['cmake', '-S', self.source, '-B', self.build, '-G', 'Ninja', *options], 'configured')
        reply = self.build / '.cmake' / 'api' / 'v1' / 'reply'
        model = json.loads(sorted(reply.glob('codemodel-v2-*.json'))[-1].read_text())
        self.targets = {}
        for target in model['configurations'][0]['targets']:
            self.targets[target['id']] = json.loads((reply / target['jsonFile']).read_text())

    def call(self, command, what):
        result = subprocess.run([str(part) for part in command], env=self.environment, text=True, check=False,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if result.returncode:
            raise Failed(f'the copy in {self.source} can\'t be {what}:\n' + result.stdout[-3000:])

    def ninja(self, targets, cached):
        """Builds; False if that fails. What is built only once has no use in the compiler's cache."""
        environment = self.environment if cached else dict(self.environment, CCACHE_DISABLE='1')
        return subprocess.run(['ninja', '-C', self.build, f'-j{self.jobs}', *targets], env=environment, check=False,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0

    def closure(self, target):
        found, waiting = set(), [target]
        while waiting:
            at = waiting.pop()
            if at not in found:
                found.add(at)
                waiting += [d['id'] for d in self.targets[at].get('dependencies', ())]
        return found

    def built_from(self, module):
        """The targets that have a source in the module's folder; for the resources, a compiled copy of them."""
        found = set()
        for identifier, target in self.targets.items():
            for source in target.get('sources', ()):
                name = source['path']
                if name.startswith(module + '/') or \
                        module == 'resources' and name.endswith(('.Publisher.S', '.Publisher.o')):
                    found.add(identifier)
        return found

    def build_tests(self, wanted, scripts):
        """Builds the test programs that are built from one of the targets wanted. ctest knows only tests that are
        there."""
        test_main = next(i for i, target in self.targets.items() if target['name'] == 'test_main')
        names = ['generated_sources', *(target['name'] for identifier, target in self.targets.items()
                                        if target['type'] == 'EXECUTABLE' and
                                        test_main in (closure := self.closure(identifier)) and closure & wanted)]
        self.call(['ninja', '-C', self.build, f'-j{self.jobs}', *(['all'] if scripts else names)], 'built')
        self.good_tests = [test for test in self.tests(scripts) if test.sees & wanted]

    def tests(self, scripts):
        """All tests of ctest that are programs of this build; with scripts also the end-to-end tests."""
        listed = json.loads(subprocess.run(['ctest', '--show-only=json-v1'], cwd=self.build, env=self.environment,
                                           check=True, capture_output=True, text=True).stdout)
        programs = {}
        for identifier, target in self.targets.items():
            for artifact in target.get('artifacts', ()):
                if target['type'] == 'EXECUTABLE':
                    programs[str(self.build / artifact['path'])] = identifier
        everything = set(programs.values()) | {i for i, t in self.targets.items() if t['type'] == 'MODULE_LIBRARY'}
        found = []
        for test in listed['tests']:
            properties = {p['name']: p['value'] for p in test['properties']}
            environment = dict(entry.split('=', 1) for entry in properties.get('ENVIRONMENT', ()))
            programs_here = [programs[part] for part in test.get('command', ()) if part in programs]
            # What needs a server is started by a script, but is a program like the others: one of the test's name.
            program = next((p for p in programs_here if self.targets[p]['name'] == test['name']),
                           programs_here[0] if programs_here and 'bash' not in Path(test['command'][0]).name else None)
            is_script = not program
            if not test.get('command') or is_script and not (scripts and test['name'].endswith('_scenario')):
                continue
            if is_script:
                found.append(Test(test['name'], test['command'], environment, 'all', 'tests/scenarios', 0, 1,
                                  set().union(*(self.closure(i) for i in everything))))
            else:
                target = self.targets[program]
                found.append(Test(test['name'], test['command'], environment, target['name'],
                                  target['paths']['source'], 0, 1, self.closure(program)))
        return found

    def passes(self, test, limit):
        """Whether the test passes within the limit, in seconds."""
        is_script = test.target == 'all'
        running = []
        for shard in range(test.shards):
            environment = dict(self.environment, **test.environment)
            command = list(test.command)
            if not is_script:
                command += ['--gtest_fail_fast', '--gtest_brief=1']
            if test.shards > 1:
                environment.update(GTEST_TOTAL_SHARDS=str(test.shards), GTEST_SHARD_INDEX=str(shard))
                if 'HALVORA_REGISTRY_FILE' in environment:
                    environment['HALVORA_REGISTRY_FILE'] += f'.{shard}'
            running.append(subprocess.Popen(command, cwd=self.build, env=environment, stdin=subprocess.DEVNULL,
                                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                            start_new_session=True, preexec_fn=None if self.windows else limit_memory))
        self.running.update(running)
        end = time.monotonic() + limit
        passed = True
        try:
            waiting = list(running)
            while waiting and passed:
                for process in list(waiting):
                    if process.poll() is not None:
                        waiting.remove(process)
                        passed = passed and process.returncode == 0
                if waiting and time.monotonic() > end:
                    passed = False
                time.sleep(0.01)
        finally:
            for process in running:
                stop(process)
                self.running.discard(process)
        return passed

    def measure(self, measured, warn):
        """Runs each test once as the sources are. measured: test name to seconds and shards, or null if it fails."""
        for test in self.good_tests:
            if test.name in measured:
                continue
            started = time.monotonic()
            passes = self.passes(test, 600)
            test.seconds = time.monotonic() - started
            if passes and test.seconds > LONG_TEST and test.target != 'all' and not self.windows:
                alone = test.seconds
                test.shards = min(8, 1 + int(test.seconds / LONG_TEST))
                started = time.monotonic()
                if self.passes(test, 600):
                    test.seconds = time.monotonic() - started
                else:
                    test.seconds, test.shards = alone, 1
            measured[test.name] = (test.seconds, test.shards) if passes else None
            if not passes:
                warn(f'{test.name} fails before any fault was put in; it is left out')

    def digest(self, test):
        """Of the program of a test and of the modules that it may load."""
        digest = hashlib.sha1()
        for identifier in sorted(test.sees):
            target = self.targets[identifier]
            if target['type'] in ('EXECUTABLE', 'MODULE_LIBRARY', 'SHARED_LIBRARY'):
                for artifact in target.get('artifacts', ()):
                    path = self.build / artifact['path']
                    digest.update(path.read_bytes() if path.exists() else b'')
        return digest.hexdigest()

    def note_programs(self):
        self.programs = {test.name: self.digest(test) for test in self.good_tests}

    def is_unchanged(self, test):
        """Whether the fault that was built last left nothing in what the test runs."""
        return test.target != 'all' and self.digest(test) == self.programs[test.name]

    def take_measures(self, measured):
        self.good_tests = [test for test in self.good_tests if measured.get(test.name)]
        for test in self.good_tests:
            test.seconds, test.shards = measured[test.name]

    def arguments(self, translated):
        """What libclang must know to read a file of this build as its compiler does."""
        if not hasattr(self, 'commands'):
            self.commands = {entry['file']: shlex.split(entry['command'])
                             for entry in json.loads((self.build / 'compile_commands.json').read_text())}
            self.includes = []
        command = self.commands.get(translated)
        if command is None:
            return None
        while not command[0].endswith(('c++', 'g++', 'c++-posix', 'g++-posix')):
            command = command[1:]
        if self.windows and not self.includes:
            listing = subprocess.run([command[0], '-E', '-v', '-x', 'c++', '/dev/null'], capture_output=True, text=True,
                                     check=True).stderr
            listing = listing[listing.index('<...> search starts here') + 25:listing.index('End of search list')]
            self.includes = ['--target=x86_64-w64-mingw32', '-nostdinc++']
            for line in listing.splitlines():
                self.includes += ['-isystem', line.strip()]
        arguments = []
        skip = 0
        for at, part in enumerate(command[1:], 1):
            if skip:
                skip -= 1
            elif part in ('-o', '-c'):
                skip = 1
            elif part == '-include' and command[at + 1].endswith('cmake_pch.hxx'):
                skip = 1
                arguments += ['-include', str(self.source / 'cmake' / 'PrecompiledForModules.h')]
            elif part != '-Winvalid-pch':
                arguments.append(part)
        return arguments + self.includes

    def stop(self):
        for process in list(self.running):
            stop(process)


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (6 << 30, 6 << 30))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def stop(process):
    """Ends a test and what it has started."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()
