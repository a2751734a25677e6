"""An FTP server for tests, on a free port of loopback, which it prints.

Its user is "tester" with the password "pass; word". It can cut connections and forget commands, and writes each
command, and how many bytes each data connection moved, to a log.
"""
import argparse
import logging

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import DTPHandler, FTPHandler, TLS_DTPHandler, TLS_FTPHandler
from pyftpdlib.servers import FTPServer

arguments = argparse.ArgumentParser()
arguments.add_argument("folder")
arguments.add_argument("log")
arguments.add_argument("--certificate", help="a PEM file with its key; no connection without TLS then")
arguments.add_argument("--cut-after", type=int, default=0, help="bytes of a data connection")
arguments.add_argument("--cuts", type=int, default=0)
arguments.add_argument("--spare", type=int, default=0, help="how many such connections to let live between two cuts")
arguments.add_argument("--without", nargs="*", default=[], help="commands that it does not know")
arguments.add_argument("--strict", action="store_true", help="no new name for a file that another file has")
arguments.add_argument("--stubborn", action="store_true", help="no new names at all")
arguments.add_argument("--deaf", action="store_true", help="promises to begin where it is told to, and does not")
arguments.add_argument("--forged-size", type=int, help="what it says of every file's size")
options = arguments.parse_args()
logging.basicConfig(level=logging.WARNING)
log = open(options.log, "a", encoding="utf-8", buffering=1)


class Cuts:
    done = 0
    spared = 0

    @classmethod
    def is_due(cls, moved):
        if moved < options.cut_after or cls.done == options.cuts:
            return False
        cls.spared += 1
        if cls.spared <= options.spare:
            return False
        cls.spared = 0
        cls.done += 1
        return True


class Data:
    may_cut = True

    def use_sendfile(self):
        return False

    def cut_when_due(self):
        moved = self.get_transmitted_bytes()
        if self._closed or not self.may_cut or not self.file_obj or moved < options.cut_after:
            return
        self.may_cut = False
        if not Cuts.is_due(moved):
            return
        log.write(f"cut {self.file_obj.name}\n")
        channel = self.cmd_channel
        self._resp = ("426 Cut.", log.write)
        self.close()
        # The connection for commands as well, every other time.
        if Cuts.done % 2 == 0:
            channel.close()

    # Some clients agree on TLS before they say what the connection is for.
    def readable(self):
        return getattr(self, "_ssl_accepting", False) or super().readable()

    def handle_read_event(self):
        super().handle_read_event()
        self.cut_when_due()

    def handle_write_event(self):
        super().handle_write_event()
        self.cut_when_due()

    def close(self):
        if not self._closed:
            log.write(f"{'received' if self.receive else 'sent'} {self.get_transmitted_bytes()}\n")
        super().close()


class Commands:
    use_gmt_times = True

    def pre_process_command(self, line, cmd, arg):
        if cmd != "PASS":
            log.write(line + "\n")
        super().pre_process_command(line, cmd, arg)

    def ftp_SIZE(self, path):
        if options.forged_size is None or ".part" not in path:
            return super().ftp_SIZE(path)
        self.respond(f"213 {options.forged_size}")
        return path

    def ftp_REST(self, line):
        super().ftp_REST("0" if options.deaf else line)

    def ftp_RNTO(self, path):
        if options.stubborn or options.strict and self.fs.lexists(path):
            self.respond("553 There is one.")
            return None
        return super().ftp_RNTO(path)


def mixed(first, second):
    return type(first.__name__ + second.__name__, (first, second), {})


handler = mixed(Commands, TLS_FTPHandler if options.certificate else FTPHandler)
handler.dtp_handler = mixed(Data, TLS_DTPHandler if options.certificate else DTPHandler)
if options.certificate:
    handler.certfile = options.certificate
    handler.tls_control_required = True
    handler.tls_data_required = True
handler.proto_cmds = {name: facts for name, facts in handler.proto_cmds.items() if name not in options.without}
handler.authorizer = DummyAuthorizer()
handler.authorizer.add_user("tester", "pass; word", options.folder, perm="elradfmwMT")
handler.auth_failed_timeout = 0
server = FTPServer(("127.0.0.1", 0), handler)
print(f"port:{server.address[1]}", flush=True)
server.serve_forever(timeout=1)
