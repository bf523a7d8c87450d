#!/usr/bin/env python3
"""Runs one acceptance script in a host, in surroundings of its own, and judges the report.

utilsdll_add_acceptance_test() makes a test of it. The status is 0 if the test has passed, else 1.
"""

import argparse
import ctypes
import os
import pathlib
import shlex
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import zlib

ON_LINUX = sys.platform.startswith("linux")
TIME_OUT_LINE = "running is timed out"  # what the library writes into the report
SAMPLE_PERIOD = 0.5  # of the display's last picture, for hosts that crash


class Unusable(Exception):
    """Something that the test needs is missing; the text says what."""


class Stopped(Exception):
    """Somebody ends the whole test run."""


def set_process_option(option, value):
    if ON_LINUX:
        ctypes.CDLL(None, use_errno=True).prctl(option, value, 0, 0, 0)


def adopt_orphans():
    """What the host starts and leaves behind becomes ours, so that it can be ended."""
    PR_SET_CHILD_SUBREAPER = 36
    set_process_option(PR_SET_CHILD_SUBREAPER, 1)


def ended_with_parent(number):
    """For a process that is about to be started: the signal it gets if this one is killed."""
    PR_SET_PDEATHSIG = 1
    return lambda: set_process_option(PR_SET_PDEATHSIG, number)


def descendants():
    """All processes below this one, as far as the system tells."""
    children = {}
    for entry in filter(str.isdigit, os.listdir("/proc") if ON_LINUX else []):
        try:
            with open(f"/proc/{entry}/stat", "rb") as file:
                fields = file.read().rpartition(b")")[2].split()
        except OSError:
            continue
        if fields and fields[0] != b"Z":
            children.setdefault(int(fields[1]), []).append(int(entry))
    found, open_ends = [], [os.getpid()]
    while open_ends:
        below = children.get(open_ends.pop(), [])
        found += below
        open_ends += below
    return found


def end_descendants():
    """Ends everything that is left, until nothing is."""
    deadline = time.monotonic() + 10
    while time.monotonic() < deadline:
        left = descendants()
        for process in left:
            try:
                os.kill(process, signal.SIGKILL)
            except ProcessLookupError:
                pass
        if not left:
            return
        time.sleep(0.02)


def png(width, height, rows):
    """A PNG file of RGB rows."""

    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data
                + struct.pack(">I", zlib.crc32(kind + data)))

    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    pixels = zlib.compress(b"".join(b"\0" + row for row in rows), 6)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels)
            + chunk(b"IEND", b""))


def picture_of_frame(frame):
    """The PNG file of an X server's frame buffer, which is an X window dump."""
    header = struct.unpack_from(">25I", frame)
    (header_size, version, _, _, width, height, _, byte_order, _, _, _, bits_per_pixel,
     bytes_per_line) = header[:13]
    if version != 7 or bits_per_pixel != 32:
        return None
    start = header_size + header[19] * 12  # behind the colour map
    red, green, blue = (2, 1, 0) if byte_order == 0 else (1, 2, 3)
    rows = []
    for y in range(height):
        line = frame[start + y * bytes_per_line:start + y * bytes_per_line + width * 4]
        row = bytearray(width * 3)
        row[0::3], row[1::3], row[2::3] = line[red::4], line[green::4], line[blue::4]
        rows.append(row)
    return png(width, height, rows)


