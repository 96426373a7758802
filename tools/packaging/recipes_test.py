#!/usr/bin/env python3
"""The recipes for Buildroot and OpenEmbedded, tried without these systems.

  recipes_test.py COMPILER [EMULATOR...]

Reads each recipe as its system does, checks its variables, and runs the configure, build and
install lines that the system would, with this cross compiler. Buildroot's is built with the library
alone, OpenEmbedded's with everything.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
SOURCE = HERE.parent.parent
VERSION = re.search(r"^project\(tqcommon VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text(),
                    re.M)[1]
# What is tested is the recipe, not the code.
FLAGS = "-O0"


def run(words, **settings):
    done = subprocess.run([str(word) for word in words], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, check=False, **settings)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, words))}\n{done.stdout}")
    return done.stdout


def expect(holds, complaint):
    if not holds:
        sys.exit(complaint)


def expect_options_exist(words):
    """Each -DTQ_ option is one that the build files know: CMake takes any."""
    for name in re.findall(r"-D(TQ_\w+)=", words):
        expect(re.search(rf"(option|set)\({name}\b", (SOURCE / "CMakeLists.txt").read_text()),
               f"there is no option {name}")


class Buildroot:
    tree = HERE / "buildroot"
    stub = HERE / "buildroot_stub.mk"

    def __init__(self, compiler, output):
        self.output = output
        self.make = ["make", "--no-print-directory", "-f", self.stub, f"O={output}",
                     f"BR2_EXTERNAL_TQCOMMON_PATH={self.tree}", f"CXX={compiler}", f"FLAGS={FLAGS}"]

    def test(self):
        self.describes_itself()
        self.options_match()
        self.options_decide()
        run([*self.make, *self.defined({}), "install"])
        for folder in ("staging", "target"):
            library = self.output / folder / "usr/lib/libtqcommon.so.1"
            expect(library.exists(), f"{library} is not installed")
            expect(not (self.output / folder / "usr/bin").exists(), "tools that nobody chose")
        expect((self.output / "staging/usr/include/tqcommon/Tq.h").exists(), "no headers")
        print("Buildroot: OK")

    @staticmethod
    def defined(chosen):
        return [f"BR2_PACKAGE_TQCOMMON_{name}={'y' if chosen.get(name) else ''}"
                for name in ("COMFORT", "TOOLS")]

    def describes_itself(self):
        description = (self.tree / "external.desc").read_text()
        expect(re.fullmatch(r"name: TQCOMMON\ndesc: .+\n", description), "external.desc is malformed")
        for sourced in re.findall(r'source "\$BR2_EXTERNAL_TQCOMMON_PATH/(.+)"',
                                  (self.tree / "Config.in").read_text()):
            expect((self.tree / sourced).exists(), f"Config.in sources {sourced}")

    def options_match(self):
        """Every option of Config.in is one of the package's, and decides something in it."""
        folder = self.tree / "package/tqcommon"
        lines = (folder / "Config.in").read_text().splitlines()
        known = re.compile(r"(config|if) BR2_PACKAGE_TQCOMMON\w*|endif|comment \".+\"|"
                           r"\t(bool \".+\"|help|default y|(depends on|select) .+|\t.+|  .+)|")
        for line in lines:
            expect(known.fullmatch(line), f"Config.in: {line}")
        expect(lines.count("endif") == sum(line.startswith("if ") for line in lines),
               "Config.in: if without endif")
        defined = {line.split()[1] for line in lines if line.startswith("config ")}
        used = set(re.findall(r"BR2_PACKAGE_\w+", (folder / "tqcommon.mk").read_text()))
        expect(defined == used | {"BR2_PACKAGE_TQCOMMON"}, f"{defined} in Config.in, {used} used")

    def options_decide(self):
        for chosen in ({}, {"COMFORT": True}, {"COMFORT": True, "TOOLS": True}):
            words = run([*self.make, *self.defined(chosen), "--warn-undefined-variables", "options"])
            version, site, method, *options = words.split()
            expect(version == VERSION, f"version {version}, not {VERSION}")
            expect(pathlib.Path(site) == SOURCE and method == "local", f"sources in {site}")
            for name in ("COMFORT", "TOOLS"):
                option = f"-DTQ_BUILD_{name}={'ON' if chosen.get(name) else 'OFF'}"
                expect(option in options, f"no {option} in {options}")
            expect_options_exist(words)


