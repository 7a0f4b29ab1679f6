"""A headless Chromium, driven through ChromeDriver with the standard library alone."""

import contextlib
import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import urllib.error
import urllib.request

CHROMIUM = shutil.which("chromium")
CHROMEDRIVER = shutil.which("chromedriver")

FLAGS = [
    "--headless",
    "--no-sandbox",
    "--disable-dev-shm-usage",
    "--disable-gpu",
    "--disable-quic",
    "--no-first-run",
    "--disable-background-networking",
    "--disable-component-update",
    "--disable-sync",
    "--force-device-scale-factor=1",
]


class Browser:
    """One window. Its files are removed when it is closed."""

    def __init__(self, width=1280, height=1024):
        with contextlib.ExitStack() as undo:
            profile = undo.enter_context(tempfile.TemporaryDirectory(prefix="pages_"))
            self._driver = subprocess.Popen(
                [CHROMEDRIVER, "--port=0"],
                stdout=subprocess.PIPE,
                stderr=subprocess.DEVNULL,
                text=True,
                start_new_session=True,
                env=dict(os.environ, HOME=profile, TMPDIR=profile),
            )
            undo.callback(self._end_driver)
            self._base = "http://127.0.0.1:%d" % self._port()
            options = {
                "binary": CHROMIUM,
                "args": FLAGS
                + ["--user-data-dir=" + profile + "/data", "--window-size=%d,%d" % (width, height)],
            }
            capabilities = {
                "browserName": "chrome",
                "goog:chromeOptions": options,
                "goog:loggingPrefs": {"browser": "ALL"},
            }
            session = self._post("/session", {"capabilities": {"alwaysMatch": capabilities}})
            self._session = "/session/" + session["sessionId"]
            undo.callback(self._call, "DELETE", self._session)
            self._undo = undo.pop_all()

    def close(self):
        self._undo.close()

    def open(self, path):
        self._post(self._session + "/url", {"url": "file://" + os.path.abspath(path)})

    def run(self, script, *arguments):
        """Runs the body of a function in the page, and returns its value."""
        body = {"script": script, "args": list(arguments)}
        return self._post(self._session + "/execute/sync", body)

    def find_all(self, selector):
        body = {"using": "css selector", "value": selector}
        return self._post(self._session + "/elements", body)

    def move_mouse_to(self, element):
        """Moves the real pointer to the middle of an element."""
        move = {"type": "pointerMove", "duration": 0, "origin": element, "x": 0, "y": 0}
        mouse = {"type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"}}
        self._post(self._session + "/actions", {"actions": [dict(mouse, actions=[move])]})

    def screenshot(self, width, height):
        """The upper left part of the page, also beyond the window, as a PNG in base 64."""
        clip = {"x": 0, "y": 0, "width": width, "height": height, "scale": 1}
        parameters = {"format": "png", "clip": clip, "captureBeyondViewport": True}
        body = {"cmd": "Page.captureScreenshot", "params": parameters}
        return self._post(self._session + "/goog/cdp/execute", body)["data"]

    def console_messages(self):
        """The messages of the page's console since the last call."""
        return self._post(self._session + "/se/log", {"type": "browser"})

    def _port(self):
        for line in self._driver.stdout:
            found = re.search(r"successfully on port (\d+)", line)
            if found:
                return int(found.group(1))
        raise RuntimeError("ChromeDriver did not start")

    def _end_driver(self):
        # The driver is the leader of a session, to which its browsers belong.
        with contextlib.suppress(ProcessLookupError):
            os.killpg(self._driver.pid, signal.SIGKILL)
        self._driver.wait()
        self._driver.stdout.close()

    def _post(self, path, body):
        return self._call("POST", path, body)

    def _call(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self._base + path, data=data, method=method)
        request.add_header("Content-Type", "application/json")
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        try:
            with opener.open(request, timeout=120) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(error.read().decode(errors="replace")) from error
