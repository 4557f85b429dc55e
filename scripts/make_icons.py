#!/usr/bin/env python3
"""Writes the program's SVG icons (res/icons, res/icons/dark) and the GUI
library's own (libs/gui/res/icons). Simple line icons on a 16x16 grid with one
stroke width, so the set looks alike; run again after editing a drawing."""
import math
import os
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
INK = {"light": "#37474f", "dark": "#d5dde2"}
BLUE = {"light": "#1e74c6", "dark": "#5eb0ef"}
RED = {"light": "#d32f2f", "dark": "#ef6b6b"}
GREEN = {"light": "#2e7d32", "dark": "#66bb6a"}
AMBER = {"light": "#e0a020", "dark": "#f2c14e"}


def line(x1, y1, x2, y2, c="ink"):
    return f'<line x1="{x1}" y1="{y1}" x2="{x2}" y2="{y2}" stroke="{{{c}}}"/>'


def poly(points, c="ink", closed=False, fill="none"):
    tag = "polygon" if closed else "polyline"
    pts = " ".join(f"{x},{y}" for x, y in points)
    return f'<{tag} points="{pts}" stroke="{{{c}}}" fill="{fill}"/>'


def path(d, c="ink", fill="none"):
    return f'<path d="{d}" stroke="{{{c}}}" fill="{fill}"/>'


def rect(x, y, w, h, c="ink", rx=1, fill="none"):
    return f'<rect x="{x}" y="{y}" width="{w}" height="{h}" rx="{rx}" stroke="{{{c}}}" fill="{fill}"/>'


def circle(cx, cy, r, c="ink", fill="none"):
    return f'<circle cx="{cx}" cy="{cy}" r="{r}" stroke="{{{c}}}" fill="{fill}"/>'


def dot(cx, cy, r=0.9, c="ink"):
    return f'<circle cx="{cx}" cy="{cy}" r="{r}" stroke="none" fill="{{{c}}}"/>'


def funnel(fill="none", c="ink"):
    return path("M2 3 H14 L9.5 8.5 V13 L6.5 14.5 V8.5 Z", c, fill)


def magnifier(cx=6.5, cy=6.5, r=4, c="blue"):
    return [circle(cx, cy, r, c), f'<line x1="{cx + r * 0.72}" y1="{cy + r * 0.72}" x2="14" y2="14" stroke="{{{c}}}" stroke-width="2.2"/>']


def eye():
    return [path("M1.5 8 C3.5 4.2 12.5 4.2 14.5 8 C12.5 11.8 3.5 11.8 1.5 8 Z"), circle(8, 8, 2)]


def gear():
    pts = []
    for i in range(8):
        a = i * 45
        for da, r in ((-9, 6.8), (9, 6.8), (16, 5.0), (29, 5.0)):
            t = math.radians(a + da)
            pts.append((round(8 + r * math.cos(t), 2), round(8 + r * math.sin(t), 2)))
    return [poly(pts, closed=True), circle(8, 8, 2)]


def trash(extra=()):
    return [line(2.5, 4, 13.5, 4), path("M6 4 V2.5 H10 V4"), path("M3.8 4 L4.6 14 H11.4 L12.2 4"), *extra]


