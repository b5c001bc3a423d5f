#!/usr/bin/env python3
"""Reports in a browser: nothing scrolls to the side, covers something else, is too faint, or steers the page.

Usage: page_test.py QUILLETCTL CHROMIUM
       page_test.py --shoot FOLDER QUILLETCTL CHROMIUM   (leaves pictures of every page instead)
"""
import html.parser
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

sys.dont_write_bytecode = True
import browser  # noqa: E402

SHOOT = pathlib.Path(sys.argv[2]) if sys.argv[1] == "--shoot" else None
QUILLETCTL, CHROMIUM = (pathlib.Path(argument).resolve() for argument in sys.argv[-2:])
WIDTHS = (400, 800, 1600)

SERVICE = 'instance of Zorel_NetService { Name = "ZorelNetService"; Warnings = 5; };\n'


def adapter(number, name, slot):
    return (f'instance of Zorel_PhysicalEthernetAdapter as $A{number} {{ DeviceID = "{{{number:08}-0000-0000-0000-000000000000}}";'
            f' Name = "{name}"; OriginalDisplayName = "{name}"; SlotID = "{slot}"; PortNumber = "{number}"; HardwareStatus = 3;'
            f' AdapterStatus = 1; Speed = 1000000000; FullDuplex = TRUE; PermanentAddress = "{name}";'
            f' NetworkAddresses = {{"{name}"}}; Status = "{name}"; StatusInfo = 3; Availability = 3; LinkSecStatus = 1;'
            ' Capabilities = {3, 37}; ControllerID = "C"; MediaType = "M"; BusType = "PCI"; NegotiatedLinkWidth = "x8";'
            ' PHYDevice = 0; PartNumber = "P"; EEPROMVersion = "1"; SanMacAddress = ""; PCIDeviceID = "F10A"; };\n')


def team(number, name, members):
    text = (f'instance of Zorel_TeamOfAdapters as $T{number} {{ Name = "{{{number:08}-7EA3-0000-0000-000000000000}}";'
            f' Caption = "{name}"; TeamingMode = 1; TeamMacAddress = ""; MFOEnabled = FALSE;'
            f' LinksecEnabled = FALSE; BoundToHyperV = FALSE; TeamProfile = 2; }};\n'
            f'instance of Zorel_LogicalEthernetAdapter as $L{number} {{ DeviceID = "{{{number:08}-7EA3-0000-0000-000000000000}}";'
            f' Name = "{name}"; StatusInfo = 3; }};\n'
            f'instance of Zorel_NetworkVirtualAdapter {{ SystemElement = $L{number}; SameElement = $T{number}; }};\n')
    for role, member in enumerate(members):
        text += (f'instance of Zorel_TeamedMemberAdapter {{ GroupComponent = $T{number}; PartComponent = $A{member};'
                 f' AdapterFunction = {role if role < 3 else 0}; AdapterStatus = {1 if role < 6 else 3}; }};\n')
    return text


def vlans(owner, count, name):
    return f'instance of Zorel_802dot1QVLANService {{ Name = "{owner}"; }};\n' + "".join(
        f'instance of Zorel_VLAN {{ Name = "{{{index:08}-1234-{owner[5:9]}-0000-000000000000}}"; ParentID = "{owner}";'
        f' VLANNumber = {4094 - index}; VLANName = "{name}{index}"; Caption = "{name}"; StatusInfo = 3; }};\n'
        for index in range(count))


NASTY = ("<script>alert(1)</script>", "\\\" onload='alert(2)' x=\\\"", "]]>&amp;&lt;<!--", "\\x001B[31m\\x0000\\x0008 \\x202E txet",
         "W" * 300, "\\xFFFE\\xFFFF \\xD800 ﷽ 東京東京東京東京東京東京東京東京東京東京", "", "a\\nb\\tc")