class Surroundings:
    """Home, temporary folder, session bus and display of one test."""

    def __init__(self, home, platform, screen, plugins):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="acceptance."))
        self.home = home
        self.platform = platform
        self.screen = screen
        self.failure_picture = self.root / "failure.png"
        self.notes = []
        self.environment = dict(os.environ)
        for folder in ("tmp", "fb"):
            (self.root / folder).mkdir()
        (self.root / "run").mkdir(mode=0o700)
        self._helpers = []
        self._plugins = plugins

    def start(self):
        home = self.home
        environment = self.environment
        for name in ("LANGUAGE", "QT_SCALE_FACTOR", "QT_STYLE_OVERRIDE", "QT_QPA_PLATFORMTHEME",
                     "XDG_CURRENT_DESKTOP", "XDG_SESSION_TYPE"):
            environment.pop(name, None)
        environment.update(HOME=str(home), LC_ALL="C.UTF-8", TZ="UTC")
        for name, folder in (("XDG_CONFIG_HOME", ".config"), ("XDG_DATA_HOME", ".local/share"),
                             ("XDG_CACHE_HOME", ".cache"), ("XDG_STATE_HOME", ".local/state")):
            (home / folder).mkdir(parents=True)
            environment[name] = str(home / folder)
        environment["XDG_RUNTIME_DIR"] = str(self.root / "run")
        for name in ("TMPDIR", "TMP", "TEMP"):
            environment[name] = str(self.root / "tmp")
        if self._plugins:
            environment["QT_PLUGIN_PATH"] = os.pathsep.join(
                filter(None, [self._plugins, environment.get("QT_PLUGIN_PATH")]))
            environment["QT_QPA_GENERIC_PLUGINS"] = f"vekfailurepicture:{self.failure_picture}"

        if self.platform != "native":
            for name in ("DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY"):
                environment.pop(name, None)
            environment["QT_QPA_PLATFORM"] = "xcb" if self.platform == "x11" else "offscreen"
        if self.platform == "x11":
            self._start_display()
        if ON_LINUX:
            self._start_bus()
            self._make_password_entry()  # last: what is started above needs none

    def _helper(self, name, command, **options):
        with open(self.root / f"{name}.log", "wb") as log:
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                       env=self.environment, cwd=self.root,
                                       start_new_session=True,
                                       preexec_fn=ended_with_parent(signal.SIGTERM), **options)
        self._helpers.append(process)
        return process

    def _complaint(self, name):
        lines = (self.root / f"{name}.log").read_text(errors="replace").strip().splitlines()
        return f"{name} did not start: {lines[-1] if lines else 'it says nothing'}"

    def _first_line(self, name, command):
        """Starts a helper that tells something through a pipe, whose number is appended."""
        reading, writing = os.pipe()
        self._helper(name, [part.replace("@FD@", str(writing)) for part in command],
                     pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as pipe:
            line = pipe.readline().strip()
        if not line:
            raise Unusable(self._complaint(name))
        return line

    def _start_display(self):
        if not shutil.which("Xvfb"):
            raise Unusable("Xvfb is missing: install xvfb, or use the platform OFFSCREEN")
        number = self._first_line("Xvfb", [
            "Xvfb", "-displayfd", "@FD@", "-screen", "0", f"{self.screen}x24", "-nolisten", "tcp",
            "-noreset", "-fbdir", str(self.root / "fb")])
        self.environment["DISPLAY"] = f":{number}"
        if not shutil.which("openbox"):
            self.notes.append("no window manager: openbox is not installed")
            return
        # It announces itself before it takes windows; what it starts, it starts when it is ready.
        ready = self.root / "ready"
        command = ["openbox", "--startup", f"touch {shlex.quote(str(ready))}"]
        if os.path.exists("/etc/xdg/openbox/rc.xml"):
            command += ["--config-file", "/etc/xdg/openbox/rc.xml"]
        process = self._helper("openbox", command)
        deadline = time.monotonic() + 60
        while not ready.exists():
            if process.poll() is not None or time.monotonic() > deadline:
                raise Unusable(self._complaint("openbox"))
            time.sleep(0.02)

    def _start_bus(self):
        if shutil.which("dbus-daemon"):
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._first_line("dbus-daemon", [
                "dbus-daemon", "--session", "--nofork", "--print-address=@FD@"])
        else:
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:"
            self.notes.append("no session bus: dbus-daemon is not installed")

    def _make_password_entry(self):
        """Some of a host's folders are those of the password database."""
        library = "libnss_wrapper.so"
        try:
            # In a process of its own, as the wrapper stays where it was loaded.
            subprocess.run([sys.executable, "-c", f"import ctypes; ctypes.CDLL('{library}')"],
                           check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        except subprocess.CalledProcessError:
            raise Unusable(f"{library} is missing: install libnss-wrapper") from None
        passwd, group = self.root / "passwd", self.root / "group"
        passwd.write_text(f"tester:x:{os.getuid()}:{os.getgid()}:Tester:{self.home}:/bin/sh\n")
        group.write_text(f"testers:x:{os.getgid()}:\n")
        self.environment.update(
            NSS_WRAPPER_PASSWD=str(passwd), NSS_WRAPPER_GROUP=str(group),
            NSS_WRAPPER_DISABLE_DEEPBIND="1",  # which the sanitizers refuse
            LD_PRELOAD=library)

    def look(self):
        """The display's frame buffer."""
        try:
            return (self.root / "fb" / "Xvfb_screen0").read_bytes()
        except OSError:
            return b""

    def picture(self, frame):
        """A PNG file of the display: of the failure, else of FRAME."""
        try:
            return self.failure_picture.read_bytes()
        except OSError:
            return picture_of_frame(frame) if frame else None

    def end(self):
        for process in reversed(self._helpers):
            process.terminate()
        for process in self._helpers:
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                process.kill()
        end_descendants()
        make_removable(self.root)
        shutil.rmtree(self.root)


class Run:
    """The host's process, from its start to its end."""

    def __init__(self, command, report, surroundings, output, deadline):
        self.timed_out = False
        self._report = report
        self._frames = []  # times and frames, the latest last
        with open(output, "wb") as file:
            try:
                self._process = subprocess.Popen(
                    command, stdin=subprocess.DEVNULL, stdout=file, stderr=subprocess.STDOUT,
                    env=surroundings.environment, cwd=report.parent, start_new_session=True,
                    preexec_fn=ended_with_parent(signal.SIGKILL))
            except OSError as error:
                raise Unusable(f"the host {command[0]} can't be started: {error.strerror}") from None
        self._wait(surroundings, deadline)
        self._ended = time.monotonic()
        self.status = self._process.returncode

    def _wait(self, surroundings, deadline):
        while True:
            try:
                self._process.wait(max(0, min(SAMPLE_PERIOD, deadline - time.monotonic())))
                return
            except subprocess.TimeoutExpired:
                frame = surroundings.look()
            overdue = time.monotonic() >= deadline
            # Behind the verdict the host may have closed its windows.
            if overdue or not verdict_of(read_lines(self._report) or []):
                self._frames = self._frames[-1:] + [(time.monotonic(), frame)]
            if overdue:
                self.timed_out = self._process.poll() is None
                os.killpg(self._process.pid, signal.SIGKILL)
                self._process.wait()
                return

    def last_frame(self):
        """What the display showed last, while the host was surely there."""
        if not self._frames:
            return b""
        latest, frame = self._frames[-1]
        dying = not self.timed_out and self._ended - latest < 0.1
        return self._frames[0][1] if dying else frame


def verdict_of(lines):
    """PASS, FAIL or nothing. Behind a PASS a time-out only says that the host was still there."""
    if len(lines) > 1 and lines[-1] == TIME_OUT_LINE and lines[-2] == "PASS":
        return "PASS"
    return lines[-1] if lines and lines[-1] in ("PASS", "FAIL") else None


def judge(run, lines, failure_recorded, options):
    """What is wrong with a run, or nothing if the test has passed."""
    if run.timed_out:
        return f"the host did not end within {options.timeout:g} seconds, and was killed"
    if run.status < 0:
        try:
            name = signal.Signals(-run.status).name
        except ValueError:
            name = str(-run.status)
        return f"the host crashed with the signal {name}"
    if lines is None:
        return f"there is no report; the host's exit status is {run.status}"
    verdict = verdict_of(lines)
    if not verdict:
        return f"the report has no verdict; the host's exit status is {run.status}"

    failed = verdict == "FAIL" or (failure_recorded and lines[-1] != TIME_OUT_LINE)
    if not options.will_fail:
        if verdict == "FAIL":
            return "the script failed"
        if failed:
            return "the verdict is PASS, but a failure stands above it"
        if run.status != 0:
            return f"the verdict is PASS, but the host's exit status is {run.status}"
        return None

    if not failed:
        return "the script passed, and was meant to fail"
    if options.fail_reason:
        if not any(options.fail_reason in line for line in lines):
            return f"the script failed, but not for the reason \"{options.fail_reason}\""
    elif TIME_OUT_LINE in lines:
        return "the script was meant to fail, but its time ran out"
    return None


def read_lines(path):
    try:
        return path.read_text(errors="replace").splitlines()
    except OSError:
        return None


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--script", type=pathlib.Path, required=True)
    parser.add_argument("--results", type=pathlib.Path, required=True,
                        help="folder that the script runs in, and of its report; is emptied first")
    parser.add_argument("--timeout", type=float, required=True, help="seconds until the host's end")
    parser.add_argument("--script-timeout", type=float, required=True,
                        help="seconds after which the script fails")
    parser.add_argument("--platform", choices=("x11", "offscreen", "native"), default="x11")
    parser.add_argument("--screen", default="1600x1200")
    parser.add_argument("--plugins", help="folder of the plug-in that takes the failure's picture")
    parser.add_argument("--will-fail", action="store_true")
    parser.add_argument("--fail-reason")
    parser.add_argument("--file", type=pathlib.Path, action="append", default=[],
                        help="file or folder that is copied to the folder of the results")
    parser.add_argument("command", nargs="+", help="host and arguments, with placeholders")
    return parser.parse_args()


def make_removable(folder):
    """A script may have taken rights away."""
    for below, _, _ in os.walk(folder):
        os.chmod(below, os.stat(below).st_mode | 0o700)


def empty_results(results):
    if results.exists():
        make_removable(results)
        shutil.rmtree(results)
    results.mkdir(parents=True)


def clear_results(results, report):
    """Nobody looks for what a test that has passed wrote, but for its report."""
    make_removable(results)
    for entry in results.iterdir():
        if entry.is_dir() and not entry.is_symlink():
            shutil.rmtree(entry)
        elif entry != report:
            entry.unlink()


def run_test(options, surroundings, deadline):
    script = options.results / options.script.name
    try:
        shutil.copyfile(options.script, script)
        defaults = options.script.parent / "DefaultTemporarySettins.ini"
        if defaults.exists():
            shutil.copyfile(defaults, options.results / defaults.name)
        for file in options.file:
            if file.is_dir():
                shutil.copytree(file, options.results / file.name)
            else:
                shutil.copy(file, options.results)
    except OSError as error:
        raise Unusable(f"{error.filename}: {error.strerror}") from None
    surroundings.start()

    values = {"@SCRIPT@": str(script), "@REPORT_DIR@": str(options.results),
              "@TIMEOUT@": str(int(options.script_timeout * 1000))}

    def filled(argument):
        for placeholder, value in values.items():
            argument = argument.replace(placeholder, value)
        return argument

    output = surroundings.root / "output.txt"
    report = options.results / (options.script.stem + "Report.txt")
    run = Run([filled(argument) for argument in options.command], report, surroundings, output,
              deadline)
    lines = read_lines(report)
    complaint = judge(run, lines, surroundings.failure_picture.exists(), options)

    print("\n".join(lines or []))
    said = output.read_text(errors="replace").strip()
    if said:
        print(f"\nWhat the host wrote:\n{said}")
    for note in surroundings.notes:
        print(f"Note: {note}")
    if not complaint:
        clear_results(options.results, report)
    else:
        attach(surroundings.picture(run.last_frame()), options.results / "screenshot.png",
               report if lines is not None else None)
    return complaint


def attach(picture, path, report):
    """Tells where things lie, in the forms that CTest and the readers of JUnit files know."""
    if report:
        print(f"\nReport: {report}")
    if picture:
        path.write_bytes(picture)
        print(f"Screenshot: {path}")
        print(f"[[ATTACHMENT|{path}]]")
        print(f'<CTestMeasurementFile type="image/png" name="screenshot">{path}'
              "</CTestMeasurementFile>")


def stop(number, _):
    raise Stopped(signal.Signals(number).name)


def main():
    sys.stdout.reconfigure(errors="replace")
    options = parse_arguments()
    options.results = options.results.resolve()
    options.script = options.script.resolve()
    deadline = time.monotonic() + options.timeout
    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
        signal.signal(number, stop)
    adopt_orphans()

    surroundings = None
    try:
        empty_results(options.results)
        # On one file system with the script's files, as the trash wants it, and hidden from scripts.
        surroundings = Surroundings(options.results / ".home", options.platform, options.screen,
                                    options.plugins)
        complaint = run_test(options, surroundings, deadline)
    except (Unusable, Stopped) as reason:
        complaint = str(reason)
    finally:
        if surroundings:
            for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
                signal.signal(number, signal.SIG_IGN)
            surroundings.end()
    print(f"\nFAILED: {complaint}" if complaint else "\nPASSED")
    return 1 if complaint else 0


if __name__ == "__main__":
    sys.exit(main())
