#!/usr/bin/env python3
"""Compiles or runs every code block of a page, so that no page shows what does not work.

  code_blocks.py PAGE --work DIR --cc CC --cxx CXX --flags FLAGS --path DIRS

How a block is taken is read off its fence:
  ```c, ```cpp        compiled, in C99 and C++17; with a main() also run. A piece without one is put
                      into a function, behind its own #include lines; `decl` behind the language
                      leaves it at file scope. `fails`: the compiler has to refuse it.
  ```sh, ```console   run by bash in an empty folder, with the tools of the build on the path
                      (console: the lines behind "$ ", and what they print has to be what follows).
                      A line that runs one of the project's scripts is checked for the script alone.
                      `here` behind the language: in the page's one folder, after the blocks before it
  ```cmake            configured as a project
  ```json             held to be JSON; `dialect` behind the language leaves it to plxutil
  ```text and blocks without a language are pictures or output; `file=NAME` puts one into the page's
                      folder
`skip=REASON` behind a language leaves a block out; the reason is printed. An indented block is taken
for a picture when arrows or lines are drawn in it, and refused otherwise: it would escape.
"""
import argparse
import json
import os
import re
import shutil
import subprocess
import sys


class Failure(Exception):
    pass


def run(command, **keys):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          timeout=600, **keys)
    if done.returncode != 0:
        raise Failure("%s\n%s" % (command if isinstance(command, str) else " ".join(command),
                                  done.stdout))
    return done.stdout


def blocks(page):
    """Yields (line number, language, words behind it, text)."""
    with open(page, encoding="utf-8") as file:
        text = file.read()
    for found in re.finditer(r"^( *)```(\w*)([^\n]*)\n(.*?)^\1```\s*$", text, re.M | re.S):
        indent = len(found[1])
        body = "\n".join(line[indent:] for line in found[4].split("\n"))
        yield text[:found.start()].count("\n") + 1, found[2], found[3].split(), body


def unfenced(page):
    """Yields the line numbers of indented blocks that are no pictures."""
    with open(page, encoding="utf-8") as file:
        text = re.sub(r"^( *)```.*?^\1```", lambda found: "\n" * found[0].count("\n"), file.read(),
                      flags=re.M | re.S)
    for found in re.finditer(r"(?:^|\n)\n((?: {4}[^\n]*\n)+)", text):
        if not re.search("[\u2500-\u25ff]", found[1]):
            yield text[:found.start(1)].count("\n") + 1


def whole_unit(code, words):
    if re.search(r"\bmain\s*\(", code) or "decl" in words:
        return code
    lines = code.split("\n")
    includes = [l for l in lines if l.startswith("#") or l.startswith("using ")]
    rest = [l for l in lines if l not in includes]
    return "\n".join(includes) + "\nvoid piece(void);\nvoid piece(void) {\n" + "\n".join(rest) + "\n}\n"


