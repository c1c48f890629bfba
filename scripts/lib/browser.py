"""A browser without a window, spoken to over two pipes in the protocol of its developer tools.

It has no network: no name is ever resolved, and what a page asks for beside itself is on record.
"""

import base64
import contextlib
import json
import os
import pathlib
import select
import shutil
import subprocess
import tempfile
import time

PROGRAM = "chromium-headless-shell"
# Only guards against hanging.
LIMIT = 120


class BrowserError(Exception):
    pass


class Page:
    """One page. What it asked for and complained of is in `requests` and `complaints`."""

    def __init__(self, browser, session):
        self._browser = browser
        self._session = session
        self.requests = []
        self.complaints = []
        for domain in ("Page", "Network", "Log", "Runtime"):
            self.send(f"{domain}.enable")

    def send(self, method, **params):
        return self._browser.send(method, params, self._session)

    def hear(self, method, params):
        if method == "Network.requestWillBeSent":
            self.requests.append(params["request"]["url"])
        elif method == "Runtime.exceptionThrown":
            self.complaints.append(json.dumps(params["exceptionDetails"]))
        elif method == "Runtime.consoleAPICalled" and params["type"] in ("error", "warning", "assert"):
            self.complaints.append(json.dumps(params["args"]))
        elif method == "Log.entryAdded":
            self.complaints.append(params["entry"]["text"])

    def open(self, file, dark=False, width=1280, height=900, script=True):
        self.send("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)
        self.send("Emulation.setEmulatedMedia", media="",
                  features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.send("Emulation.setScriptExecutionDisabled", value=not script)
        self._browser.forget("Page.loadEventFired")
        answer = self.send("Page.navigate", url=pathlib.Path(file).resolve().as_uri())
        if "errorText" in answer:
            raise BrowserError(f"{file}: {answer['errorText']}")
        self._browser.wait_for("Page.loadEventFired")

    def run(self, expression):
        """The value of an expression of the page's language; a promise is waited for."""
        answer = self.send("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise BrowserError(f"{expression}: {answer['exceptionDetails']}")
        return answer["result"].get("value")

    def wait_until(self, expression):
        """Whether an expression of the page's language becomes true: what a page does in answer to an event comes later."""
        end = time.monotonic() + LIMIT
        while not self.run(expression):
            if time.monotonic() > end:
                return False
            time.sleep(0.05)
        return True

    def press(self, key, code=None, text="", modifiers=0):
        """Presses and releases a key, as a keyboard does."""
        codes = {"Tab": 9, "Enter": 13, " ": 32, "Backspace": 8}
        what = {"key": key, "code": code or key, "windowsVirtualKeyCode": codes.get(key, 0), "modifiers": modifiers}
        self.send("Input.dispatchKeyEvent", type="keyDown", text=text, **what)
        self.send("Input.dispatchKeyEvent", type="keyUp", **what)

    def type(self, text):
        for character in text:
            self.press(character, text=character)

    def picture(self, file, whole=True):
        answer = self.send("Page.captureScreenshot", format="png", captureBeyondViewport=whole)
        pathlib.Path(file).write_bytes(base64.b64decode(answer["data"]))

    def paper(self, file):
        answer = self.send("Page.printToPDF", printBackground=False)
        pathlib.Path(file).write_bytes(base64.b64decode(answer["data"]))


class Browser:
    def __init__(self, profile):
        commands, self._out = os.pipe()
        self._in, answers = os.pipe()
        self._buffer = b""
        self._number = 0
        self._answers = {}
        self._heard = []
        self._pages = {}

        def hand_over():
            # The browser reads from descriptor 3 and writes to 4; copies first, for the two may already be in use.
            source, target = os.dup(commands), os.dup(answers)
            os.dup2(source, 3)
            os.dup2(target, 4)

        self._process = subprocess.Popen(
            [PROGRAM, "--remote-debugging-pipe", f"--user-data-dir={profile}", "--no-sandbox", "--disable-gpu",
             "--no-first-run", "--disable-background-networking", "--disable-component-update",
             "--host-resolver-rules=MAP * ~NOTFOUND", "--hide-scrollbars", "--font-render-hinting=none", "about:blank"],
            preexec_fn=hand_over, close_fds=False, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        os.close(commands)
        os.close(answers)

    def page(self):
        target = self.send("Target.createTarget", {"url": "about:blank"})["targetId"]
        session = self.send("Target.attachToTarget", {"targetId": target, "flatten": True})["sessionId"]
        page = Page.__new__(Page)
        self._pages[session] = page
        page.__init__(self, session)
        return page

    def close(self):
        with contextlib.suppress(BrowserError, OSError):
            self.send("Browser.close", {})
        try:
            self._process.wait(20)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        os.close(self._in)
        os.close(self._out)

    def send(self, method, params, session=None):
        self._number += 1
        number = self._number
        message = {"id": number, "method": method, "params": params}
        if session:
            message["sessionId"] = session
        data = json.dumps(message).encode() + b"\0"
        while data:
            data = data[os.write(self._out, data):]
        self._read_until(lambda: number in self._answers, method)
        answer = self._answers.pop(number)
        if "error" in answer:
            raise BrowserError(f"{method}: {answer['error']}")
        return answer["result"]

    def forget(self, method):
        self._heard = [heard for heard in self._heard if heard != method]

    def wait_for(self, method):
        self._read_until(lambda: method in self._heard, method)

    def _read_until(self, is_there, what):
        end = time.monotonic() + LIMIT
        while not is_there():
            ready, _, _ = select.select([self._in], [], [], max(0, end - time.monotonic()))
            data = os.read(self._in, 1 << 16) if ready else b""
            if not data:
                raise BrowserError(f"no answer to {what}")
            *messages, self._buffer = (self._buffer + data).split(b"\0")
            for message in messages:
                self._take(json.loads(message))

    def _take(self, message):
        if "id" in message:
            self._answers[message["id"]] = message
            return
        self._heard.append(message["method"])
        page = self._pages.get(message.get("sessionId"))
        if page is not None and hasattr(page, "complaints"):
            page.hear(message["method"], message["params"])


@contextlib.contextmanager
def browser():
    """A browser with a profile of its own, both gone afterwards."""
    if not shutil.which(PROGRAM):
        raise SystemExit(f"there is no {PROGRAM}: run scripts/setup first")
    with tempfile.TemporaryDirectory() as profile:
        one = Browser(profile)
        try:
            yield one
        finally:
            one.close()
