#!/usr/bin/env python3
"""End-to-end checks of the real Tarnwick executable, driven from outside as a user would.

Each scenario copies the executable into a fresh application folder with the sample
catalogue, starts it under its own Xvfb display and D-Bus session, drives it through its
window title, control names, menus, keys and message boxes, and checks what it shows and the
files it leaves behind.

    tarnwick_e2e.py --driver DIR --program PATH --sample FILE [--source DIR] SCENARIO

Ends with the line "N passed, N failed".
"""
import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

from e2e_waits import run_while_answering, tick_wait_seconds  # beside this script

FIELD_END = b"\x7f\x7f\x7f"


def parse_args():
    p = argparse.ArgumentParser()
    p.add_argument("--driver", required=True, help="folder of tw_driver.py")
    p.add_argument("--program", required=True, help="the tarnwick executable")
    p.add_argument("--sample", required=True, help="the sample twdata.dat")
    p.add_argument("--source", help="the source folder (project version, help contents)")
    p.add_argument("scenario")
    return p.parse_args()


def check(condition, message):
    if not condition:
        raise AssertionError(message)


def records(path):
    """The catalogue file as a list of field lists (bytes), one per product."""
    data = open(path, "rb").read()
    # A line that starts with the end-of-file mark ends the file (the recovery file's check).
    if data.startswith(b"\x1a"):
        data = b""
    elif b"\n\x1a" in data:
        data = data[:data.index(b"\n\x1a") + 1]
    out = []
    for line in data.split(FIELD_END + b"\r\n"):
        if line:
            out.append(line.split(FIELD_END))
    return out


def wait_for(fn, timeout, what):
    deadline = time.time() + timeout
    last = None
    while time.time() < deadline:
        try:
            value = fn()
            if value:
                return value
        except Exception as e:  # noqa: BLE001 - keep polling until the deadline
            last = e
        time.sleep(0.1)
    raise AssertionError("timed out waiting for %s (%s)" % (what, last))


def activate_shown(s, title, timeout=15):
    """Activates the program's window `title` once the X server shows it: the accessibility
    bus may tell of a new window a moment before the window is mapped, and a busy machine
    stretches that moment."""
    return wait_for(lambda: s.activate(title), timeout, "the window %r shown" % title)


class Run:
    def __init__(self, args):
        self.args = args
        sys.path.insert(0, args.driver)
        sys.dont_write_bytecode = True
        import tw_driver  # noqa: E402 - the driver lives outside the repository
        self.tw = tw_driver
        self.tmp = tempfile.mkdtemp(prefix="tarnwick-e2e-")
        self.app = os.path.join(self.tmp, "app")
        os.makedirs(self.app)
        shutil.copy(args.sample, os.path.join(self.app, "twdata.dat"))
        self.home = os.path.join(self.tmp, "home")
        os.makedirs(self.home)

    def start(self, env=None, title="Tarnwick", wait_grid=True):
        s = self.tw.start(self.args.program, app_folder=self.app, title=title, home=self.home,
                          env=env or {"LANG": "C.UTF-8"})
        if wait_grid:
            try:
                self.wait_grid(s)
            except BaseException:
                s.stop()  # the program and its X server do not outlive a failed start
                raise
        return s

    @staticmethod
    def wait_grid(s):
        # The splash carries the title too: the main window is there once its grid answers.
        return wait_for(lambda: s.read_table("GrdMain"), 20, "the product grid")

    def catalogue(self):
        return os.path.join(self.app, "twdata.dat")

    def sample_bytes(self):
        return open(self.args.sample, "rb").read()

    def settings_file(self):
        return os.path.join(self.home, ".config", "Tarnwick", "settings.ini")


def check_clean_exit(session):
    """Closes the main window and expects exit code 0; otherwise the failure shows the exit
    code and the end of the program's own output (a sanitizer report, a Qt warning)."""
    code = session.close()
    if code != 0:
        try:
            with open(session.app_log, "rb") as f:
                tail = f.read()[-4000:].decode(errors="replace")
        except OSError as e:
            tail = "(no program output: %s)" % e
        raise AssertionError("the program exits cleanly: exit code %r; its output ends:\n%s"
                             % (code, tail))


def scenario_roundtrip(run):
    """Starting and closing writes the catalogue back byte for byte and saves the settings."""
    s = run.start()
    try:
        rows = s.read_table("GrdMain")
        check(len(rows) == len(records(run.args.sample)), "every product is in the grid")
        check_clean_exit(s)
    finally:
        s.stop()
    check(open(run.catalogue(), "rb").read() == run.sample_bytes(), "catalogue unchanged")
    check(os.path.exists(run.settings_file()), "settings saved at close")


