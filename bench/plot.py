"""Two plain plots in SVG: bars around 1, and curves over named places."""
from html import escape

WIDTH, ROW, LEFT, PLOT = 760, 24, 260, 430
HEIGHT, TOP, BOTTOM = 320, 50, 260
COLOURS = ("#1b6ca8", "#c1502e", "#4a7c3a")


def text(x, y, words, anchor="start", size=13):
    return f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" text-anchor="{anchor}">{escape(words)}</text>'


def line(x1, y1, x2, y2, colour="#888", dash=""):
    dashes = f' stroke-dasharray="{dash}"' if dash else ""
    return f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{colour}"{dashes}/>'


def picture(height, parts):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" font-family="sans-serif">\n'
            f'<rect width="{WIDTH}" height="{height}" fill="white"/>\n' + "\n".join(parts) + "\n</svg>\n")


def bars(title, values, limit):
    """A bar for each (name, ratio), from 0 on, with lines at 1 and at the limit."""
    scale = PLOT / max(limit, *(value for _, value in values)) / 1.05
    bottom = 40 + ROW * len(values)
    parts = [text(10, 22, title, size=15)]
    for row, (name, value) in enumerate(values):
        y = 40 + ROW * row
        parts += [text(LEFT - 8, y + 16, name, "end"),
                  f'<rect x="{LEFT}" y="{y + 4}" width="{value * scale:.1f}" height="{ROW - 8}" fill="{COLOURS[0]}"/>',
                  text(LEFT + PLOT + 8, y + 16, f"{value:.3f}")]
    parts += [line(LEFT + scale, 36, LEFT + scale, bottom), line(LEFT + limit * scale, 36, LEFT + limit * scale, bottom,
                                                                 COLOURS[1], "4 3"),
              text(LEFT + scale - 4, bottom + 16, "1", "end"),
              text(LEFT + limit * scale, bottom + 16, f"{limit}")]
    return picture(bottom + 26, parts)


def curves(title, axis, series):
    """Curves from 0 on, by name, each of (place, ratio); all have the same places, evenly spaced."""
    places = [place for place, _ in next(iter(series.values()))]
    top = max(value for points in series.values() for _, value in points) * 1.1
    def at(index, value):
        return 70 + 560 * index / max(1, len(places) - 1), BOTTOM - (BOTTOM - TOP) * value / top
    parts = [text(10, 22, title, size=15), line(70, BOTTOM, 640, BOTTOM), line(70, TOP, 70, BOTTOM),
             text(355, BOTTOM + 42, axis, "middle")]
    parts += [text(at(i, 0)[0], BOTTOM + 20, place, "middle") for i, place in enumerate(places)]
    for quarter in range(5):
        value = top * quarter / 4
        y = at(0, value)[1]
        parts += [line(70, y, 640, y, "#ddd"), text(62, y + 4, f"{value:.2f}", "end", 11)]
    for colour, (name, points) in zip(COLOURS, series.items()):
        spots = [at(i, value) for i, (_, value) in enumerate(points)]
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in spots)
        parts += [f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2"/>']
        parts += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{colour}"/>' for x, y in spots]
        parts.append(text(spots[-1][0] + 8, spots[-1][1] + 4, name, size=11))
    return picture(HEIGHT, parts)
