"""A small S3 server for tests: it keeps objects in memory and believes nobody.

Every request's signature is computed anew by another implementation, from the request as it is understood here, and its
body must have the hash that was signed. Prints its port; a line per request goes to the log:

    METHOD target status bytes-received bytes-sent

Arguments: access key, secret key, log file, then faults, each as "COUNT ACTION ARGUMENT REGEX": ACTION is applied to
the first COUNT requests whose "METHOD target" REGEX matches.

    cut-request N   the connection ends after N bytes of the body
    cut-answer N    the connection ends after N bytes of the answer's body
    status N        the answer is an error of that status, and has no body
    error CODE      the answer has status 200 and an error in its body
    replace TEXT    the answer has status 200 and TEXT for its body
    endless N       the answer says that it has N bytes, and has no end
    skew N          the server's clock is N seconds ahead
"""
import base64
import datetime
import hashlib
import http.server
import re
import sys
import threading
import urllib.parse
import xml.etree.ElementTree as ElementTree
from xml.sax.saxutils import escape

from botocore.auth import S3SigV4Auth
from botocore.awsrequest import AWSRequest
from botocore.credentials import Credentials

ACCESS_KEY, SECRET_KEY, LOG = sys.argv[1:4]
REGION = "us-east-1"
LOCK = threading.Lock()


class Failure(Exception):
    def __init__(self, status, code):
        self.status, self.code = status, code


class Fault:
    def __init__(self, text):
        count, self.action, self.argument, self.target = text.split(" ", 3)
        self.count = int(count)


FAULTS = [Fault(text) for text in sys.argv[4:]]


class Store:
    def __init__(self):
        # With characters that XML, or an address, has to have in another way.
        many = {"folder/%d &<+%% \u6587" % number: b"." for number in range(2100)}
        kept = {"folder": b".", "folder2/a": b".", "stuck/locked": b".", "stuck/a": b".", "stuck/\x01": b"."}
        self.buckets = {"bucket": {}, "many": {**many, **kept}}
        self.uploads = {}


STORE = Store()


def etag_of(data):
    return '"%s"' % hashlib.md5(data).hexdigest()


