#!/usr/bin/env python3
"""Checks that every internal link and picture of a folder of HTML pages leads somewhere."""
import html.parser
import os
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.anchors, self.links = set(), []
        with open(path, encoding="utf-8") as file:
            self.feed(file.read())

    def handle_starttag(self, tag, attrs):
        attrs = dict(attrs)
        for name in ("id", "name"):
            if attrs.get(name):
                self.anchors.add(attrs[name])
        for name in ("href", "src", "data", "xlink:href"):
            if attrs.get(name):
                self.links.append((attrs[name], self.getpos()[0]))


def main():
    root = sys.argv[1]
    pages = {}
    for folder, _, files in os.walk(root):
        for name in files:
            if name.endswith((".html", ".svg")) and name != "doxygen.svg":
                path = os.path.normpath(os.path.join(folder, name))
                pages[path] = Page(path)
    bad = checked = 0
    for path, page in sorted(pages.items()):
        for link, line in page.links:
            parts = urllib.parse.urlsplit(link)
            if parts.scheme or parts.netloc:
                continue
            checked += 1
            target = os.path.normpath(os.path.join(
                os.path.dirname(path), urllib.parse.unquote(parts.path))) if parts.path else path
            if not os.path.exists(target):
                print("%s:%d: leads nowhere: %s" % (path, line, link))
                bad += 1
            elif parts.fragment and target in pages and \
                    urllib.parse.unquote(parts.fragment) not in pages[target].anchors:
                print("%s:%d: no such place: %s" % (path, line, link))
                bad += 1
    print("%d internal links checked, %d lead nowhere" % (checked, bad))
    return 1 if bad or not checked else 0


if __name__ == "__main__":
    sys.exit(main())
