"""Runs clang-tidy."""
import concurrent.futures
import hashlib
import json
import os
import subprocess

from lib.checkout import BUILD, ROOT, SCRIPTS, sources
from lib.checks import judging_clang
from lib.layout import LEFT_OUT, TIDY

WORK = BUILD / "tidy"
CROSS_COMPILER = "x86_64-w64-mingw32-g++-posix"


def _cross_compiler_headers():
    """The folders with the headers of the cross-compiler's C++ library, which clang does not find by itself."""
    told = subprocess.run([CROSS_COMPILER, "-E", "-x", "c++", "-v", "/dev/null"], check=True, text=True,
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE).stderr
    folders = told.split("#include <...> search starts here:\n")[1].split("End of search list.")[0].split()
    return [folder for folder in folders if "/c++" in folder]


def _options(preset):
    if preset != "windows-test":
        return []
    return ["--extra-arg=--target=x86_64-w64-mingw32", "--extra-arg=-Wno-unknown-attributes",
            *(f"--extra-arg=-isystem{folder}" for folder in _cross_compiler_headers())]


def _digest(names):
    digest = hashlib.sha256()
    for name in names:
        digest.update(f"{name}\n".encode() + (ROOT / name).read_bytes())
    return digest.hexdigest()[:32]


def _write_joint_source(preset, folder, names):
    """Writes a source that includes all sources of a folder, and a command for it: the folder's which defines most."""
    place = WORK / folder
    place.mkdir(parents=True, exist_ok=True)
    joint = place / "all.cpp"
    joint.write_text("".join(f'#include "{name}"  // NOLINT\n' for name in names))
    commands = json.loads((BUILD / preset / "compile_commands.json").read_text())
    command = max((command for command in commands if f" -o {folder}/" in command["command"]),
                  key=lambda command: command["command"].count(" -D"))
    command["command"] = command["command"].replace(command["file"], str(joint))
    command["file"] = str(joint)
    (place / "compile_commands.json").write_text(json.dumps([command]))
    return joint


def _check_folder(folder, preset):
    """Checks all sources of a folder together: most of the time goes into the headers that they share.

    Remembers what passed by the content of the sources, all headers and .clang-tidy.
    """
    names = sources(f"{folder}/*.cpp", *LEFT_OUT[preset])
    mark = WORK / _digest([".clang-tidy", *sources("*.h"), *names])
    if mark.exists():
        return []
    joint = _write_joint_source(preset, folder, names)
    judged = subprocess.run(["clang-tidy", "--quiet", "-p", joint.parent, *_options(preset), joint], cwd=ROOT,
                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False)
    if judged.returncode != 0:
        return [f"clang-tidy complains about {folder}:\n{judged.stdout}"]
    mark.touch()
    return []


def check():
    if not judging_clang.is_here("clang-tidy"):
        return []
    for preset in sorted(set(TIDY.values())):
        if not (BUILD / preset / "compile_commands.json").exists():
            subprocess.run([SCRIPTS / "build", preset, "help"], stdout=subprocess.DEVNULL, check=True)
    WORK.mkdir(parents=True, exist_ok=True)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return [fault for faults in pool.map(_check_folder, TIDY, TIDY.values()) for fault in faults]