def xml_of(root, inside):
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<%s xmlns="http://store.example/doc/">%s</%s>'
            % (root, inside, root)).encode()


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def handle_one_request(self):
        try:
            super().handle_one_request()
        except ConnectionError:
            self.close_connection = True

    def serve(self):
        self.received = self.sent = 0
        self.fault = self.take_fault()
        try:
            body = self.read_body()
            if body is None:
                return
            self.understand()
            self.check_signature(body)
            status, headers, answer = self.fail_on_purpose() or self.act(body)
        except Failure as failure:
            status, headers = failure.status, {}
            answer = xml_of("Error", "<Code>%s</Code><Message>no</Message>" % failure.code)
        self.answer(status, headers, answer)

    do_GET = do_PUT = do_POST = do_DELETE = do_HEAD = serve

    def take_fault(self):
        with LOCK:
            for fault in FAULTS:
                if fault.count > 0 and re.search(fault.target, self.command + " " + self.path):
                    fault.count -= 1
                    return fault
        return None

    def fault_number(self, action):
        return int(self.fault.argument) if self.fault and self.fault.action == action else None

    def read_body(self):
        length = int(self.headers.get("Content-Length", 0))
        cut = self.fault_number("cut-request")
        body = self.rfile.read(length if cut is None else min(cut, length))
        self.received = len(body)
        if cut is None:
            return body
        # Of a server that has answered nothing at all, the client may think that it was gone before.
        self.send_response_only(100)
        self.end_headers()
        self.close_connection = True
        self.note("cut")
        return None

    def fail_on_purpose(self):
        if self.fault and self.fault.action == "status":
            return int(self.fault.argument), {}, b""
        if self.fault and self.fault.action == "error":
            return 200, {}, xml_of("Error", "<Code>%s</Code>" % self.fault.argument)
        if self.fault and self.fault.action == "replace":
            return 200, {}, self.fault.argument.encode()
        if self.fault and self.fault.action == "endless":
            return 200, {"Content-Length": self.fault.argument}, b""
        return None

    def answer(self, status, headers, body):
        cut = self.fault_number("cut-answer")
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name, value)
        if status != 204 and "Content-Length" not in headers:
            self.send_header("Content-Length", str(len(body)))
        if self.command != "HEAD":
            self.sent = len(body) if cut is None else min(cut, len(body))
        endless = self.fault_number("endless")
        if endless is not None:
            self.send_header("Transfer-Encoding", "chunked")
        # Before the client can look at it.
        self.note(status)
        self.end_headers()
        while endless is not None:
            self.wfile.write(b"3e8\r\n" + b"." * 1000 + b"\r\n")
        self.wfile.write(body[:self.sent])
        self.close_connection = self.close_connection or cut is not None

    def note(self, status):
        with LOCK, open(LOG, "a") as log:
            log.write("%s %s %s %d %d\n" % (self.command, self.path, status, self.received, self.sent))

    def understand(self):
        parts = urllib.parse.urlsplit(self.path)
        self.query = dict(urllib.parse.parse_qsl(parts.query, keep_blank_values=True, strict_parsing=bool(parts.query)))
        self.decoded = urllib.parse.unquote(parts.path, errors="strict")
        path = self.decoded[1:]
        host = re.sub(r":\d+$", "", self.headers["Host"])
        if host.endswith(".localhost"):
            self.bucket, self.key = host.removesuffix(".localhost"), path
        else:
            self.bucket, _, self.key = path.partition("/")

    def check_signature(self, body):
        match = re.fullmatch(r"AWS4-HMAC-SHA256 Credential=([^/]+)/(\d{8})/([^/]+)/s3/aws4_request, "
                             r"SignedHeaders=([a-z0-9;-]+), Signature=([0-9a-f]{64})", self.headers["Authorization"])
        if not match:
            raise Failure(400, "AuthorizationHeaderMalformed")
        access_key, _, region, names, signature = match.groups()
        signed = names.split(";")
        unsigned = [name for name in self.headers if name.lower() not in signed and name.lower().startswith("x-amz-")]
        if unsigned or "host" not in signed or region != REGION:
            raise Failure(400, "AuthorizationHeaderMalformed")
        if access_key != ACCESS_KEY:
            raise Failure(403, "InvalidAccessKeyId")
        time = self.headers["x-amz-date"]
        age = datetime.datetime.utcnow() - datetime.datetime.strptime(time, "%Y%m%dT%H%M%SZ")
        if abs(age.total_seconds() + (self.fault_number("skew") or 0)) > 900:
            raise Failure(403, "RequestTimeTooSkewed")
        # From what is understood here, not from what was sent.
        path = urllib.parse.quote(self.decoded, safe="/-._~")
        request = AWSRequest(self.command, "http://%s%s" % (self.headers["Host"], path), params=self.query,
                             headers={name: self.headers[name] for name in signed})
        request.context["timestamp"] = time
        auth = S3SigV4Auth(Credentials(ACCESS_KEY, SECRET_KEY), "s3", REGION)
        if auth.signature(auth.string_to_sign(request, auth.canonical_request(request)), request) != signature:
            raise Failure(403, "SignatureDoesNotMatch")
        if hashlib.sha256(body).hexdigest() != self.headers["x-amz-content-sha256"]:
            raise Failure(400, "XAmzContentSHA256Mismatch")

    def act(self, body):
        with LOCK:
            if not self.bucket:
                raise Failure(403, "AccessDenied")
            if self.bucket not in STORE.buckets:
                raise Failure(404, "NoSuchBucket")
            self.objects = STORE.buckets[self.bucket]
            for name in ("uploads", "uploadId", "delete", "list-type"):
                if name in self.query:
                    return getattr(self, "%s_%s" % (self.command.lower(), name.replace("-", "_")))(body)
            return getattr(self, "%s_object" % self.command.lower())(body)

    def source(self):
        bucket, _, key = urllib.parse.unquote(self.headers["x-amz-copy-source"]).lstrip("/").partition("/")
        data = STORE.buckets.get(bucket, {}).get(key)
        if data is None:
            raise Failure(404, "NoSuchKey")
        if self.objects is STORE.buckets[bucket] and key == self.key:
            raise Failure(400, "InvalidRequest")
        wanted = self.headers.get("x-amz-copy-source-if-match")
        if wanted and wanted != etag_of(data):
            raise Failure(412, "PreconditionFailed")
        ends = re.fullmatch(r"bytes=(\d+)-(\d+)", self.headers.get("x-amz-copy-source-range", ""))
        return data[int(ends[1]):int(ends[2]) + 1] if ends else data

    def put_object(self, body):
        is_copy = "x-amz-copy-source" in self.headers
        self.objects[self.key] = self.source() if is_copy else body
        etag = etag_of(self.objects[self.key])
        return 200, {"ETag": etag}, xml_of("CopyObjectResult", "<ETag>%s</ETag>" % escape(etag)) if is_copy else b""

    def get_object(self, _):
        if self.key not in self.objects:
            raise Failure(404, "NoSuchKey")
        data = self.objects[self.key]
        headers = {"ETag": etag_of(data)}
        if self.headers.get("If-Match", headers["ETag"]) != headers["ETag"]:
            raise Failure(412, "PreconditionFailed")
        start = re.fullmatch(r"bytes=(\d+)-", self.headers.get("Range", ""))
        if not start or self.command == "HEAD":
            return 200, {**headers, "Content-Length": str(len(data))}, data
        if int(start[1]) >= len(data):
            raise Failure(416, "InvalidRange")
        headers["Content-Range"] = "bytes %s-%d/%d" % (start[1], len(data) - 1, len(data))
        return 206, headers, data[int(start[1]):]

    head_object = get_object

    def delete_object(self, _):
        self.objects.pop(self.key, None)
        return 204, {}, b""

    def post_uploads(self, _):
        # With characters that have to be encoded.
        upload = "%s+/=&%d" % (self.key, len(STORE.uploads))
        STORE.uploads[upload] = {}
        return 200, {}, xml_of("InitiateMultipartUploadResult", "<UploadId>%s</UploadId>" % escape(upload))

    def upload(self):
        if self.query["uploadId"] not in STORE.uploads:
            raise Failure(404, "NoSuchUpload")
        return STORE.uploads[self.query["uploadId"]]

    def put_uploadId(self, body):
        is_copy = "x-amz-copy-source" in self.headers
        part = self.source() if is_copy else body
        self.upload()[int(self.query["partNumber"])] = part
        return 200, {"ETag": etag_of(part)}, (
            xml_of("CopyPartResult", "<ETag>%s</ETag>" % escape(etag_of(part))) if is_copy else b"")

    def get_uploadId(self, _):
        # In small pages.
        after = int(self.query.get("part-number-marker", 0))
        numbers = [number for number in sorted(self.upload()) if number > after]
        parts = "".join("<Part><PartNumber>%d</PartNumber><Size>%d</Size><ETag>%s</ETag></Part>" % (
            number, len(self.upload()[number]), escape(etag_of(self.upload()[number]))) for number in numbers[:2])
        more = "<IsTruncated>%s</IsTruncated>" % ("true" if len(numbers) > 2 else "false")
        marker = "<NextPartNumberMarker>%d</NextPartNumberMarker>" % numbers[1] if len(numbers) > 2 else ""
        return 200, {}, xml_of("ListPartsResult", parts + more + marker)

    def post_uploadId(self, body):
        wanted = [(int(part.findtext("PartNumber")), part.findtext("ETag")) for part in ElementTree.fromstring(body)]
        upload = self.upload()
        if [(number, etag_of(upload[number])) for number in sorted(upload)] != wanted:
            raise Failure(400, "InvalidPart")
        self.objects[self.key] = b"".join(upload[number] for number, _ in wanted)
        del STORE.uploads[self.query["uploadId"]]
        return 200, {}, xml_of("CompleteMultipartUploadResult", "<ETag>&quot;x-%d&quot;</ETag>" % len(wanted))

    def delete_uploadId(self, _):
        self.upload()
        del STORE.uploads[self.query["uploadId"]]
        return 204, {}, b""

    def get_list_type(self, _):
        after = self.query.get("continuation-token", "")
        keys = [key for key in sorted(self.objects) if key.startswith(self.query["prefix"]) and key > after]
        page = keys[:int(self.query.get("max-keys", 1000))]
        inside = "".join("<Contents><Key>%s</Key></Contents>" % urllib.parse.quote_plus(key, safe="/") for key in page)
        inside += "<EncodingType>url</EncodingType>"
        if len(page) < len(keys):
            inside += "<IsTruncated>true</IsTruncated>"
            inside += "<NextContinuationToken>%s</NextContinuationToken>" % escape(page[-1])
        return 200, {}, xml_of("ListBucketResult", inside)

    def post_delete(self, body):
        if base64.b64encode(hashlib.md5(body).digest()).decode() != self.headers["Content-MD5"]:
            raise Failure(400, "BadDigest")
        keys = [found.findtext("Key") for found in ElementTree.fromstring(body).findall("Object")]
        if len(keys) > 1000:
            raise Failure(400, "MalformedXML")
        kept = [key for key in keys if key.endswith("locked")]
        for key in keys:
            if key not in kept:
                self.objects.pop(key, None)
        return 200, {}, xml_of("DeleteResult", "".join(
            "<Error><Key>%s</Key><Code>AccessDenied</Code></Error>" % escape(key) for key in kept))


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True
    request_queue_size = 64


server = Server(("127.0.0.1", 0), Handler)
print("port:%d" % server.server_address[1], flush=True)
server.serve_forever()