def scenario_typing(run):
    """A new product typed at full speed right after clicking lands in its own cells."""
    s = run.start()
    try:
        before = s.read_table("GrdMain")
        s.click_cell("GrdMain", 2, 0)
        s.menu("&Products/&Add")
        wait_for(lambda: s.read_table("GrdMain")[2][0] == "", 5, "the empty new row")
        s.click_cell("GrdMain", 2, 0)
        s.type_keys("W-250\tNew Widget\n", delay=5)
        s.type_text("TxtPrice", "12.50")
        s.toolbar("Edit")
        rows = wait_for(lambda: [r for r in s.read_table("GrdMain") if r[0] == "W-250"], 5,
                        "the typed product in the grid")
        check(rows[0][1] == "New Widget", "name typed into its own cell: %r" % rows[0])
        after = s.read_table("GrdMain")
        check([r[0] for r in after if r[0] != "W-250"] == [r[0] for r in before],
              "no other product's part number changed")
        check_clean_exit(s)
    finally:
        s.stop()
    saved = [r for r in records(run.catalogue()) if r[0] == b"W-250"]
    check(len(saved) == 1, "the new product is saved once")
    check(saved[0][1] == b"New Widget" and saved[0][2] == b"12.5", "saved fields: %r" % saved)


# Types a text and clicks where the pointer is, through one X connection in one flush: the
# keys and the click reach the program as fast as the X server can hand them over.
TYPE_THEN_CLICK = r"""
import sys
from Xlib import X, XK, display
from Xlib.ext import xtest
d = display.Display()
shift = d.keysym_to_keycode(XK.XK_Shift_L)
for ch in sys.argv[1]:
    code = d.keysym_to_keycode(XK.XK_space if ch == " " else XK.string_to_keysym(ch))
    if ch.isupper():
        xtest.fake_input(d, X.KeyPress, shift)
    xtest.fake_input(d, X.KeyPress, code)
    xtest.fake_input(d, X.KeyRelease, code)
    if ch.isupper():
        xtest.fake_input(d, X.KeyRelease, shift)
xtest.fake_input(d, X.ButtonPress, 1)
xtest.fake_input(d, X.ButtonRelease, 1)
d.sync()
"""


def type_then_click(s, text):
    """Types text at full speed and clicks where the pointer is, all in one go."""
    # Debian's python3 has python3-xlib, as the driver's own helper needs it.
    python = os.environ.get("TW_DRIVER_PYTHON") or "/usr/bin/python3"
    env = dict(os.environ, DISPLAY=s.display)
    env.pop("XAUTHORITY", None)
    subprocess.run([python, "-c", TYPE_THEN_CLICK, text], env=env, check=True, timeout=30)


def catalogue_record(fields):
    return b"".join(f + FIELD_END for f in fields + [b""] * (15 - len(fields))) + b"\r\n"