class Checker:
    def __init__(self, options):
        self.options = options
        self.flags = options.flags.split()

    def compiled(self, language, words, code, name):
        extension, compiler, standard = {
            "c": ("c", self.options.cc, "-std=c99"),
            "cpp": ("cc", self.options.cxx, "-std=c++17")}[language]
        source = os.path.join(self.options.work, name + "." + extension)
        with open(source, "w", encoding="utf-8") as file:
            file.write(whole_unit(code, words))
        program = os.path.join(self.options.work, name)
        strict = ["-Wall", "-Wextra", "-Werror", "-Wno-unused-variable",
                  "-Wno-unused-but-set-variable", "-Wno-unused-parameter"]
        whole = re.search(r"\bmain\s*\(", code)
        command = [compiler, standard, *strict, source, "-o", program,
                   *([] if whole else ["-c"]), *self.flags]
        if "fails" in words:
            try:
                run(command)
            except Failure:
                return "refused by the compiler, as it should be"
            raise Failure("compiles, though it should not")
        run(command)
        if whole:
            run([program], cwd=self.options.work, stdin=subprocess.DEVNULL)
            return "compiled and run"
        return "compiled"

    def folder(self, words, name):
        """An empty folder of the block's own, or the page's."""
        folder = os.path.join(self.options.work, "here" if "here" in words else name)
        if "here" not in words:
            shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder, exist_ok=True)
        return folder

    def bash(self, options, script, folder):
        environment = dict(os.environ, PATH=self.options.path + ":" + os.environ["PATH"],
                           NO_COLOR="1", ROOT=self.options.root)
        return run(["bash", *options, "-c", script], cwd=folder, env=environment,
                   stdin=subprocess.DEVNULL)

    def shell(self, words, code, name):
        lines = []
        for line in code.split("\n"):
            script = re.match(r"^\s*(?:\./)?(scripts/[\w.\-]+)", line)
            if script:
                if not os.access(os.path.join(self.options.root, script[1]), os.X_OK):
                    raise Failure("there is no " + script[1])
                continue
            lines.append(line)
        if not any(l.strip() and not l.startswith("#") for l in lines):
            return "scripts are there"
        self.bash(["-euo", "pipefail"], "\n".join(lines), self.folder(words, name))
        return "run"

    def console(self, words, code, name):
        script = []
        commands = re.split(r"^\$ ", code, flags=re.M)[1:]
        for command in commands:
            script.append(re.match(r"(?:.*\\\n)*.*", command)[0])
        said = self.bash([], "\n".join(script), self.folder(words, name))
        shown = "\n".join(line for command in commands
                          for line in command[len(re.match(r"(?:.*\\\n)*.*", command)[0]):]
                          .strip("\n").split("\n") if line)
        if shown.strip() != said.strip():
            raise Failure("prints otherwise:\n%s" % said)
        return "run, output compared"

    def cmake(self, words, code, name):
        folder = self.folder([], name)
        if "project(" not in code:
            code = "cmake_minimum_required(VERSION 3.25)\nproject(piece LANGUAGES C CXX)\n" + code
        for source in re.findall(r"\b[\w]+\.(?:cc|c|cpp)\b", code):
            open(os.path.join(folder, source), "w").write("int main(void) { return 0; }\n")
        with open(os.path.join(folder, "CMakeLists.txt"), "w", encoding="utf-8") as file:
            file.write(code)
        run(["cmake", "-S", folder, "-B", folder + "/build", "-DCMAKE_PREFIX_PATH=" +
             self.options.tree])
        return "configured"

    def check(self, language, words, code, name):
        skip = [w for w in words if w.startswith("skip")]
        if skip:
            return "left out: " + " ".join(words)[4:].lstrip("=")
        if language in ("c", "cpp"):
            return self.compiled(language, words, code, name)
        if language in ("sh", "bash"):
            return self.shell(words, code, name)
        if language == "console":
            return self.console(words, code, name)
        if language == "cmake":
            return self.cmake(words, code, name)
        if language == "json":
            if "dialect" not in words:
                json.loads(code)
            return "read"
        if language in ("text", ""):
            file = [w[len("file="):] for w in words if w.startswith("file=")]
            if not file:
                return "a picture"
            with open(os.path.join(self.folder(["here"], name), file[0]), "w",
                      encoding="utf-8") as out:
                out.write(code)
            return "written to " + file[0]
        raise Failure("no way to check a block in '%s'" % language)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("page")
    for name in ("work", "cc", "cxx", "flags", "path", "tree", "root"):
        parser.add_argument("--" + name, required=True)
    options = parser.parse_args()
    shutil.rmtree(os.path.join(options.work, "here"), ignore_errors=True)
    os.makedirs(options.work, exist_ok=True)
    checker = Checker(options)
    bad = count = 0
    for line in unfenced(options.page):
        print("%s:%d: an indented block; fence it, so that it is checked" % (options.page, line))
        bad += 1
    for line, language, words, code in blocks(options.page):
        count += 1
        try:
            said = checker.check(language, words, code, "line%d" % line)
            print("%s:%d: %s: %s" % (options.page, line, language or "plain", said))
        except (Failure, ValueError, subprocess.TimeoutExpired) as failure:
            print("%s:%d: %s: FAILED\n%s" % (options.page, line, language, failure))
            bad += 1
    print("%d blocks, %d failed" % (count, bad))
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
