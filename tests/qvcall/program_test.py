#!/usr/bin/env python3
"""Runs qvcall against stand-in servers, databases, file servers and cloud stores.

Usage: program_test.py PROGRAMS SOURCES [TEST...]
PROGRAMS is the folder with qvcall, qvstandin and the transfer components, SOURCES the project's folder.
"""
import json
import os
import pathlib
import pty
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import unittest

PROGRAMS, SOURCES = (pathlib.Path(argument).absolute() for argument in sys.argv[1:3])
SAMPLES = SOURCES / "tools/qvstandin/samples"
SQLITE = "Driver=SQLite3;Database="
ENGINES = pathlib.Path("/usr/lib/postgresql")

ROWS = [  # of exact_values, as JSON shows them; numbers are texts here, so that every digit counts
    {"i": "9223372036854775807", "d": "1e-09", "n": "12345678901234.5678", "t": "", "w": "2026-02-28 23:59:59",
     "b": "FILE"},
    {"i": None, "d": None, "n": None, "t": None, "w": None, "b": None},
    {"i": "0", "d": "1e+300", "n": "0", "t": "x", "w": "1999-12-31 00:00:00", "b": ""},
    {"i": "-1", "d": "0.1", "n": "-0.1", "t": "阀", "w": "2026-02-28 23:59:59", "b": "FILE"},
]
TABLE = [["i", "d", "n", "t", "w", "b"], *([["NULL" if v is None else v for v in row.values()] for row in ROWS])]
CSV = """i,d,n,t,w,b
9223372036854775807,1e-09,12345678901234.5678,"",2026-02-28 23:59:59,FILE
,,,,,
0,1e+300,0,x,1999-12-31 00:00:00,""
-1,0.1,-0.1,阀,2026-02-28 23:59:59,FILE
"""
# Takes minutes if nobody cancels it.
SLOW = ("with recursive n (i) as (select 1 union all select i + 1 from n where i < 2000000000) "
        "select count(*) from n")