def scenario_order(run):
    """A name typed at full speed and a click on another row right after: the keys belong to the
    product typed in (all of them, or the ones before the click), the row clicked is unchanged."""
    products = [[b"TW-%d00" % n, b"Widget %d" % n, b"%d.5" % n] for n in range(1, 6)]
    with open(run.catalogue(), "wb") as f:
        f.write(b"".join(catalogue_record(p) for p in products))
    typed = "Widget Beta"
    s = run.start()
    try:
        before = s.read_table("GrdMain")
        check([r[0] for r in before] == [p[0].decode() for p in products], "rows: %r" % before)
        s.toolbar("Edit")
        check(s.is_checked("Edit"), "edit mode")
        s.click_cell("GrdMain", 1, 1)  # TW-200's name
        s.hover(table="GrdMain", cell=(3, 0))  # TW-400's row, clicked right after the keys
        s.activate(timeout=15)
        type_then_click(s, typed)
        s.toolbar("Edit")  # stores the cell being edited
        wait_for(lambda: not s.is_checked("Edit"), 5, "the end of edit mode")
        after = s.read_table("GrdMain")
        name = after[1][1]
        check(after[1][0] == "TW-200", "TW-200 keeps its part number: %r" % after[1])
        check(name and typed.startswith(name), "TW-200's name is what was typed: %r" % name)
        check(after[3] == before[3], "TW-400 unchanged: %r" % after[3])
        check([after[i] for i in (0, 2, 4)] == [before[i] for i in (0, 2, 4)],
              "the other rows unchanged: %r" % after)

        # The same with xdotool: the keys, then the click from a second X client at once.
        again = "Gadget Gamma"
        s.toolbar("Edit")
        s.click_cell("GrdMain", 2, 1)  # TW-300's name
        s.hover(table="GrdMain", cell=(0, 0))  # TW-100's row
        s.activate(timeout=15)
        s.xdotool("type", "--delay", "0", again)
        s.xdotool("click", "1")
        s.toolbar("Edit")
        wait_for(lambda: not s.is_checked("Edit"), 5, "the end of edit mode")
        last = s.read_table("GrdMain")
        name3 = last[2][1]
        check(name3 and again.startswith(name3), "TW-300's name is what was typed: %r" % name3)
        check(last[0] == before[0], "TW-100 unchanged: %r" % last[0])
        check([last[i] for i in (1, 3, 4)] == [after[i] for i in (1, 3, 4)],
              "the other rows unchanged: %r" % last)
        check_clean_exit(s)
    finally:
        s.stop()
    saved = records(run.catalogue())
    check([r[0] for r in saved] == [p[0] for p in products], "part numbers saved: %r" % saved)
    check(saved[1][1] == name.encode(), "TW-200's name saved: %r" % saved[1])
    check(saved[2][1] == name3.encode(), "TW-300's name saved: %r" % saved[2])
    check(saved[0][:3] == products[0], "TW-100 saved unchanged: %r" % saved[0])
    check(saved[3][:3] == products[3], "TW-400 saved unchanged: %r" % saved[3])


def scenario_quote(run):
    """Add to Quote leaves the Quantity cell current; a quantity typed at once re-prices."""
    s = run.start()
    try:
        s.click_cell("GrdMain", 0, 0)
        s.context_menu("GrdMain", "Add to &Quote", cell=(0, 0))
        s.type_keys("10\n", delay=5)
        line = wait_for(lambda: s.read_table("GrdQuote")[0], 5, "the quote line")
        check(line[0] == "BV-1050", "part number kept: %r" % line)
        check(line[3] == "10", "quantity typed after Add to Quote: %r" % line)
        s.click_cell("GrdQuote", 0, 3)
        s.type_keys("25\n", delay=5)
        line = wait_for(lambda: s.read_table("GrdQuote")[0], 5, "the quote line")
        check(line[3] == "25", "quantity typed right after a click: %r" % line)
        check(line[2] == "$10.95" and line[4] == "$273.75", "re-priced at 25: %r" % line)
        check_clean_exit(s)
    finally:
        s.stop()


def scenario_password(run):
    """While the password is asked, no main window shows the catalogue."""
    os.makedirs(os.path.dirname(run.settings_file()), exist_ok=True)
    with open(run.settings_file(), "w") as f:
        f.write("[Settings]\nUserPassword=abc\n")
    s = run.start(title="Enter user password", wait_grid=False)
    try:
        # The prompt is up (start waited for it). The window used to appear behind it once the
        # splash's tick wait was over: look for it while the program answers, until it has
        # run its event loop for twice that wait.
        def main_window_shown():
            return [w for w in s.windows() if w["showing"] and w["title"] == "Tarnwick"
                    and w["role"] == "frame"]
        shown = run_while_answering(s, 2 * tick_wait_seconds(run.args.source), main_window_shown)
        check(not shown, "no main window while the prompt is up: %r" % shown)
        activate_shown(s, "Enter user password")
        s.type_keys("abc\n", delay=5)
        run.wait_grid(s)
        check_clean_exit(s)
    finally:
        s.stop()
    # the clear password typed into the file has been replaced by its hash
    with open(run.settings_file()) as f:
        stored = f.read()
    check("$argon2id$" in stored and "UserPassword=abc" not in stored,
          "the password is kept as a hash: %r" % stored)
    # a wrong answer ends the program and writes nothing
    os.remove(run.catalogue())
    shutil.copy(run.args.sample, run.catalogue())
    before = os.stat(run.catalogue()).st_mtime_ns
    s = run.start(title="Enter user password", wait_grid=False)
    try:
        activate_shown(s, "Enter user password")
        s.type_keys("ABC\n", delay=5)
        s.wait_exit(10)
    finally:
        s.stop()
    check(os.stat(run.catalogue()).st_mtime_ns == before, "a wrong password writes nothing")