MACHINES = {
    "nasty": SERVICE + "".join(adapter(number + 1, name, name) for number, name in enumerate(NASTY)) + "".join(
        team(number + 1, name, [number + 1]) for number, name in enumerate(NASTY[:3])) + vlans(
            "{00000001-7EA3-0000-0000-000000000000}", 3, NASTY[0]) + vlans("{00000004-0000-0000-0000-000000000000}", 9, NASTY[4]),
    "full": SERVICE + "".join(adapter(number, f"Port {number}", f"Slot {(number - 1) // 4}") for number in range(1, 25)) + team(
        1, "Eight", range(1, 9)) + team(2, "Across", (9, 24, 12)) + team(3, "Crossing", (10, 23)) + vlans(
            "{00000001-7EA3-0000-0000-000000000000}", 64, "Lab ") + vlans(
                "{00000020-0000-0000-0000-000000000000}", 5, "Own "),
    "empty": SERVICE,
    "many": SERVICE + "".join(adapter(number, f"Port {number}", "Slot 1") for number in range(1, 41)),
}
FAULTS = {"silent": ("*:*:12+=0x80041003",), "partly": ("Next:Zorel_TeamedMemberAdapter:1+", "ExecQuery:*:3+=0x80041001")}

# The colour that lies behind an element, its own contrast to it, and what is wrong with a page.
LOOK = r"""(() => {
  const parse = text => { const n = text.match(/[\d.]+/g).map(Number); return n.length > 3 && n[3] === 0 ? null : n; };
  const light = c => { const [r, g, b] = c.slice(0, 3).map(v => (v /= 255) <= .03928 ? v / 12.92 : ((v + .055) / 1.055) ** 2.4);
    return .2126 * r + .7152 * g + .0722 * b; };
  const contrast = (a, b) => { const [x, y] = [light(a), light(b)].sort((p, q) => q - p); return (x + .05) / (y + .05); };
  const behind = element => { for (let e = element; e; e = e.parentElement) {
    if (e instanceof SVGElement) { const box = element.getBoundingClientRect();
      for (const shape of [...e.ownerSVGElement?.querySelectorAll('rect') ?? []].reverse()) {
        const fill = getComputedStyle(shape).fill, r = shape.getBoundingClientRect();
        if (fill !== 'none' && r.left <= box.left + 1 && r.right >= box.right - 1 && r.top <= box.top + 1 && r.bottom >= box.bottom - 1) return parse(fill); }
    } else { const colour = parse(getComputedStyle(e).backgroundColor); if (colour) return colour; } } return [255, 255, 255]; };
  const found = [];
  const page = document.documentElement;
  if (page.scrollWidth > page.clientWidth) found.push(`the page scrolls to the side: ${page.scrollWidth} > ${page.clientWidth}`);
  const texts = [...document.querySelectorAll('svg text')].filter(t => t.textContent.trim());
  const boxes = texts.map(t => t.getBoundingClientRect());
  const svg = document.querySelector('svg').getBoundingClientRect();
  texts.forEach((t, i) => {
    const a = boxes[i];
    if (a.left < svg.left || a.right > svg.right || a.top < svg.top || a.bottom > svg.bottom) found.push(`outside the drawing: ${t.textContent}`);
    for (let j = i + 1; j < texts.length; ++j) { const b = boxes[j];
      if (a.left < b.right && b.left < a.right && a.top + 2 < b.bottom && b.top + 2 < a.bottom) found.push(`texts overlap: ${t.textContent} | ${texts[j].textContent}`); }
    for (const box of document.querySelectorAll('svg rect')) { const b = box.getBoundingClientRect();
      if (!box.classList.contains('q-paper') && a.top < b.bottom && b.top < a.bottom &&
          ((a.left < b.left && a.right > b.left) || (a.left < b.right && a.right > b.right))) found.push(`sticks out of its box: ${t.textContent}`); }
  });
  const solid = [...document.querySelectorAll('svg rect')].filter(r => !r.classList.contains('q-paper') && !r.classList.contains('q-slot')).map(r => r.getBoundingClientRect());
  solid.forEach((a, i) => solid.slice(i + 1).forEach(b => { if (a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom) found.push('boxes overlap'); }));
  for (const e of document.querySelectorAll('h1, h2, p, li, th, td, svg text')) {
    if (!e.textContent.trim()) continue;
    const style = getComputedStyle(e);
    const ratio = contrast(parse(e instanceof SVGElement ? style.fill : style.color), behind(e));
    if (ratio < 4.5) found.push(`too faint (${ratio.toFixed(2)}): ${e.textContent.slice(0, 40)}`);
    if (!(e instanceof SVGElement) && e.scrollWidth > e.clientWidth + 1 && style.overflowX === 'visible' && e.clientWidth > 1) found.push(`runs over its edge: ${e.textContent.slice(0, 40)}`);
  }
  return found;
})()"""
FOCUS = r"""(() => { const e = document.activeElement, r = e.getBoundingClientRect(), s = getComputedStyle(e);
  return e === document.body ? null : {name: e.getAttribute('aria-label') || e.textContent, seen: r.width > 0 && r.height > 0 && s.visibility === 'visible',
    ring: s.outlineStyle !== 'none' && parseFloat(s.outlineWidth) >= 2, top: r.top, bottom: r.bottom, view: innerHeight}; })()"""


