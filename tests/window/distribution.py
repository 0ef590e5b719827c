"""The maker's distribution service on the loopback, and bundles that ask it for updates."""

import json
import os
import plistlib
import shutil
import signal
import subprocess
import sys
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path

from program import NAME, TESTS, lines_of

LATEST = (
    "/distributionApi/v1/organizations/org-7/applications/talvex-llm-trainer/latest"
    "?platform=macos&channel=stable&purpose=update"
)
STAND_INS = TESTS / "support" / "tools"
BUNDLE = f"{NAME}.app"


class DistributionService:
    """Tells one release and serves its file. What is asked stands in `requests`."""

    def __init__(self):
        service = self

        class Handler(BaseHTTPRequestHandler):
            def do_GET(self):
                service._answer(self)

            def log_message(self, *_):
                pass

        self.requests = []
        self.latest = (404, {"error": {"code": "not_found", "message": "No release."}})
        self.file_status = 200
        self._file = None
        # Half of the file goes out at once, the rest when this is set.
        self.rest = threading.Event()
        self.rest.set()
        self._server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._server.daemon_threads = True
        self.address = f"http://127.0.0.1:{self._server.server_address[1]}"
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def stop(self):
        self.rest.set()
        self._server.shutdown()
        self._server.server_close()

    def publish(self, file, version, notes=None, architecture=None, **changes):
        """As the maker would: with the record that scripts/release-record prints. `changes` are of the artifact."""
        command = [
            sys.executable,
            TESTS.parent / "scripts" / "release-record",
            "--url",
            f"{self.address}/files",
        ]
        command += ["--version", version]
        if architecture:
            command += ["--architecture", architecture]
        if notes is not None:
            path = file.with_name("notes.md")
            path.write_text(notes)
            command += ["--notes", path]
        record = json.loads(subprocess.run([*command, file], check=True, capture_output=True).stdout)
        release = {**record, "id": "release-1", "isYanked": False}
        artifact = {**record["artifacts"][0], **changes}
        payload = {
            "appId": "app-1",
            "channel": "stable",
            "platform": "macos",
            "release": release,
            "artifact": artifact,
        }
        self.latest = (200, {"data": payload})
        self._file = file
        return artifact

    def _answer(self, request):
        self.requests.append((request.path, dict(request.headers)))
        if request.path == LATEST:
            status, body = self.latest
            self._send(
                request,
                status,
                body if isinstance(body, bytes) else json.dumps(body).encode(),
            )
        elif request.path.startswith("/files/") and self._file and self.file_status == 200:
            self._send(request, 200, self._file.read_bytes())
        else:
            self._send(
                request,
                self.file_status if request.path.startswith("/files/") else 404,
                b"nothing here",
            )

    def _send(self, request, status, body):
        request.send_response(status)
        request.send_header("Content-Length", str(len(body)))
        request.end_headers()
        try:
            request.wfile.write(body[: len(body) // 2])
            if request.path.startswith("/files/"):
                self.rest.wait()
            request.wfile.write(body[len(body) // 2 :])
        except ConnectionError:
            pass  # a download that was cancelled


def make_package(folder):
    """The archive that the target `package` makes of the bundle under test."""
    command = [
        os.environ["ZOREL_CPACK"],
        "--config",
        Path(os.environ["ZOREL_BUILD"]) / "CPackConfig.cmake",
    ]
    subprocess.run(
        [*command, "-G", "TGZ", "-B", folder],
        check=True,
        cwd=folder,
        capture_output=True,
    )
    [archive] = folder.glob("*.tar.gz")
    return archive


def information_of(bundle):
    return plistlib.loads(bundle.joinpath("Contents", "Info.plist").read_bytes())


def change_information(bundle, **values):
    path = bundle / "Contents" / "Info.plist"
    path.write_bytes(plistlib.dumps({**information_of(bundle), **values}))


class Installation:
    """An older version of the program, installed, that asks the service on the loopback."""

    VERSION = "0.0.9"

    def __init__(self, program, service, package):
        self.program = program
        self.service = service
        self.folder = program.home / "Applications"
        self.bundle = self.folder / BUNDLE
        self.state = program.home / "state"
        self.folder.mkdir()
        self.state.mkdir()
        shutil.unpack_archive(package, self.folder)
        change_information(
            self.bundle,
            CFBundleShortVersionString=self.VERSION,
            CFBundleVersion=self.VERSION,
            CaldraAPIKey="key-7",
            CaldraOrganizationId="org-7",
            CaldraServiceHost=service.address,
            ZorelTrialTools=str(STAND_INS),
        )
        program.executable = str(self.bundle / "Contents" / "MacOS" / NAME)
        program.environment.update(
            STANDIN_LOG=str(self.state / "calls"),
            STANDIN_STATE=str(self.state),
            STANDIN_LAUNCH="1",
        )

    def hold_file(self, name):
        """Keeps the program waiting where it opens a file of this name for reading, until it is let go."""
        self.program.environment["LD_PRELOAD"] = os.environ["ZOREL_GATE"]
        return self.hold(f"file {name}")

    def hold(self, tool):
        """Keeps the next call of the tool waiting until it is let go."""
        gate = self.state / f"gate of {tool}"
        os.mkfifo(gate)

        def let_go():
            with gate.open("w"):
                gate.unlink()

        return let_go

    def fail(self, call):
        self.program.environment["STANDIN_FAIL"] = call

    def calls(self, tool):
        lines = lines_of(self.state / "calls")
        return [line.rstrip("|").split("|")[1:] for line in lines if line.startswith(f"{tool}|")]

    @property
    def launched(self):
        """The process that has been started in the old one's place."""
        told = lines_of(self.state / "launched")
        return int(told[0]) if told else None

    def stop(self):
        """Ends what has been started in the program's place."""
        if self.launched and Path(f"/proc/{self.launched}").exists():
            os.kill(self.launched, signal.SIGKILL)

    @property
    def working_folders(self):
        updater = self.program.home / "Library" / "Caches" / "com.talvex.zorel" / "Updater"
        return [folder for folder in updater.glob("*") if folder.is_dir()]

    def version(self):
        return information_of(self.bundle)["CFBundleShortVersionString"]