ICONS = {
    "ar_left": [line(13, 8, 3, 8), poly([(7, 4), (3, 8), (7, 12)])],
    "ar_right": [line(3, 8, 13, 8), poly([(9, 4), (13, 8), (9, 12)])],
    "ar_up": [line(8, 13, 8, 3), poly([(4, 7), (8, 3), (12, 7)])],
    "ar_down": [line(8, 3, 8, 13), poly([(4, 9), (8, 13), (12, 9)])],
    "ar_up_up": [poly([(4, 8), (8, 4), (12, 8)]), poly([(4, 13), (8, 9), (12, 13)]), line(3, 2, 13, 2)],
    "ar_down_down": [poly([(4, 3), (8, 7), (12, 3)]), poly([(4, 8), (8, 12), (12, 8)]), line(3, 14, 13, 14)],
    "root": [rect(2, 9.5, 12, 4.5), dot(11.5, 11.75, 0.8), circle(8, 3.5, 1.6), line(8, 5.1, 8, 9.5)],
    "filter_dir": [path("M1.5 6 V13.5 H9 M1.5 6 H4.5 L5.5 7 H7"), path("M7.5 2 H14.5 L12 5.5 V9 L10 10 V5.5 Z")],
    "filter_plus": [funnel(), line(12.5, 10, 12.5, 15, "green"), line(10, 12.5, 15, 12.5, "green")],
    "filter_plus_green": [funnel("{green}", "green"), line(12.5, 10, 12.5, 15, "green"), line(10, 12.5, 15, 12.5, "green")],
    "refresh": [path("M13.2 8.5 A5.2 5.2 0 1 1 11.6 4.3"), poly([(12.2, 1.2), (12.2, 4.6), (8.8, 4.6)])],
    "picture": [rect(1.5, 2.5, 13, 11), circle(5.5, 6, 1.3), poly([(2, 12.5), (6, 8.5), (8.5, 10.5), (10.5, 8.5), (14, 12)])],
    "minus": [line(3, 8, 13, 8)],
    "plus": [line(3, 8, 13, 8), line(8, 3, 8, 13)],
    "find": magnifier(),
    "find2": [path("M1 4 V14 H11 M1 4 H4.5 L5.5 5 H8", "ink"), *magnifier(9, 7, 3.6)],
    "find3": [rect(0.75, 0.75, 14.5, 14.5, "blue", 3, "{blue}"), circle(6.8, 6.8, 3.6, "white"),
              '<line x1="9.4" y1="9.4" x2="12.8" y2="12.8" stroke="{white}" stroke-width="2.2"/>'],
    "hide": [*eye(), line(2.5, 13.5, 13.5, 2.5, "red")],
    "show": eye(),
    "close": [circle(8, 8, 6.5, "red"), line(5.5, 5.5, 10.5, 10.5, "red"), line(10.5, 5.5, 5.5, 10.5, "red")],
    "reset": [path("M2.8 8.5 A5.2 5.2 0 1 0 4.4 4.3"), poly([(3.8, 1.2), (3.8, 4.6), (7.2, 4.6)]), dot(8, 8.5, 1.1)],
    "app": [rect(2, 2, 5, 5), rect(9, 2, 5, 5), rect(2, 9, 5, 5), rect(9, 9, 5, 5, "blue")],
    "calc": [rect(3, 1.5, 10, 13), rect(5, 3.5, 6, 3), dot(5.8, 9), dot(8, 9), dot(10.2, 9), dot(5.8, 11.8), dot(8, 11.8), dot(10.2, 11.8)],
    "bin": ['<ellipse cx="5" cy="8" rx="2.3" ry="4.5" stroke="{ink}" fill="none"/>', poly([(9.5, 5.5), (11.5, 3.5), (11.5, 12.5)]), line(9.5, 12.5, 13.5, 12.5)],
    "brackets": [poly([(5, 2.5), (2.5, 2.5), (2.5, 13.5), (5, 13.5)]), poly([(11, 2.5), (13.5, 2.5), (13.5, 13.5), (11, 13.5)]),
                 line(8, 5.5, 8, 10.5, "blue"), line(5.8, 6.7, 10.2, 9.3, "blue"), line(10.2, 6.7, 5.8, 9.3, "blue")],
    "copy": [rect(5, 5, 9, 9.5), path("M3.5 11 H2 V1.5 H10 V3.5")],
    "delete": trash([line(6.5, 6.5, 6.8, 12), line(9.5, 6.5, 9.2, 12)]),
    "delete_all": trash([line(5.8, 6.8, 10.2, 11.8, "red"), line(10.2, 6.8, 5.8, 11.8, "red")]),
    "edit": [path("M2.5 13.5 L3.2 10.4 L10.8 2.8 L13.2 5.2 L5.6 12.8 Z"), line(9.3, 4.3, 11.7, 6.7)],
    "expand": [poly([(2, 6), (2, 2), (6, 2)]), poly([(10, 2), (14, 2), (14, 6)]), poly([(14, 10), (14, 14), (10, 14)]), poly([(6, 14), (2, 14), (2, 10)]),
               line(2, 2, 6, 6), line(14, 2, 10, 6), line(14, 14, 10, 10), line(2, 14, 6, 10)],
    "fileManager1": [path("M1.5 3 H6 L7.5 4.5 H14.5 V13.5 H1.5 Z"), line(1.5, 6.5, 14.5, 6.5)],
    "layer": [poly([(8, 2), (14.5, 5.5), (8, 9), (1.5, 5.5)], closed=True), poly([(1.5, 8.5), (8, 12), (14.5, 8.5)]), poly([(1.5, 11), (8, 14.5), (14.5, 11)], "blue")],
    "new": [path("M3 1.5 H9.5 L13 5 V14.5 H3 Z"), path("M9.5 1.5 V5 H13"), line(8, 7.5, 8, 12.5, "green"), line(5.5, 10, 10.5, 10, "green")],
    "pattern": [rect(1.5, 5.5, 6, 5, "blue", 0.5, "none"), line(2, 3, 14, 3), line(9, 8, 14, 8), line(2, 13, 14, 13)],
    "r": [line(4, 3.5, 12, 3.5), line(4, 6.5, 9, 6.5), path("M13.5 11 A3.3 3.3 0 1 1 12.6 8.6"), poly([(13.2, 6.8), (13.2, 9), (11, 9)])],
    "text": [path("M3 1.5 H9.5 L13 5 V14.5 H3 Z"), path("M9.5 1.5 V5 H13"), line(5, 7.5, 11, 7.5), line(5, 10, 11, 10), line(5, 12.5, 9, 12.5)],
    "wheel": gear(),
    "window": [rect(1.5, 2.5, 13, 11), line(1.5, 5.5, 14.5, 5.5), dot(3.5, 4, 0.6), dot(5.3, 4, 0.6)],
    "xml": [poly([(5, 4), (1.5, 8), (5, 12)]), poly([(11, 4), (14.5, 8), (11, 12)]), line(9.2, 2.5, 6.8, 13.5, "blue")],
}

