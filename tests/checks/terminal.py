"""A real terminal (tmux) for the checks in Python: keys in, the screen out."""
import atexit, os, re, subprocess, time

from checking import ROOT, finish

PATIENCE = 20


def tmux(*arguments):
    return subprocess.run(["tmux", "-u", "-f", "/dev/null", "-S", str(ROOT / "socket"), *arguments], check=True,
                          capture_output=True, text=True, env={**os.environ, "LC_ALL": "C.UTF-8"}).stdout


def open_terminal(*environment):
    """One of 80 columns and 24 lines, with a shell that says "ready> "."""
    atexit.register(subprocess.run, ["tmux", "-S", str(ROOT / "socket"), "kill-server"], capture_output=True)
    tmux("new-session", "-d", "-x", "80", "-y", "24", "-c", str(ROOT), "env", *environment, "PS1=ready> ", "sh")
    see("^ready>", "the shell")


def press(*keys, text=None):
    tmux("send-keys", *(["-l", text] if text is not None else keys))


def screen():
    return tmux("capture-pane", "-p").splitlines()


def see(pattern, what):
    """Waits until the screen shows pattern; gives the screen."""
    end = time.monotonic() + PATIENCE
    while not re.search(pattern, "\n".join(lines := screen()), re.M):
        if time.monotonic() > end:
            finish(f"never seen: {what} ({pattern}); the screen:", *lines)
        time.sleep(0.02)
    return lines