class Recipe:
    """A recipe's variables, as bitbake has them."""

    LINE = re.compile(r"([A-Za-z][\w:${}-]*)(?:\[([\w-]+)\])? *"
                      r"(\?\?=|\?=|:=|=\+|\+=|=\.|\.=|=) *\"(.*)\"")

    def __init__(self, path, defaults):
        self.values = dict(defaults)
        self.weak = {}
        self.flags = {}
        self.inherited = []
        for line in path.read_text().replace("\\\n", "").splitlines():
            self.take(line)
        for name, value in self.weak.items():
            self.values.setdefault(name, value)

    def take(self, line):
        if not line or line.startswith("#"):
            return
        if line.startswith("inherit "):
            self.inherited += line.split()[1:]
            return
        assignment = self.LINE.fullmatch(line)
        expect(assignment, f"not understood: {line}")
        name, flag, operator, value = assignment.groups()
        if flag:
            self.flags[(name, flag)] = value
            return
        name = self.expand(name)
        if operator == "??=":
            self.weak[name] = value
        elif operator == "?=":
            self.values.setdefault(name, value)
        else:
            old = self.values.get(name, "")
            self.values[name] = {"=": value, ":=": value, "+=": f"{old} {value}",
                                 "=+": f"{value} {old}", ".=": old + value,
                                 "=.": value + old}[operator]

    def expand(self, text):
        def value_of(name):
            expect(name[1] in self.values, f"no variable {name[1]}")
            return self.expand(self.values[name[1]])
        return re.sub(r"\$\{([^}]+)\}", value_of, text)

    def __getitem__(self, name):
        return self.expand(self.values.get(name, ""))