def scenario_locale(run):
    """A catalogue closed under a German locale reads back unchanged under English."""
    s = run.start(env={"LANG": "de_DE.UTF-8", "LC_ALL": "de_DE.UTF-8"})
    try:
        first = s.read_table("GrdMain")[0]
        check(first[2] == "12,85\u00a0€", "German currency shown: %r" % first[2])
        check_clean_exit(s)
    finally:
        s.stop()
    check(open(run.catalogue(), "rb").read() == run.sample_bytes(),
          "catalogue byte-identical after a German session")
    s = run.start(env={"LANG": "C.UTF-8", "LC_ALL": None})
    try:
        check(s.read_table("GrdMain")[0][2] == "$12.85", "price read back in English")
        check_clean_exit(s)
    finally:
        s.stop()
    check(open(run.catalogue(), "rb").read() == run.sample_bytes(),
          "catalogue byte-identical after an English session")

EXPORT_HEADER = ("Part Number\tProduct Name\tPrice\tNotes\tIncludes\tPrice Point 1\tPrice 1\t"
                 "Price Point 2\tPrice 2\tPrice Point 3\tPrice 3\tPrice Point 4\tPrice 4\t"
                 "Price Point 5\tPrice 5\r\n").encode("ascii")


def export_line(record):
    """The export line of one catalogue record under an English locale: the list price in the
    currency form, every other field as stored."""
    price = "${:,.2f}".format(float(record[2])).encode("ascii")
    return b"\t".join([record[0], record[1], price] + record[3:]) + b"\r\n"


def choose_file(s, title, path):
    """Types a full path into the file name box of the program's file dialog and accepts it."""
    s.wait_for_window(title, timeout=15)
    s.key("ctrl+a", window=title)
    s.type_keys(path + "\n", window=title, delay=5)
    s.wait_window_gone(title, timeout=15)


def open_import_window(s, path):
    """File → Open..., Yes, the workbook chosen in the open dialog: the "Update" window."""
    s.menu("&File/&Open...")
    box = s.answer_next_box("Yes", title="Input Excel Data")
    check(box.text == "Do you want to get products from an Excel Spreadsheet?",
          "import question: %r" % (box,))
    choose_file(s, "Open", path)
    s.wait_for_window("Update", timeout=15)
    activate_shown(s, "Update")


def project_version(run):
    """The CMake project version, which the About box shows."""
    text = open(os.path.join(run.args.source, "CMakeLists.txt"), encoding="utf-8").read()
    found = re.search(r"project\(\s*Tarnwick\s+VERSION\s+([0-9.]+)", text)
    check(found, "the project version in CMakeLists.txt")
    return found.group(1)


