#!/usr/bin/env python3
"""The documents and pages: every link leads somewhere, both languages of a page have the same headings, numbers, codes
and examples (comments apart), and no line of an example is wider than its box."""
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from html.parser import HTMLParser
from pathlib import Path

WIDTH = 99  # what fits into the box of an example at 1280 pixels, in columns


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.path, self.ids, self.links, self.headings, self.examples, self.marks = path, {""}, [], [], [], set()
        self.inside = []
        isPage = path.parent.name == "pages"
        form = ["-f", "markdown", "--template=package/pages/page.html", "--toc",
                "--fail-if-warnings"] if isPage else ["-f", "gfm"]
        self.feed(path.read_text() if path.suffix == ".html" else subprocess.run(
            ["pandoc", *form, "--no-highlight", str(path)], capture_output=True, text=True, check=True).stdout)

    def handle_starttag(self, tag, attributes):
        given = dict(attributes)
        self.ids |= {given[name] for name in ("id", "name") if given.get(name)}
        self.links += [given[name] for name in ("href", "src", "srcset") if given.get(name)]
        self.inside += [tag] if tag in ("pre", "code", "style") else []
        if tag == "pre":
            self.examples.append("")
        elif re.fullmatch("h[1-6]", tag):
            self.headings.append((tag, given.get("id")))

    def handle_endtag(self, tag):
        if tag in self.inside:
            self.inside.remove(tag)

    def handle_data(self, data):
        if "pre" in self.inside:
            self.examples[-1] += data
        elif "style" not in self.inside:
            numbers = re.findall(r"(?<![\w.,-])-?\d+\b", data)
            self.marks |= {" ".join(data.split())} if "code" in self.inside else set(numbers)


def complaints(pages):
    for path, page in pages.items():
        for link in page.links:
            file, _, anchor = link.partition("#")
            places = [path.parent / file] if file else [path]
            places += [folder / Path(file).with_suffix(end) for folder, end in
                       (("package/pages", ".md"), ("package", ".html")) if file.endswith(".html")]
            found = [place for place in map(Path, places) if place.exists()]
            target = pages.get(Path(*found[0].resolve().relative_to(Path.cwd()).parts)) if found else None
            if not re.match("[a-z]+:", link) and (not found or target and anchor not in target.ids):
                yield f"{path}: no {link}"
        for line in "\n".join(page.examples).splitlines():
            if len(line) > WIDTH:
                yield f"{path}: wider than {WIDTH} columns: {line}"
        other = pages.get(path.with_name(path.name.replace("-en.", "-fr.")))
        if other is not None and other is not page:
            code = [[re.sub(r"(?m)(^|\s)(' |# |// ).*", "", example) for example in one.examples] for one in (page, other)]
            for what, one, two in (("heading", page.headings, other.headings), ("example", *code),
                                   ("number or code", page.marks, other.marks)):
                for mark in [mark for mark in one if mark not in two] + [mark for mark in two if mark not in one]:
                    yield f"{path}: not in both languages: {what} {mark!r}"


files = [path for pattern in ("*.md", "*/*.md", "package/pages/*.md", "package/*.html") for path in Path().glob(pattern)
         if path.parts[0] != "build"]
with ThreadPoolExecutor() as pool:
    found = list(complaints(dict(zip(files, pool.map(Page, files)))))
print(*found, sep="\n")
sys.exit(bool(found))