class OpenEmbedded:
    layer = HERE / "openembedded"
    # What bitbake.conf says of these, as far as this recipe comes near it.
    conf = {
        "PN": "tqcommon", "BPN": "tqcommon", "PV": VERSION, "libdir": "/usr/lib",
        "bindir": "/usr/bin", "datadir": "/usr/share", "includedir": "/usr/include",
        "PACKAGES": "${PN}-src ${PN}-dbg ${PN}-staticdev ${PN}-dev ${PN}-doc ${PN}-locale ${PN}",
        "FILES:tqcommon": "${bindir}/* ${libdir}/lib*.so.* ${datadir}/${BPN}",
        "FILES:tqcommon-dev": "${includedir} ${libdir}/lib*.so ${libdir}/pkgconfig ${libdir}/cmake",
        "FILES:tqcommon-doc": "${datadir}/doc ${datadir}/man",
    }
    # Files, each the only one of its pattern, and the package they are for.
    expected = {
        "usr/lib/libtqcommon.so.1": "tqcommon", "usr/lib/libtqcomfort.so.1": "tqcommon-comfort",
        "usr/lib/libtqreports.so": "tqcommon-comfort", "usr/bin/tqfetch": "tqcommon-tools",
        "usr/bin/tqitems": "tqcommon-tools", "usr/include/tqcommon/Tq.h": "tqcommon-dev",
        "usr/lib/libtqcommon.so": "tqcommon-dev", "usr/share/man/man1/tqitems.1": "tqcommon-doc",
    }

    def __init__(self, compiler, emulator, output):
        self.emulator = emulator
        self.compiler = compiler
        self.output = output
        recipes = sorted(self.layer.glob("recipes-*/*/*.bb"))
        expect([path.name for path in recipes] == [f"tqcommon_{VERSION}.bb"],
               f"{recipes} is not for version {VERSION}")
        places = {"THISDIR": str(recipes[0].parent), "WORKDIR": str(output)}
        self.recipe = Recipe(recipes[0], {**self.conf, **places})

    def test(self):
        self.is_a_layer()
        recipe = self.recipe
        for name in ("SUMMARY", "DESCRIPTION", "SECTION", "LICENSE"):
            expect(recipe[name], f"no {name}")
        expect(recipe.inherited == ["cmake", "externalsrc"], f"inherits {recipe.inherited}")
        expect(pathlib.Path(recipe["EXTERNALSRC"]).resolve() == SOURCE, "the sources are elsewhere")
        self.build()
        self.split()
        self.runs()
        print("OpenEmbedded: OK")

    def is_a_layer(self):
        layer = Recipe(self.layer / "conf/layer.conf", {"LAYERDIR": str(self.layer)})
        name = layer["BBFILE_COLLECTIONS"].strip()
        for variable in ("BBFILE_PATTERN", "BBFILE_PRIORITY", "LAYERSERIES_COMPAT"):
            expect(layer[f"{variable}_{name}"], f"layer.conf: no {variable}_{name}")
        expect(re.match(layer[f"BBFILE_PATTERN_{name}"], f"{self.layer}/x"), "not of this layer")

    def options(self):
        """EXTRA_OECMAKE and, for each choice, the first word of its PACKAGECONFIG flag."""
        chosen = self.recipe["PACKAGECONFIG"].split()
        words = self.recipe["EXTRA_OECMAKE"].split()
        for (name, choice), value in self.recipe.flags.items():
            expect(name == "PACKAGECONFIG" and len(value.split(",")) == 2, f"{name}[{choice}]")
            expect_options_exist(value)
            words.append(value.split(",")[0 if choice in chosen else 1])
        expect_options_exist(" ".join(words))
        return words

    def build(self):
        folder = self.recipe["EXTERNALSRC_BUILD"]
        run(["cmake", "-G", "Ninja", "-S", self.recipe["EXTERNALSRC"], "-B", folder,
             "-DCMAKE_SYSTEM_NAME=Linux", f"-DCMAKE_CXX_COMPILER={self.compiler}",
             f"-DCMAKE_CXX_FLAGS={FLAGS}", "-DCMAKE_CXX_FLAGS_RELEASE=-DNDEBUG",
             "-DCMAKE_INSTALL_PREFIX:PATH=/usr",
             "-DCMAKE_INSTALL_BINDIR:PATH=bin", "-DCMAKE_INSTALL_LIBDIR:PATH=lib",
             "-DCMAKE_INSTALL_INCLUDEDIR:PATH=include", "-DCMAKE_INSTALL_DATAROOTDIR:PATH=share",
             "-DCMAKE_INSTALL_SO_NO_EXE=0", "-DCMAKE_NO_SYSTEM_FROM_IMPORTED=1",
             "-DCMAKE_EXPORT_NO_PACKAGE_REGISTRY=ON", *self.options(), "-Wno-dev"])
        image = dict(os.environ, DESTDIR=str(self.output / "image"))
        run(["cmake", "--build", folder, "--target", "install"], env=image)

    def split(self):
        """Every installed file is in one package, and in the right one."""
        image = self.output / "image"
        left = {path for path in image.rglob("*") if not path.is_dir()}
        found = {}
        for package in self.recipe["PACKAGES"].split():
            for pattern in self.recipe[f"FILES:{package}"].split():
                for top in image.glob(pattern.lstrip("/")):
                    below = {path for path in left if top == path or top in path.parents}
                    found.update({str(path.relative_to(image)): package for path in below})
                    left -= below
        expect(not left, f"in no package: {left}")
        for path, package in self.expected.items():
            expect(found.get(path) == package, f"{path} is in {found.get(path)}, not in {package}")

    def runs(self):
        usr = self.output / "image/usr"
        settings = dict(os.environ, QEMU_SET_ENV=f"LD_LIBRARY_PATH={usr}/lib")
        said = run([*self.emulator, usr / "bin/tqitems", "--version"], env=settings)
        expect(said == f"tqitems {VERSION}\n", f"tqitems says {said}")


def main():
    compiler, *emulator = sys.argv[1:]
    with tempfile.TemporaryDirectory() as room:
        Buildroot(compiler, pathlib.Path(room) / "buildroot").test()
        OpenEmbedded(compiler, emulator, pathlib.Path(room) / "openembedded").test()


if __name__ == "__main__":
    main()