def scenario_exchange(run):
    """Export through the toolbar and the file menu's Close writes every product as tab-separated
    text; the export, edited to carry new part numbers, imports back through "Update" and the new
    products are saved at close while the existing ones stay as they were."""
    sample = records(run.args.sample)
    expected = EXPORT_HEADER + b"".join(export_line(r) for r in sample)
    by_toolbar = os.path.join(run.tmp, "out.xls")
    by_menu = os.path.join(run.tmp, "out.txt")
    edited = os.path.join(run.tmp, "edited.txt")
    s = run.start()
    try:
        s.toolbar("Export")
        box = s.answer_next_box("Yes", title="Export to File")
        check(box.text == "Do you want to export the products to an Excel readable file?",
              "toolbar question: %r" % (box,))
        check(box.style == 324, "Yes/No, information icon, No the default: %r" % box.style)
        choose_file(s, "Save As", by_toolbar)
        wait_for(lambda: os.path.exists(by_toolbar), 10, "the file exported by the toolbar")

        s.menu("&File/&Close")
        box = s.answer_next_box("Yes", title="Export to File")
        check(box.text == "Do you want to save the current products to an Excel file?",
              "Close question: %r" % (box,))
        choose_file(s, "Save As", by_menu)
        wait_for(lambda: os.path.exists(by_menu), 10, "the file exported by the file menu")

        exported = open(by_toolbar, "rb").read()
        check(exported.startswith(EXPORT_HEADER), "header line: %r" % exported[:200])
        # A note of several lines keeps its line breaks, so a product's line may go on below.
        parts = [r[0] for r in sample]
        lines = exported[len(EXPORT_HEADER):].split(b"\r\n")
        starts = [line.split(b"\t", 1)[0] for line in lines]
        check([p for p in starts if p in parts] == parts, "one line per product, in order: %r"
              % starts)
        check(exported == expected, "every field as stored, the price in currency form")
        check(open(by_menu, "rb").read() == exported, "Close exports what Export does")

        # The user edits the export in a spreadsheet: products whose texts fit on one line get
        # a new part number each, and one existing part number comes with another name.
        single = [r for r in sample if not any(b"\r" in f or b"\n" in f for f in r)]
        check(len(single) >= 5, "the sample has one-line products")
        added = [[r[0] + b"-2"] + r[1:] for r in single]
        with open(edited, "wb") as f:
            f.write(EXPORT_HEADER)
            f.write(b"".join(export_line(r) for r in added))
            f.write(export_line([sample[1][0], b"Changed name"] + sample[1][2:]))

        open_import_window(s, edited)
        s.key("alt+p", "Down", "alt+n", "Down", "Down", "alt+o", "Down", "Down", "Down", "Down",
              window="Update")
        for name, entry in (("CmbField(0)", "Col 0-  Part Number"),
                            ("CmbField(1)", "Col 1-  Product Name"),
                            ("CmbField(7)", "Col 3-  Notes")):
            shown = wait_for(lambda: s.read_text(name, window="Update") == entry, 15,
                             "%s at %r" % (name, entry))
            check(shown, "%s mapped" % name)
        s.key("Return", window="Update")
        box = s.answer_next_box("OK", title="Success!", timeout=30)
        check(box.text == "%d changes have been made to the knowledge base. 1 row was skipped "
              "because its part number already exists." % len(added),
              "import result: %r" % (box,))
        s.wait_window_gone("Update", timeout=15)
        rows = wait_for(lambda: [r for r in s.read_table("GrdMain") if r[0]], 10, "the grid")
        check(len(rows) == len(sample) + len(added), "the grid shows %d products" % len(rows))
        check_clean_exit(s)
    finally:
        s.stop()
    saved = records(run.catalogue())
    check(len(saved) == len(sample) + len(added), "%d products saved" % len(saved))
    check([r for r in saved if r in sample] == sample,
          "the existing products are saved unchanged, in order")
    for new in added:
        found = [r for r in saved if r[0] == new[0]]
        check(len(found) == 1, "%r saved once" % new[0])
        want = [new[0], new[1], b"", new[3]] + [b""] * 11
        check(found[0] == want, "mapped fields of %r: %r" % (new[0], found[0]))


def peak_memory_kb(pid):
    """The peak resident memory of a running process (VmHWM), in kilobytes."""
    with open("/proc/%d/status" % pid) as f:
        for line in f:
            if line.startswith("VmHWM:"):
                return int(line.split()[1])
    return 0


def reading_window(s):
    """True while the window that shows the reading of a workbook is there."""
    try:
        return "showing" in s.widget("CmdCancelRead")["states"]
    except Exception:  # noqa: BLE001 - not found: the window is gone
        return False


