#!/usr/bin/env python3
"""Runs the example programs and the commands of the README against a stand-in server.

Usage: run_examples.py PROGRAMS README
PROGRAMS is the folder with qvstandin, qvcall and examples/. Prints what went wrong; exits 1 if anything did.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

# Arguments of each example, and what it prints. {port} and {folder} are those of the server.
EXAMPLES = [
    ("query 127.0.0.1 {port}", r"(D\d{5}-\w\w: .* \"A&B\", (\?|\d+) bytes\n){50}"),
    ("batch 127.0.0.1 {port}", r"all 2 statements were run\nstatement 2 was refused, so none was run: .*no_such_table.*\n"
                               r"the priority of the first project is 1\n"),
    ("files 127.0.0.1 {port} pier.dwg", r"plans\\pier.dwg: 12 bytes\nfetched as pier.dwg.copy\n"),
    ("offline 127.0.0.1 {port} answers", r"24 projects, says the server\n"
                                         r"24 projects, says an answer that is 0 minutes old\n"),
    ("direct Driver=SQLite3;Database=plans.db", r"1: Pier 3, scale 0.02\n2: 总平面图, scale 0.001\n"),
    ("direct Driver=none", r"failed: .*none.*\n"),
    ("query 127.0.0.1 1", r"the query failed: .*127.0.0.1:1.*\n"),
]
FAILING = {"direct Driver=none", "query 127.0.0.1 1"}


def start(programs, folder):
    """The server of the README's first command, and its two ports."""
    server = subprocess.Popen([programs / "qvstandin", "--data", "plans", "--port", "0", "--http-port", "0"],
                              cwd=folder, stdout=subprocess.PIPE, text=True)
    return server, *(server.stdout.readline().strip().rpartition(":")[2] for _ in range(2))


def run(words, folder, **more):
    ended = subprocess.run(words, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                           timeout=60, **more)
    return ended.returncode, ended.stdout


def failed_examples(programs, folder, port):
    (folder / "pier.dwg").write_text("twelve bytes")
    for line, wanted in EXAMPLES:
        name, *arguments = line.format(port=port).split(" ")
        status, output = run([programs / "examples" / name, *arguments], folder)
        if status != (line in FAILING) or not re.fullmatch(wanted, output):
            yield f"{line}: exit status {status}\n{output}"


def failed_commands(programs, folder, readme, ports):
    """Runs the blocks of the README that call qvcall, but for those with servers of the reader's own."""
    commands = "".join(block for block in re.findall(r"(?:^    .*\n)+", readme, re.MULTILINE)
                       if "    qvcall " in block and ".example" not in block)
    for port, own in zip(("4000", "4080"), ports):
        commands = commands.replace(port, own)
    path = f"{programs}:{os.environ['PATH']}"
    status, output = run(["bash", "-e", "-u", "-x", "-c", commands], folder,
                         env={**os.environ, "PATH": path, "XDG_CACHE_HOME": str(folder), "TMPDIR": str(folder)})
    if status != 0 or not commands:
        yield f"README.md: exit status {status}\n" + "\n".join(output.splitlines()[-9:])


def main():
    programs, readme = (pathlib.Path(argument).absolute() for argument in sys.argv[1:])
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        server, *ports = start(programs, folder)
        try:
            failures = [*failed_examples(programs, folder, ports[0]),
                        *failed_commands(programs, folder, readme.read_text(), ports)]
        finally:
            server.terminate()
            server.wait()
    print("\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
