"""Waits of the end-to-end checks that count the program's own time, not the clock's: a check
that something does not happen holds only once the program has had the time to do it."""
import os
import re
import time


def tick_wait_seconds(source):
    """The splash's tick wait, from the program's own constants (15 ticks of 100 ms)."""
    ticks, milliseconds = 15, 100
    if source:
        with open(os.path.join(source, "src", "shell", "frmsplash1.h")) as f:
            text = f.read()
        ticks = int(re.search(r"TicksToWait = (\d+)", text).group(1))
        milliseconds = int(re.search(r"DefaultTickMilliseconds = (\d+)", text).group(1))
    return ticks * milliseconds / 1000.0


def run_while_answering(session, seconds, look):
    """Calls look() over and over until the program has answered for `seconds` of its own
    time, and returns the first true answer (or the last, false one). Each look is answered
    by the program's event loop over the accessibility bus; only the time between two looks
    answered promptly counts, so a machine too busy to run the program makes the wait
    longer instead of letting it pass without the program having run."""
    answered = 0.0
    last = time.time()
    result = look()
    while not result and answered < seconds:
        result = look()
        now = time.time()
        if now - last < 0.5:
            answered += now - last
        last = now
    return result
