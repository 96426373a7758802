"""What a changed source is compiled and linked with, by the commands of a build folder."""
import json
import os
import re
import shutil
import subprocess

PROGRAMS = ['libtqcommon.so', 'comfort/libtqcomfort.so', 'tools/tqfetch/tqfetch',
            'tools/tqitems/tqitems', 'tools/tftpserve/tftpserve', 'tests/tqcommon_tests']
# A warning is not a test that notices, and what is compiled here is neither debugged nor counted.
UNWANTED = re.compile(r' (-Werror|-g|--coverage|-fprofile-update=\w+)(?= )|^\S*ccache ')


# What takes the place of the library that writes counts: that takes longer than most tests.
UNCOUNTED = 'uncounted.o'
NO_COUNTS = 'void __gcov_init() {} void __gcov_exit() {} void __gcov_merge_add() {}'


class DoesNotBuild(Exception):
    pass


def run(command, folder):
    done = subprocess.run(command, shell=True, cwd=folder, capture_output=True, text=True,
                          stdin=subprocess.DEVNULL, check=False)
    if done.returncode != 0:
        raise DoesNotBuild(command + '\n' + done.stdout + done.stderr)
    return done.stdout


def output_of(command):
    return re.search(r' -o (\S+)', command).group(1)


class Build:
    def __init__(self, preset, root='.'):
        self.root = os.path.abspath(root)
        self.folder = os.path.join(self.root, 'build', preset)
        self.tests = os.path.join(self.folder, 'tests/tqcommon_tests')
        self.compiling = self._read_compiling()
        self.objects = self._read_objects()
        self.linking = [self._link_command(program) for program in PROGRAMS]
        self.kept = []  # the files that are changed now

    def _read_compiling(self):
        """Of an object, the command that makes it."""
        with open(os.path.join(self.folder, 'compile_commands.json'), encoding='utf-8') as file:
            commands = [entry['command'] for entry in json.load(file)]
        return {output_of(command): UNWANTED.sub('', command) for command in commands}

    def _read_objects(self):
        """Of a source or header, the objects that are made of it."""
        objects = {}
        target = None
        for line in run('ninja -t deps', self.folder).split('\n'):
            if not line.startswith(' '):
                target = line.split(':')[0]
            elif target in self.compiling:
                name = os.path.relpath(os.path.join(self.folder, line.strip()), self.root)
                # A header may be included by more than one path.
                objects.setdefault(name, {})[target] = True
        return {name: list(targets) for name, targets in objects.items()}

    def _link_command(self, program):
        path = os.path.realpath(os.path.join(self.folder, program))
        name = os.path.relpath(path, self.folder)
        command = run('ninja -t commands ' + name, self.folder).strip().split('\n')[-1]
        # Nobody debugs it, and to link the tests takes a quarter of the time so. The libraries need
        # what lld does not have.
        isQuick = program.startswith('tests/') and shutil.which('ld.lld')
        linker = '-fuse-ld=lld ' if isQuick else ''
        command = command.replace(' -o ', ' %s-Wl,--strip-debug -o ' % linker, 1)
        return command.replace(' --coverage', ' ' + UNCOUNTED)

    def link_all(self):
        """Links as it will be linked with each change."""
        run("echo '%s' | cc -fPIC -x c -c - -o %s" % (NO_COUNTS, UNCOUNTED), self.folder)
        for command in self.linking:
            run(command, self.folder)

    def _keep(self, path):
        os.rename(path, path + '.kept')
        self.kept.append(path)

    def _remake(self, command):
        self._keep(os.path.join(self.folder, output_of(command)))
        run(command, self.folder)

    def make(self, change):
        """Makes the change, and anew what depends on it."""
        with open(change.file, encoding='utf-8') as file:
            lines = file.read().split('\n')
        lines[change.number - 1] = change.new
        self._keep(change.file)
        with open(change.file, 'w', encoding='utf-8') as file:
            file.write('\n'.join(lines))
        objects = self.objects[change.file]
        for name in objects:
            self._remake(self.compiling[name])
        for command in self.linking:
            if any(' %s ' % name in command for name in objects):
                self._remake(command)

    def is_the_same(self, change):
        """Whether an optimising compiler makes the same of a source that is changed now."""
        command = self.compiling[self.objects[change.file][0]]
        command = re.sub(r' -O0( -U_FORTIFY_SOURCE)?(?= )', ' -O2', command)
        made = []
        for path in (change.file, change.file + '.kept'):
            # The name of the source is in the code.
            output = '/tmp/%d.o' % len(made)
            shutil.copy(path, '/tmp/source.cpp')
            source = '-I %s -x c++ /tmp/source.cpp' % os.path.dirname(os.path.abspath(path))
            run(re.sub(r' -c \S+$', ' -c ' + source, command).replace(
                ' -o ' + output_of(command), ' -o ' + output), self.folder)
            with open(output, 'rb') as file:
                made.append(file.read())
        return made[0] == made[1]

    def undo(self):
        for path in self.kept:
            os.replace(path + '.kept', path)
        self.kept = []
