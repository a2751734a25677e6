"""Programs of both systems talk to each other: every client to every server, the same calls, in the same bytes.

Usage: frames_test.py NATIVE_PROGRAMS WINDOWS_PROGRAMS UNDER_WINE
The first two are folders with qvcall and qvstandin, the third is the command that runs a program for Windows.
"""

import pathlib
import socket
import subprocess
import sys
import tempfile
import threading

FILE_NAME = "三号桥 plan.dwg"
FILE_BYTES = bytes(range(256)) * 5000

# None of them tells when something was made.
CALLS = [
    ["query", "select id, name, budget from projects order by id", "--db", "DESIGNDB", "--format", "csv"],
    ["exec", "update projects set name = '三号桥 (Pier 3)' where id = 1", "--db", "DESIGNDB"],
    ["query", "select name from projects where id = 1", "--db", "DESIGNDB", "--format", "json"],
    ["query", "select id, number, title from documents order by id", "--db", "DESIGNDB", "--format", "csv"],
    ["groups"],
    ["idput", "7", FILE_NAME],
    ["idget", "7", FILE_NAME, "fetched"],
    ["mkdir", "图纸"],
    ["log", "换了三号桥的图"],
]


class Recorder:
    """Relays connections to a server and keeps what went each way."""

    def __init__(self, server_port):
        self.server_port = server_port
        self.connections = []
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            try:
                client = self.listener.accept()[0]
            except OSError:
                return  # closed
            server = socket.create_connection(("127.0.0.1", self.server_port))
            sent, received = bytearray(), bytearray()
            self.connections.append((sent, received))
            threading.Thread(target=relay, args=(client, server, sent), daemon=True).start()
            threading.Thread(target=relay, args=(server, client, received), daemon=True).start()


def relay(source, target, kept):
    try:
        while data := source.recv(65536):
            kept += data
            target.sendall(data)
        target.shutdown(socket.SHUT_WR)
    except OSError:
        pass  # the other side hung up


def start_server(command, folder):
    server = subprocess.Popen(command + ["--data", "data", "--port", "0"], cwd=folder, stdout=subprocess.PIPE)
    line = server.stdout.readline().decode()
    if "listening on" not in line:
        server.kill()
        sys.exit(f"the server did not start: {line!r}")
    return server, int(line.rsplit(":", 1)[1])


def run(client, server_command):
    """The output of every call, and the bytes of every connection."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / FILE_NAME).write_bytes(FILE_BYTES)
        (folder / "fetched").mkdir()
        server, port = start_server(server_command, folder)
        try:
            recorder = Recorder(port)
            outputs = [call(client, recorder.port, words, folder) for words in CALLS]
            recorder.listener.close()
        finally:
            server.kill()
            server.wait()
        fetched = folder / "fetched" / FILE_NAME
        if fetched.read_bytes() != FILE_BYTES:
            sys.exit("the file came back changed")
        return outputs, [(bytes(sent), bytes(received)) for sent, received in recorder.connections]


def call(client, port, words, folder):
    command = client + ["--server", "127.0.0.1", "--port", str(port)] + words
    done = subprocess.run(command, cwd=folder, capture_output=True, timeout=120)
    if done.returncode != 0:
        sys.exit(f"{words[0]} failed: {done.stderr.decode(errors='replace')}")
    return done.stdout.replace(b"\r\n", b"\n")


def first_difference(one, other):
    for number, (connection, same) in enumerate(zip(one, other)):
        for way, left, right in zip(("sent", "received"), connection, same):
            if left != right:
                at = next((i for i, (a, b) in enumerate(zip(left, right)) if a != b), min(len(left), len(right)))
                return f"connection {number}, {way}, byte {at}: {left[at:at + 60]!r} and {right[at:at + 60]!r}"
    return f"{len(one)} and {len(other)} connections"


def main():
    native, windows, under_wine = sys.argv[1:]
    programs = {
        "native": lambda name: [f"{native}/{name}"],
        "windows": lambda name: [under_wine, f"{windows}/{name}.exe"],
    }
    expected_outputs, expected_frames = run(programs["native"]("qvcall"), programs["native"]("qvstandin"))
    for client, server in [("windows", "native"), ("native", "windows"), ("windows", "windows")]:
        outputs, frames = run(programs[client]("qvcall"), programs[server]("qvstandin"))
        for words, output, expected in zip(CALLS, outputs, expected_outputs):
            if output != expected:
                sys.exit(f"{words[0]} with a {client} client and a {server} server: {output!r}, not {expected!r}")
        if frames != expected_frames:
            sys.exit(f"a {client} client and a {server} server: {first_difference(expected_frames, frames)}")
        print(f"{client} client, {server} server: {len(CALLS)} calls, the same output and the same bytes")


main()