LIB_ICONS = {
    "apply-ok": [poly([(2.5, 8.5), (6.2, 12), (13.5, 3.5)], "green")],
    "apply-cancel": [line(3.5, 3.5, 12.5, 12.5, "red"), line(12.5, 3.5, 3.5, 12.5, "red")],
}


def render(items, theme, size=16):
    colours = {"ink": INK[theme], "blue": BLUE[theme], "red": RED[theme], "green": GREEN[theme], "amber": AMBER[theme], "white": "#ffffff"}
    body = "\n  ".join(i.format(**colours) for i in items)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{size}" height="{size}" viewBox="0 0 16 16" '
            'fill="none" stroke-width="1.5" stroke-linecap="round" stroke-linejoin="round">\n  ' + body + "\n</svg>\n")


# Default picture of the hex preview, per language: the program's mark and a short text.
IMAGE_TEXT = {"en": "no file selected", "de": "keine Datei gewählt", "ru": "файл не выбран"}


def image(lang, theme):
    c = {"ink": INK[theme], "blue": BLUE[theme]}
    return f'''<svg xmlns="http://www.w3.org/2000/svg" width="256" height="160" viewBox="0 0 256 160" fill="none" stroke-linecap="round">
  <circle cx="112" cy="62" r="34" stroke="{c['blue']}" stroke-width="10"/>
  <line x1="137" y1="87" x2="166" y2="116" stroke="{c['blue']}" stroke-width="14"/>
  <text x="128" y="150" text-anchor="middle" font-family="sans-serif" font-size="18" fill="{c['ink']}">Talvo Finder - {IMAGE_TEXT[lang]}</text>
</svg>
'''


def write(path_, text):
    os.makedirs(os.path.dirname(path_), exist_ok=True)
    with open(path_, "w", encoding="utf-8") as f:
        f.write(text)


def main():
    for name, items in ICONS.items():
        write(os.path.join(ROOT, "res/icons", name + ".svg"), render(items, "light"))
        write(os.path.join(ROOT, "res/icons/dark", name + ".svg"), render(items, "dark"))
    for name, items in LIB_ICONS.items():
        write(os.path.join(ROOT, "libs/gui/res/icons", name + ".svg"), render(items, "light"))
    # The program's mark at page size (pictures in pages are drawn at the file's own size).
    write(os.path.join(ROOT, "res/image/logo.svg"), render(ICONS["find2"], "light", 48))
    for lang in IMAGE_TEXT:
        write(os.path.join(ROOT, f"res/image/tf-{lang}.svg"), image(lang, "light"))
        write(os.path.join(ROOT, f"res/image/dark/tf-{lang}.svg"), image(lang, "dark"))
    return 0


if __name__ == "__main__":
    sys.exit(main())
