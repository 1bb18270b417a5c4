"""Writes the gallery's page: a summary, the misses, and every picture beside the reference."""

from html import escape
from statistics import median

STYLE = """
body { font: 15px/1.45 system-ui, sans-serif; margin: 2rem auto; max-width: 1180px;
       padding: 0 1rem; color: #222; background: #fafafa; }
h1 { font-size: 1.6rem; margin: 0 0 .3rem; } h2 { font-size: 1.15rem; margin: 2.2rem 0 .6rem; }
p { margin: .3rem 0 .9rem; } table { border-collapse: collapse; margin: .6rem 0; }
th, td { padding: .3rem .8rem; text-align: left; border-bottom: 1px solid #ddd; }
td.number, th.number { text-align: right; font-variant-numeric: tabular-nums; }
.good { color: #18713a; } .bad { color: #b3261e; }
.pictures { display: grid; gap: .7rem; grid-template-columns: repeat(auto-fill, minmax(var(--card), 1fr)); }
.pictures.small { --card: 210px; } .pictures.large { --card: 340px; }
.card { background: #fff; border: 1px solid #e2e2e2; border-radius: 6px; padding: .5rem; min-width: 0; }
.card.miss { border-color: #d9837d; }
.card .row { display: flex; gap: .4rem; justify-content: space-between; }
.card figure { margin: 0; flex: 1; min-width: 0; }
.card img { width: 100%; aspect-ratio: 1; object-fit: contain; display: block;
            background: repeating-conic-gradient(#eee 0 25%, #fff 0 50%) 0 0 / 12px 12px; }
.card img.tiny { image-rendering: pixelated; }
.card figcaption { font-size: 11px; color: #777; text-align: center; }
.card .name { font-size: 12px; overflow: hidden; text-overflow: ellipsis; white-space: nowrap; }
.card .numbers { font-size: 12px; color: #555; font-variant-numeric: tabular-nums; }
img.sheet { max-width: 100%; display: block; }
details > summary { cursor: pointer; font-weight: 600; margin: 1.2rem 0 .6rem; }
"""

THEME_NAMES = {"fixtures": "librsvg"}
CAPTIONS = (("ours", "ours"), ("reference", "rsvg"), ("difference", "difference"))


def groups_of(pictures):
    """The pictures by theme, kind and size, in the order in which these first come."""
    groups = {}
    for picture in pictures:
        size = "their own" if picture.kind in ("test", "text") else str(picture.size)
        key = (THEME_NAMES.get(picture.theme, picture.theme), picture.kind, size)
        groups.setdefault(key, []).append(picture)
    return list(groups.items())


def summary(pictures):
    rows = ["<table><tr><th>theme</th><th>kind</th><th class=number>pixels</th>"
            "<th class=number>pictures</th><th class=number>within the limits</th>"
            "<th class=number>missed</th><th class=number>median mean</th>"
            "<th class=number>worst mean</th><th class=number>worst block</th></tr>"]
    for (theme, kind, size), group in groups_of(pictures):
        passed = sum(p.passes() for p in group)
        measured = [p for p in group if p.mean is not None]
        missed = len(group) - passed
        rows.append(
            "<tr><td>%s</td><td>%s</td><td class=number>%s</td><td class=number>%d</td>"
            "<td class='number good'>%d</td><td class='number%s'>%d</td>"
            "<td class=number>%.2f</td><td class=number>%.2f</td><td class=number>%.1f</td></tr>" % (
                escape(theme), kind, size, len(group), passed, " bad" if missed else "", missed,
                median([p.mean for p in measured] or [0]), max((p.mean for p in measured), default=0),
                max((p.block for p in measured), default=0)))
    rows.append("</table>")
    return rows


def misses_by_reason(pictures):
    reasons = {}
    for picture in pictures:
        if not picture.passes():
            reasons.setdefault(picture.reason(), []).append(picture)
    if not reasons:
        return ["<p class=good>None: every picture is within the limits.</p>"]
    rows = ["<table><tr><th class=number>pictures</th><th>reason</th><th>which</th></tr>"]
    for reason, group in sorted(reasons.items(), key=lambda item: -len(item[1])):
        names = ["%s at %d" % (p.name, p.size) for p in group]
        shown = ", ".join(names[:12]) + (" and %d more" % (len(names) - 12) if names[12:] else "")
        rows.append("<tr><td class=number>%d</td><td>%s</td><td>%s</td></tr>" %
                    (len(group), escape(reason), escape(shown)))
    rows.append("</table>")
    return rows


def image(picture, kind, caption):
    tiny = " class=tiny" if picture.size <= 64 else ""
    return ("<figure><img loading=lazy%s src='%s' alt='%s, %s'><figcaption>%s</figcaption></figure>" % (
        tiny, escape(picture.files[kind]), escape(picture.name), caption, caption))


def card(picture):
    if picture.problem:
        return "<div class='card miss'><div class=name>%s</div><div class='numbers bad'>%s</div></div>" % (
            escape(picture.name), escape(picture.problem))
    images = "".join(image(picture, kind, caption) for kind, caption in CAPTIONS)
    notes = escape("; ".join(picture.notes))
    return ("<div class='card%s'><div class=row>%s</div><div class=name title='%s'>%s</div>"
            "<div class='numbers%s'>mean %.2f, worst block %.1f</div><div class=numbers>%s</div></div>" % (
                "" if picture.passes() else " miss", images, escape(picture.key),
                escape(picture.name), "" if picture.passes() else " bad", picture.mean,
                picture.block, notes))


def section(title, pictures, is_open):
    large = pictures[0].size > 64
    return (["<details%s><summary>%s: %d pictures</summary><div class='pictures %s'>" % (
        " open" if is_open else "", escape(title), len(pictures), "large" if large else "small")] +
        [card(p) for p in pictures] + ["</div></details>"])


def contact_sheets(sheets):
    """Pairs of a title and a file, relative to the page."""
    lines = ["<h2>Image files</h2>"] if sheets else []
    for title, file in sheets:
        lines.append("<p>%s</p><img class=sheet loading=lazy src='%s' alt='%s'>" % (
            escape(title), escape(file), escape(title)))
    return lines


def write(path, pictures, sheets, seconds, most_mean, most_block):
    files = len({p.source for p in pictures})
    passed = sum(p.passes() for p in pictures)
    lines = [
        "<!doctype html><html lang=en><meta charset=utf-8><title>svg2png: gallery</title>",
        "<meta name=viewport content='width=device-width'><style>%s</style>" % STYLE,
        "<h1>Drawings made with <code>&lt;CoreGraphics/CoreGraphics.h&gt;</code></h1>",
        "<p>%d SVG files in %d pictures by svg2png, each beside the same file by rsvg-convert and "
        "the difference, drawn and compared in %.0f seconds. <b>%d of %d</b> are within the limits: "
        "a mean absolute difference of at most %g of 255 over all premultiplied components, and no "
        "8 × 8 block off by more than %g on average. Where the difference is white, both agree.</p>" %
        (files, len(pictures), seconds, passed, len(pictures), most_mean, most_block),
    ]
    lines += summary(pictures)
    lines += ["<h2>Misses</h2>"] + misses_by_reason(pictures)
    lines += ["<h2>Pictures</h2>"]
    for (theme, kind, size), group in groups_of(pictures):
        is_open = size not in ("16", "256")
        lines += section("%s, %s, %s pixels" % (theme, kind, size), group, is_open)
    lines += contact_sheets(sheets)
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(lines) + "\n</html>\n")
