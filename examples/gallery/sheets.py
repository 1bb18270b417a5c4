"""Contact sheets for the gallery's page: image files of every format that can be read."""

import os
import shutil
import subprocess

PER_SHEET = 40


def spread(files):
    """At most PER_SHEET of the files, from all over the list."""
    return files[::len(files) // PER_SHEET + 1]


def installed_pngs(themes):
    return spread(sorted(
        os.path.join(folder, name) for theme in themes for folder, _, names in os.walk(theme)
        for name in names if name.endswith(".png") and "symbolic" not in name))


def run(*command):
    done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)
    if done.returncode != 0:
        raise RuntimeError("%s: %s" % (" ".join(command[:2]), done.stderr.decode("utf-8", "replace")))


def converted(drawings, folder, ending, *command):
    """The drawings in another format: `command` takes the target and the source at its end."""
    files = []
    for number, drawing in enumerate(drawings):
        files.append(os.path.join(folder, "%d%s" % (number, ending)))
        run(*[word.format(target=files[-1], source=drawing) for word in command])
    return files


def make(program, themes, drawings, out):
    """Pairs of a sheet's title and its file below `out`; sheets without inputs are left out."""
    folder = os.path.join(out, "sheets")
    os.makedirs(folder, exist_ok=True)
    drawings = spread(drawings)
    inputs = [
        ("png", "PNG: the themes' icons", installed_pngs(themes)),
        ("jpeg", "JPEG: drawings above, written by contact-sheet and read again",
         converted(drawings, folder, ".jpg", program, "{target}", "{source}")),
    ]
    if shutil.which("opj_compress"):
        inputs.append(("jpeg-2000", "JPEG 2000: drawings above, written by opj_compress (its reading of PNG files darkens)",
                       converted(drawings, folder, ".jp2", "opj_compress", "-i", "{source}", "-o",
                                 "{target}")))
    sheets = []
    for name, title, files in inputs:
        if files:
            run(program, os.path.join(folder, name + ".png"), *files)
            sheets.append((title, "sheets/%s.png" % name))
    return sheets
