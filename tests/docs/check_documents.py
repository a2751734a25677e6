#!/usr/bin/env python3
"""Compares the documents with the tree.

docs/commands.md must list the codes that the library sends and the stand-in answers, with the files that hold them and
the sizes of their blocks; every path that a document names must exist; the README's code must be that of an example.
Usage: check_documents.py [TOP]. Prints one line for each difference; exits 1 if there is any.
"""
import pathlib
import re
import sys

ROOMS = ("server", "database", "files", "directory", "transfer")
TABLE = "tools/qvstandin/commands/CommandTable.cpp"

# A code is a constant that a call is made with. The first group is the name.
COMMAND = r"constexpr (?:qv::)?CatalogueCommand (k\w+)\{(\w+)"
NUMBER = r"constexpr std::uint32_t (k\w+) = ([\w:]+);"
USES = (r"(?:Exchange|TransferCall)(?: \w+)?\((?:qv::)?(k\w+)", r"command = [^;,]*?\b(k\w+)",
        r"command = [^;,]*:\s*(?:qv::)?(k\w+);")

# What makes calls: the groups name the code and the constants of its blocks. A call that does not name its blocks has
# those of its class.
MADE = r"\bExchange(?: \w+)?\((?:qv::)?(k\w+), (?:qv::)?(k\w+), (?:qv::)?(k\w+)\)"
CATALOGUE = r"CatalogueCommand k\w+\{(\w+)(?:, (?:qv::)?(k\w+))?\}"
CLASSES = (("server/CatalogueCall.h", r"exchange_\(command\.code, (k\w+)"),
           ("server/CatalogueCall.h", r"reply_bytes = (k\w+);"),
           ("files/TransferCall.h", r"exchange_\(command, (k\w+), \1\)"),
           ("database/QueryExchange.cpp", r"Exchange\(command, (k\w+), \1\)"))

# What looks like a path of the tree and is none: folders of users, parts of paths, a type of HTTP.
NOT_OF_THE_TREE = {"build", "DIR", "posix", "windows", "incoming", "ids", "db", "bucket", "7", "peak", "application"}


def plain(code):
    number = int(code, 0)
    return number - 2**32 if number >= 2**31 else number


def sources(top):
    """The texts of the rooms that make calls, by their paths."""
    return {str(path.relative_to(top)): path.read_text()
            for room in ROOMS for path in sorted((top / room).rglob("*")) if path.suffix in (".h", ".cpp")}


def constants(texts):
    return {name: code for text in texts.values() for name, code in re.findall(NUMBER, text)}


def blocks(texts):
    """For each code the sizes of the blocks of its request and reply."""
    shared = constants(texts)
    asked, replied, transfer, query = (re.search(form, texts[file])[1] for file, form in CLASSES)
    made = {}
    for text in texts.values():
        known = shared | dict(re.findall(NUMBER, text))
        size = lambda name: plain(name) if name[0].isdigit() else size(known[name.removeprefix("qv::")])
        calls = re.findall(MADE, text)
        calls += [(code, asked, reply or replied) for code, reply in re.findall(CATALOGUE, text)]
        calls += [(name, transfer, transfer) for name in re.findall(r"TransferCall \w+\((k\w+)\)", text)]
        calls += [(name, query, query) for form in USES[1:] for name in re.findall(form, text)]
        calls += [(name, query, query) for name in re.findall(r"QueryExchange \w+\((?:qv::)?(k\w+)", text)]
        for name, request, reply in calls:
            if name in known or name[0].isdigit():
                made[size(name)] = (size(request), size(reply))
    return made


def sent_codes(texts):
    """For each code the files that define or use its constant."""
    shared = constants(texts)
    sent = {}
    for file, text in texts.items():
        own = dict(re.findall(NUMBER, text))
        codes = [code for _, code in re.findall(COMMAND, text)]
        names = {name for use in USES for name in re.findall(use, text)}
        codes += [own.get(name, shared.get(name)) for name in names if name in own or name in shared]
        for code in codes:
            sent.setdefault(plain(code), set()).add(file)
    return sent


def documented(text):
    """Each row: its code, its callers, its blocks, and the files that its section names as the two ends."""
    for section in text.split("\n## ")[1:]:
        intro = re.split(r"^\|", section, maxsplit=1, flags=re.MULTILINE)[0]
        client, _, server = re.split(r"\bClient:", intro)[1].partition("Server:")
        ends = [re.findall(r"`(\w+/[^`]+\.(?:cpp|h))`", end) for end in (client, server)]
        for code, caller, *sizes in re.findall(
                r"^\| (-?\d+) \| ([^|]*) \|[^|]*\| (\d+), (\d+) \|", section, re.MULTILINE):
            yield int(code), re.findall(r"`(\w+::\w+)`", caller), tuple(map(int, sizes)), *ends


def check_paths(top):
    """Names in backquotes that have a slash."""
    for document in (*top.glob("*.md"), *top.glob("docs/*.md"), *top.glob("bench/*.md")):
        for path in re.findall(r"`([\w.-]+/[\w./-]*)`", document.read_text()):
            if path.split("/")[0] not in NOT_OF_THE_TREE and not (top / path).exists():
                yield f"{document.relative_to(top)} names {path}, which does not exist"


def check_code(top):
    """What the README shows as C++."""
    examples = [path.read_text() for path in (top / "examples").glob("*.cpp")]
    blocks = re.findall(r"^```cpp\n(.*?)^```", (top / "README.md").read_text(), re.DOTALL | re.MULTILINE)
    for block in blocks or ["(nothing)"]:
        if not any(block in example for example in examples):
            yield f"README.md shows code that is in no example: {block[:60]!r}"


def check_commands(top):
    texts = sources(top)
    sent = sent_codes(texts)
    made = blocks(texts)
    answered = {int(code): name
                for code, name in re.findall(r"Command\{(\d+), (\w+)", (top / TABLE).read_text())}
    read = lambda files: "".join((top / f).read_text() for f in files if (top / f).exists())
    rows = list(documented((top / "docs/commands.md").read_text()))
    codes = {row[0] for row in rows}
    for code in sorted(set(sent) - codes):
        yield f"{code} is sent by {', '.join(sent[code])} and is not in the document"
    for code in sorted(set(answered) - codes):
        yield f"{code} is answered by the stand-in and is not in the document"
    for code, callers, sizes, client, server in rows:
        if sizes != made.get(code):
            yield f"{code}: the blocks are {made.get(code)}, not {sizes}"
        for file in client + server:
            if not (top / file).exists():
                yield f"{code}: there is no file {file}"
        if not sent.get(code, set()) & set(client):
            yield f"{code} is not sent by {', '.join(client)}"
        for caller in callers or ["(no caller)"]:
            if caller + "(" not in read(client):
                yield f"{code}: {caller} is not in {', '.join(client)}"
        if code > 0 and code not in answered:
            yield f"{code} is not answered by the stand-in"
        elif code > 0 and f" {answered[code]}(Services&" not in read(server):
            yield f"{code}: {answered[code]} is not in {', '.join(server)}"


def main():
    top = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
    findings = sorted({*check_commands(top), *check_paths(top), *check_code(top)})
    print("\n".join(findings))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