def scenario_hostile(run):
    """Workbooks made to hurt a reader (an Excel 97 file that crashes its reader, zip headers that
    claim 4 GB, a zip bomb, a row of 16,384 cells repeated a million times) cannot take the
    program down: each ends in the message that
    the file is no workbook, or in its columns, within seconds; the program stays, and a product
    typed before is still there and saved at close."""
    sys.path.insert(0, os.path.join(run.args.source, "tests", "exchange"))
    import make_hostile_workbooks  # noqa: E402 - beside the exchange tests
    folder = os.path.join(run.tmp, "hostile")
    names = ["crash.xls", "claims-4gb.xlsx", "bomb.xlsx", "repeat.ods"]
    os.makedirs(folder)
    for name in names:
        make_hostile_workbooks.MAKERS[name](os.path.join(folder, name))
    s = run.start()
    try:
        s.click_cell("GrdMain", 2, 0)
        s.menu("&Products/&Add")
        wait_for(lambda: s.read_table("GrdMain")[2][0] == "", 5, "the empty new row")
        s.click_cell("GrdMain", 2, 0)
        s.type_keys("W-250\tTyped before\n", delay=5)
        wait_for(lambda: [r for r in s.read_table("GrdMain") if r[0] == "W-250"], 5,
                 "the typed product in the grid")
        for name in names:
            s.menu("&File/&Open...")
            s.answer_next_box("Yes", title="Input Excel Data")
            started = time.monotonic()
            choose_file(s, "Open", os.path.join(folder, name))
            ended = wait_for(lambda: [w["title"] for w in s.windows()
                                      if w["title"].startswith("Error ") or w["title"] == "Update"],
                             60, "the message or the Update window after %s" % name)
            seconds = time.monotonic() - started
            if ended[0].startswith("Error "):
                box = s.answer_next_box("OK", title=ended[0])
                check(box.text == "This file is not an Excel 97 file.", "message: %r" % (box,))
            print("%-16s %-10s %5.1f s to the message, program peak %d MB"
                  % (name, ended[0], seconds, peak_memory_kb(s.pid) // 1024))
            s.wait_for_window("Update", timeout=15)
            s.key("Escape", window="Update")
            s.wait_window_gone("Update", timeout=15)
            check(s.running(), "the program is still there after %s" % name)
        # A workbook that takes a while shows the reading window; its Cancel stops the read.
        # A named pipe nobody writes to is such a file (as one on a share that does not
        # answer): the reader waits for it until it is stopped, however fast it reads.
        slow = os.path.join(folder, "slow.ods")
        os.mkfifo(slow)
        s.menu("&File/&Open...")
        s.answer_next_box("Yes", title="Input Excel Data")
        choose_file(s, "Open", slow)
        wait_for(lambda: reading_window(s), 10, "the reading window")
        started = time.monotonic()
        s.press("CmdCancelRead", how="click")
        wait_for(lambda: not reading_window(s), 10, "the reading window gone")
        print("%-16s %-10s %5.1f s from Cancel to the window gone"
              % ("slow.ods", "Cancel", time.monotonic() - started))
        titles = [w["title"] for w in s.windows()]
        check(not [t for t in titles if t.startswith("Error ") or t == "Update"],
              "nothing opens after Cancel: %r" % titles)
        rows = s.read_table("GrdMain")
        check([r for r in rows if r[0] == "W-250" and r[1] == "Typed before"],
              "the product typed before is still in the grid")
        check_clean_exit(s)
    finally:
        s.stop()
    saved = [r for r in records(run.catalogue()) if r[0] == b"W-250"]
    check(len(saved) == 1 and saved[0][1] == b"Typed before", "saved at close: %r" % saved)


def scenario_help(run):
    """Help → Contents opens the manual at its first page, F1 in "Update" turns the same help
    window to the import page, and the About box shows the build's version."""
    version = project_version(run)
    workbook = os.path.join(run.tmp, "workbook.txt")
    with open(workbook, "wb") as f:
        f.write(b"Part Number\tProduct Name\r\nHX-1\tHelp test\r\n")
    s = run.start()
    try:
        s.menu("&Help/&Contents")
        s.wait_for_window("Tarnwick Help - Welcome to Tarnwick", timeout=15)

        activate_shown(s, "Tarnwick")
        s.menu("&Help/&About Tarnwick")
        box = s.answer_next_box("OK", title="About Tarnwick", icon=False)
        check("Version " + version in box.texts, "About box texts: %r" % (box.texts,))
        check("Tarnwick" in box.texts, "About box names the program: %r" % (box.texts,))

        activate_shown(s, "Tarnwick")
        open_import_window(s, workbook)
        s.key("F1", window="Update")
        s.wait_for_window("Tarnwick Help - Importing products from a spreadsheet", timeout=15)
        helps = [w for w in s.windows() if w["showing"] and w["title"].startswith("Tarnwick Help")]
        check(len(helps) == 1, "one help window serves both calls: %r" % helps)
        s.key("Escape", window="Update")
        s.wait_window_gone("Update")
        check_clean_exit(s)
    finally:
        s.stop()
    check([r[0] for r in records(run.catalogue())] == [r[0] for r in records(run.args.sample)],
          "a cancelled import adds nothing")


SCENARIOS = {name[len("scenario_"):]: fn for name, fn in globals().items()
             if name.startswith("scenario_")}


def main():
    args = parse_args()
    fn = SCENARIOS.get(args.scenario)
    if fn is None:
        print("unknown scenario %r; known: %s" % (args.scenario, ", ".join(sorted(SCENARIOS))))
        return 2
    run = Run(args)
    try:
        fn(run)
    except Exception as e:  # noqa: BLE001 - report and fail
        print("FAIL %s: %s: %s" % (args.scenario, type(e).__name__, e))
        print("0 passed, 1 failed")
        return 1
    finally:
        shutil.rmtree(run.tmp, ignore_errors=True)
    print("ok   %s" % args.scenario)
    print("1 passed, 0 failed")
    return 0


if __name__ == "__main__":
    sys.exit(main())