class Server:
    """A stand-in server on free ports."""

    def __init__(self, data):
        self.process = subprocess.Popen(
            [PROGRAMS / "qvstandin", "--data", data, "--port", "0", "--http-port", "0"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.port, self.http_port = (self.process.stdout.readline().strip().rpartition(":")[2] for _ in range(2))

    def stop(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()


class Postgres:
    """A PostgreSQL server with the samples, which does not run as root."""

    def __init__(self, folder):
        self.programs = max(ENGINES.glob("*/bin"))
        self.user = {"user": "postgres", "group": "postgres", "extra_groups": []} if os.geteuid() == 0 else {}
        if self.user:
            folder.chmod(0o755)
            shutil.chown(self.make(folder / "engine"), "postgres")
        self.data = folder / "engine" / "data"
        self.run("initdb", "--username=tester", "--auth=trust", "--encoding=UTF8", "--locale=C.UTF-8", "--no-sync",
                 "-D", self.data)
        with socket.create_server(("127.0.0.1", 0)) as free:
            self.port = free.getsockname()[1]
        self.process = subprocess.Popen(
            [self.programs / "postgres", "-D", self.data, "-p", str(self.port), "-c", "listen_addresses=127.0.0.1",
             "-c", "unix_socket_directories=", "-c", "fsync=off"],
            stderr=subprocess.PIPE, text=True, **self.user)
        while "ready to accept connections" not in self.process.stderr.readline():
            assert self.process.poll() is None, "PostgreSQL does not start"
        self.run("psql", "--host=127.0.0.1", f"--port={self.port}", "--username=tester", "--dbname=postgres", "--quiet",
                 "--set=ON_ERROR_STOP=1", "-f", SAMPLES / "postgresql.sql", "-f", SAMPLES / "DESIGNDB.sql")
        self.text = (f"Driver={{PostgreSQL Unicode}};Server=127.0.0.1;Port={self.port};Database=postgres;Uid=tester;"
                     "Pwd=none")

    @staticmethod
    def make(folder):
        folder.mkdir()
        return folder

    def run(self, program, *arguments):
        user = self.user if program == "initdb" else {}
        subprocess.run([self.programs / program, *arguments], check=True, cwd="/", stdout=subprocess.DEVNULL, **user)

    def stop(self):
        self.process.send_signal(signal.SIGINT)  # its fast shutdown
        self.process.wait()
        self.process.stderr.close()


class ProgramCase(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.environment = {**os.environ, "TMPDIR": str(self.folder), "TERM": "xterm"}

    def serve(self, data):
        server = Server(self.folder / data)
        self.addCleanup(server.stop)
        return server

    def call(self, *words, program=PROGRAMS / "qvcall"):
        ended = subprocess.run([program, *words], cwd=self.folder, env=self.environment, text=True,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
        return ended.returncode, ended.stdout

    def on_terminal(self, words, awaited, typed):
        """Runs qvcall on a terminal, types when it shows what is awaited, and returns the status and what it showed."""
        pid, terminal = pty.fork()
        if pid == 0:
            os.chdir(self.folder)
            os.execve(PROGRAMS / "qvcall", ["qvcall", *words], self.environment)
        shown, is_typed = b"", False
        try:
            while piece := os.read(terminal, 4096):
                shown += piece
                if awaited in shown and not is_typed:
                    os.write(terminal, typed)
                    is_typed = True
        except OSError:
            pass  # the terminal's other end is closed
        os.close(terminal)
        return os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]), shown.decode()


class Program(ProgramCase):
    def test_keeps_the_answers_of_each_server_apart(self):
        servers = [self.serve("one"), self.serve("two")]
        self.call("--port", servers[1].port, "exec", "update projects set name = 'two'", "--db", "DESIGNDB")

        def query(server, text, *option):
            return self.call("--port", server.port, "query", text, "--db", "DESIGNDB", "--format", "csv", "--cache",
                             "cache", *option)
        text = "select name from projects where id = 1"
        self.assertIn("cache holds no answers of 127.0.0.1:", query(servers[0], text, "--offline")[1])
        for server in servers:
            self.assertEqual(query(server, text)[0], 0)
        for server, name in zip(servers, ("城南地铁站2期", "two")):
            server.stop()
            for option in ([], ["--offline"]):
                status, output = query(server, text, *option)
                self.assertRegex(output, f"^answered from the cache: .* stored \\d+ seconds? ago, .*\nname\n{name}\n")
                self.assertEqual(status, 0)
                status, output = query(server, "select 1", *option)
                self.assertIn(f"the cache has no answer of 127.0.0.1:{server.port} to this text", output)
                self.assertEqual(status, 1)

    def test_says_what_is_missing_or_there_already(self):
        server = self.serve("data")
        for words, said in (
                (["users", "no group"], "qvcall: no group: there is no such group\n"),
                (["mkdir", "drawings"], "qvcall: drawings: a folder or file of that name already exists\n"),
                (["query", "--db", "DESIGNDB", "select nope"], "qvcall: no such column: nope (result 3)\n")):
            self.assertEqual(self.call("--port", server.port, *words), (1, said))

    def test_names_the_file_of_a_database_that_does_not_exist(self):
        status, output = self.call("--direct", SQLITE + "none.db", "query", "select 1")
        self.assertRegex(output, "^qvcall: none.db: there is no such file")
        self.assertEqual(status, 1)
        self.assertFalse((self.folder / "none.db").exists())
        for name in ("file:no%20ne.db", "file:no%20ne.db?cache=shared", f"file://{self.folder}/no%20ne.db"):
            status, output = self.call("--direct", SQLITE + name, "query", "select 1")
            self.assertRegex(output, "^qvcall: .*no ne.db: there is no such file")
            self.assertEqual(status, 1)
        self.assertEqual(list(self.folder.glob("*no*ne.db*")), [])
        for name in (":memory:", "file::memory:", "file:x?mode=memory"):
            self.assertEqual(self.call("--direct", SQLITE + name, "query", "select 1")[0], 0)


class ExactValues(ProgramCase):
    def serve_values(self, direct, number, binary, value):
        """Fills the database that `direct` leads to, serves it, and returns every way to it."""
        statements = (
            f"create table exact_values (id integer, i bigint, d double precision, n {number}, t varchar(20), "
            f"w timestamp, b {binary})",
            f"insert into exact_values values (1, 9223372036854775807, 1e-9, '12345678901234.5678', '', "
            f"'2026-02-28 23:59:59', {value}), (2, null, null, null, null, null, null), "
            f"(3, 0, 1e300, '0', 'x', '1999-12-31 00:00:00', ''), (4, -1, 0.1, '-0.1', '阀', '2026-02-28 23:59:59', "
            f"{value})")
        for statement in statements:
            self.assertEqual(self.call("--direct", direct, "exec", statement), (0, "done\n"))
        server = self.serve("data")
        return [["--direct", direct], ["--port", server.port], ["--web", "--http-port", server.http_port]]

    def sqlite(self):
        self.serve("data").stop()  # makes the samples
        return self.serve_values(f"{SQLITE}{self.folder}/data/db/DESIGNDB.sqlite", "varchar(40)", "blob", "x'00ff'")

    def expect_values(self, ways):
        def query(way, text, form):
            status, output = self.call(*way, "query", text, "--db", "DESIGNDB", "--format", form)
            self.assertEqual(status, 0, output)
            return re.sub(r'/[^ ",\n]*qvcd[^ ",\n]*', "FILE", output)
        for way in ways:
            with self.subTest(way[0]):
                text = "select i, d, n, t, w, b from exact_values order by id"
                self.assertEqual(json.loads(query(way, text, "json"), parse_int=str, parse_float=str), ROWS)
                self.assertEqual(query(way, text, "csv"), CSV)
                head, _, *rows, count = query(way, text, "table").splitlines()
                self.assertEqual([[cell.strip() for cell in row.split("|")] for row in (head, *rows)], TABLE)
                self.assertEqual(query(way, "select sum(size_bytes) as n from documents", "csv"), "n\n133844670540\n")

    def test_come_from_sqlite(self):
        self.expect_values(self.sqlite())

    def test_come_from_postgresql(self):
        engine = Postgres(self.folder)
        self.addCleanup(engine.stop)
        (self.folder / "data").mkdir()
        settings = self.folder / "data/databases.json"
        settings.write_text(json.dumps({"DESIGNDB": {"odbc": engine.text}}))
        settings.chmod(0o600)
        ways = self.serve_values(engine.text, "numeric", "bytea", "'\\x00ff'")
        self.expect_values(ways)
        for way in ways:
            query = ["query", "select n from exact_values order by n", "--db", "DESIGNDB"]
            self.assertIn('{"n":12345678901234.5678}', self.call(*way, *query, "--format", "json")[1], way)
            self.assertIn("\n               -0.1\n", self.call(*way, *query)[1], way)

    def test_are_not_waited_for_after_an_interrupt(self):
        for way in self.sqlite():
            for command in ("query", "exec"):
                with self.subTest(way[0], command=command):
                    status, shown = self.on_terminal([*way, command, SLOW, "--db", "DESIGNDB"], b"  0:01", b"\x03")
                    self.assertRegex(shown, "(Waiting|The server is at work)  0:01")
                    self.assertRegex(shown, "qvcall: .*cancelled")
                    self.assertEqual(status, -signal.SIGINT)


class Queues(ProgramCase):
    """The commands for file servers and cloud stores, with the components beside the program."""

    PLACES = {  # service: login, password, what paths begin with, what reports begin with, the server's program
        "ftp": ("tester", "pass; word", "", "Ftp", "ftp_server.py"),
        "cloud": ("AN-ACCESS-KEY", "a+secret/key", "bucket/", "CSC", "s3_server.py"),
    }

    def start(self, service):
        """Starts the service's server, and returns what names it on a command line."""
        login, password, *_, program = self.PLACES[service]
        (self.folder / "password").write_text(password + "\nmore\n")
        (self.folder / "server").mkdir()
        arguments = ["server", "log"] if service == "ftp" else [login, password, "log"]
        # The system's own Python has the packages.
        server = subprocess.Popen(["/usr/bin/python3", SOURCES / "tests/components" / program, *arguments],
                                  cwd=self.folder, stdout=subprocess.PIPE, text=True)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.wait)
        self.addCleanup(server.kill)
        port = server.stdout.readline().strip().rpartition(":")[2]
        host = f"127.0.0.1:{port}" if service == "ftp" else f"http://localhost:{port}"
        return [service, "--host", host, "--login", login]

    def check_moves(self, service):
        _, password, base, label, _ = self.PLACES[service]
        place = [*self.start(service), "--password-file", "password"]
        standin = self.serve("data")

        def call(*words):
            status, output = self.call(*place, *words)
            self.assertNotIn(password, output)
            return status, output
        (self.folder / "src/sub").mkdir(parents=True)
        (self.folder / "out").mkdir()
        (self.folder / "src/a").write_text("bytes")
        (self.folder / "src/sub/图 1.dwg").write_text("x" * 100_000)
        status, output = call("put", "-r", "src", "none", base + "x/")
        self.assertEqual(status, 1)
        self.assertIn("none: there is no such file", output)
        self.assertIn("done (2 files, 97.7 KiB)\nqvcall: 1 failed", output)
        self.assertEqual(call("cp", base + "x/src/a", base + "y/")[0], 0)
        self.assertEqual(call("mv", base + "y/a", base + "x/c")[0], 0)
        missing = base + "\u202e"  # changes the direction of writing
        status, output = call("--port", standin.port, "get", base + "x/src/sub/图 1.dwg", missing, base + "x/c",
                              base + "x/", "out")
        self.assertEqual(status, 1)
        self.assertEqual((self.folder / "out/图 1.dwg").read_text(), "x" * 100_000)
        self.assertEqual((self.folder / "out/c").read_text(), "bytes")
        header = label + "Down 3 Files FAIL"
        self.assertIn("1 of 3 failed, the first: the server has no such file", output)
        self.assertIn(f"{header}\n  <1> out/\\u202e({base}\\u202e)\ndone (2 files", output)
        self.assertIn(f"{base}x/: is a folder", output)
        log = (self.folder / "data/server.log").read_text()
        self.assertIn(header, log)
        self.assertIn(f"({missing})", log)
        self.assertNotIn(password, log)
        self.assertEqual(call("rm", "-r", base + "x/src")[0], 0)
        status, output = call("rm", base + "x/c", base + "x/src/a")
        self.assertEqual(status, 1)
        self.assertIn("x/src/a: the server has no such file (result 7)", output)
        self.assertNotIn("x/c:", output)

    def test_move_files_to_and_from_a_file_server(self):
        self.check_moves("ftp")

    def test_move_files_to_and_from_a_cloud_store(self):
        self.check_moves("cloud")

    def test_ask_for_the_password_without_showing_it(self):
        place = self.start("ftp")
        (self.folder / "a").write_text("bytes")
        question = b"Password of tester at 127.0.0.1: "
        status, shown = self.on_terminal([*place, "put", "a", "."], question, b"pass; word\n")
        self.assertEqual(status, 0, shown)
        self.assertNotIn("pass; word", shown)
        self.assertEqual((self.folder / "server/a").read_text(), "bytes")

    def test_tell_what_keeps_them_from_beginning(self):
        place = [*self.start("ftp"), "--password-file"]
        status, output = self.call(*place, "none", "rm", "a")
        self.assertEqual(status, 1)
        self.assertIn("none: has no password", output)
        (self.folder / "password").write_text("wrong\n")
        status, output = self.call(*place, "password", "rm", "a")
        self.assertEqual(status, 1)
        self.assertIn("the server refused the login (result 5)", output)
        lone = shutil.copy(PROGRAMS / "qvcall", self.folder)
        for service, file in (("ftp", "libQvCoFtp.so"), ("cloud", "libQvCoCSC.so")):
            self.assertEqual(
                self.call(service, "--host", "h", "--login", "u", "--password-file", "password", "--timeout-ms", "9",
                          "rm", "a", program=lone),
                (1, f"qvcall: h: no component (result -100)\n  {file} is missing beside qvcall\n"))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