class Names(html.parser.HTMLParser):
    """The elements of a page, and what would come from elsewhere."""

    def __init__(self):
        super().__init__()
        self.tags, self.elsewhere = set(), []

    def handle_starttag(self, tag, attributes):
        self.tags.add(tag)
        self.elsewhere += [name for name, _ in attributes if name in ("src", "href", "xlink:href") or name.startswith("on")]


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="quilletctl-report-")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.browser = browser.Browser(CHROMIUM)
        cls.addClassCleanup(cls.browser.close)
        cls.pages = {"shipped": cls.report("shipped", ["--simulate"])}
        for name, text in MACHINES.items():
            (cls.folder / f"{name}.mof").write_text(text, encoding="utf-8")
            cls.pages[name] = cls.report(name, ["--simulate", f"{name}.mof"])
        for name, rules in FAULTS.items():
            cls.pages[name] = cls.report(name, ["--simulate", *[word for rule in rules for word in ("--fault", rule)]])

    @classmethod
    def report(cls, name, machine):
        for ending in ("html", "svg"):
            done = subprocess.run([QUILLETCTL, *machine, "report", f"{name}.{ending}"], cwd=cls.folder, capture_output=True,
                                  text=True, timeout=120, check=False)
            if done.returncode != 0:
                raise AssertionError(f"{name}: {done.stderr}")
        return cls.folder / f"{name}.html"

    def test_pages_can_be_read_at_every_width(self):
        for name, page in self.pages.items():
            for width in WIDTHS:
                for scheme in ("light", "dark"):
                    with self.subTest(page=name, width=width, scheme=scheme):
                        self.browser.complaints.clear()
                        self.browser.open(page, width, scheme)
                        self.assertEqual(self.browser.ask(LOOK), [])
                        self.assertEqual(self.browser.complaints, [])

    def test_what_is_wrong_is_found(self):
        """The eye that the other tests look with."""
        text = "document.querySelector('svg text.q-small')"
        for change, complaint in (
                ("document.querySelector('h1').style.whiteSpace = 'nowrap'; document.querySelector('h1').style.width = '5000px'",
                 "scrolls to the side"),
                (f"{text}.textContent = 'W'.repeat(60)", "sticks out of its box"),
                (f"{text}.setAttribute('x', 22); {text}.setAttribute('y', 30)", "texts overlap"), (f"{text}.setAttribute('x', -50)", "outside the drawing"),
                ("document.querySelector('rect.q-team').setAttribute('x', 200)", "boxes overlap"),
                (f"{text}.style.fill = '#999'", "too faint"), ("document.querySelector('p').style.color = '#888'", "too faint"),
                ("document.querySelector('td').textContent = 'W'.repeat(80); document.querySelector('td').style.whiteSpace = 'nowrap'",
                 "runs over its edge")):
            with self.subTest(complaint=complaint):
                self.browser.open(self.pages["shipped"], 1600)
                self.assertEqual(self.browser.ask(LOOK), [])
                self.browser.ask(change)
                self.assertIn(complaint, " ".join(self.browser.ask(LOOK)))

    def test_light_and_dark_differ(self):
        colours = set()
        for scheme in ("light", "dark"):
            self.browser.open(self.pages["shipped"], 800, scheme)
            colours.add(self.browser.ask("getComputedStyle(document.body).backgroundColor"))
        self.assertEqual(colours, {"rgb(255, 255, 255)", "rgb(20, 24, 29)"})

    def test_what_tab_reaches_can_be_seen(self):
        self.browser.open(self.pages["full"], 400)
        reached = []
        for _ in range(10):
            self.browser.press_tab()
            focus = self.browser.ask(FOCUS)
            if focus is None or focus["name"] in reached:
                break
            self.assertTrue(focus["seen"] and focus["ring"], focus)
            self.assertTrue(focus["top"] < focus["view"] and focus["bottom"] > 0, focus)
            reached.append(focus["name"])
        self.assertEqual(reached, ["Drawing of the connections"])

    def test_the_drawing_fits_where_there_is_room_and_scrolls_in_its_frame_where_not(self):
        frame = "(e => [e.scrollWidth, e.clientWidth])(document.querySelector('.drawing'))"
        self.browser.open(self.pages["full"], 1600)
        inside, width = self.browser.ask(frame)
        self.assertEqual(inside, width)
        self.browser.open(self.pages["full"], 400)
        inside, width = self.browser.ask(frame)
        self.assertGreater(inside, width)
        size = "document.querySelector('svg .q-small').getBoundingClientRect().height"
        self.assertGreater(self.browser.ask(size), 9, "the letters stay large enough to read")

    def test_in_print_nothing_is_cut_off(self):
        self.browser.open(self.pages["full"], 700)
        self.browser.tell("Emulation.setEmulatedMedia", media="print",
                          features=[{"name": "prefers-color-scheme", "value": "dark"}])
        self.assertEqual(self.browser.ask(LOOK), [])
        self.assertEqual(self.browser.ask("(e => e.scrollWidth - e.clientWidth)(document.querySelector('.drawing'))"), 0)

    def test_names_are_texts_and_nothing_comes_from_elsewhere(self):
        for name, page in self.pages.items():
            with self.subTest(page=name):
                names = Names()
                names.feed(page.read_text(encoding="utf-8"))
                self.assertEqual(names.elsewhere, [])
                self.assertEqual(names.tags & {"script", "img", "link", "iframe", "object", "foreignobject"}, set())
        self.browser.open(self.pages["nasty"], 800)
        shown = self.browser.ask("document.body.innerText")
        self.assertIn("<script>alert(1)</script>", shown)
        self.assertIn("]]>&amp;&lt;<!--", shown)
        self.assertNotIn("\x1b", page.read_text(encoding="utf-8"))

    def test_drawings_are_xml_by_themselves(self):
        for name, page in self.pages.items():
            with self.subTest(page=name):
                root = xml.etree.ElementTree.parse(page.with_suffix(".svg")).getroot()
                self.assertEqual(root.tag, "{http://www.w3.org/2000/svg}svg")

    def test_what_is_not_told_is_said(self):
        self.browser.open(self.pages["silent"], 800)
        shown = self.browser.ask("document.body.innerText")
        self.assertIn("What the provider does not tell", shown)
        self.assertIn("access is denied", shown)
        self.browser.open(self.pages["shipped"], 800)
        self.assertNotIn("does not tell:", self.browser.ask("document.body.innerText"))

    def test_the_drawing_has_every_adapter_team_and_vlan(self):
        self.browser.open(self.pages["full"], 1600)
        texts = self.browser.ask("[...document.querySelectorAll('svg text')].map(e => e.textContent)")
        for wanted in ([f"Port {number}" for number in range(1, 25)] + ["Eight", "Across", "Crossing", "primary", "secondary"]
                       + [f"Lab {number}" for number in range(64)] + [f"Own {number}" for number in range(5)]):
            self.assertIn(wanted, texts)
        self.assertEqual(self.browser.ask("document.querySelectorAll('.q-link').length"), 8 + 3 + 2 + 1 + 2)


def shoot():
    SHOOT.mkdir(parents=True, exist_ok=True)
    PageTest.setUpClass()
    for name, page in PageTest.pages.items():
        for width, scheme in ((400, "light"), (800, "dark"), (1600, "light")):
            PageTest.browser.open(page, width, scheme)
            PageTest.browser.photograph(SHOOT / f"{name}-{width}-{scheme}.png")
    PageTest.doClassCleanups()


if __name__ == "__main__":
    shoot() if SHOOT else unittest.main(argv=sys.argv[:1])
