"""What a page is made of, for tests that ask whether a text from outside became a part of it."""

import html.parser


class Page(html.parser.HTMLParser):
    """Every tag of a page with the names of its attributes, every address that the page names, and its text."""

    ADDRESSES = ("href", "src", "action", "formaction", "data", "background")

    def __init__(self, text):
        super().__init__()
        self.tags, self.addresses, self.links, self.texts = set(), [], [], []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attrs):
        self.tags.add((tag, *sorted({name for name, _ in attrs})))
        for name, value in attrs:
            if name in self.ADDRESSES:
                self.addresses.append(value or "")
            if name == "href" and tag == "a":
                self.links.append(value or "")

    def handle_data(self, data):
        self.texts.append(data)

    def leads_away(self):
        """Addresses that leave the site, or run something."""
        return [each for each in self.addresses
                if each.strip().lower().split(":")[0].strip() in ("javascript", "vbscript", "data", "http", "https")
                or each.strip().startswith(("//", "\\\\", "/\\"))]
