"""The page of a gallery in a headless browser: gallery_test.py CATALOGCORE CHROMIUM CHROMEDRIVER"""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

import pictures
from pictures import OTHER, OTHER_PHOTOGRAPHS, PAGES, PEOPLE

COMMAND, CHROMIUM, CHROMEDRIVER = sys.argv[1:]
HOSTILE = ["<img src=x onerror=document.title='run'>.png", "50% #1? &amp; \"it's\" \u00e9t\u00e9 \U0001f389.png",
           "n" * 200 + ".png"]
KEYS = {PEOPLE: "1/1", OTHER_PHOTOGRAPHS: "1/9", PAGES: "2/3", OTHER: "9"}


def make_gallery(folder, images):
    """Returns the number of new thumbnails, and the messages."""
    catalog = folder.parent / "catalog"
    catalog.mkdir(exist_ok=True)
    records = (f"{KEYS[index]},0,{path}" for path, index in images.items())
    (catalog / "images.plist").write_bytes(pictures.catalogue_file("IDXImage", *records))
    done = subprocess.run([COMMAND, "--catalog", catalog, "gallery", folder], text=True, capture_output=True)
    assert done.returncode in (0, 1), done.stderr
    return int(re.search(r"(\d+) thumbnails? created", done.stdout)[1]), done.stderr


class Page:
    def __init__(self, folder):
        options = webdriver.ChromeOptions()
        options.binary_location = CHROMIUM
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        for argument in ["--headless=new", "--window-size=1200,900"] + ["--no-sandbox"] * (os.getuid() == 0):
            options.add_argument(argument)
        self.driver = webdriver.Chrome(options=options, service=webdriver.chrome.service.Service(CHROMEDRIVER))
        self.address = (folder / "index.html").as_uri()
        self.load()

    def load(self, state=""):
        self.driver.get("about:blank")
        self.driver.get(self.address + state)

    def js(self, script, *arguments):
        return self.driver.execute_script("return " + script, *arguments)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def text(self, selector):
        return self.js("document.querySelector(arguments[0]).textContent", selector)

    def names(self):
        return self.js("[...document.querySelectorAll('.tile .name')].map((name) => name.textContent)")

    def press(self, *keys):
        for key in keys:
            self.driver.switch_to.active_element.send_keys(key)

    def check_focus(self, label):
        self.wait(f"document.activeElement.ariaLabel?.startsWith({json.dumps(label)})")

    def wait(self, script):
        WebDriverWait(self.driver, 10, 0.05).until(lambda _: self.js(script), script)

    def resize(self, width, height):
        size = dict(width=width, height=height, deviceScaleFactor=1, mobile=False)
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", size)

    def check_names_of_controls(self):
        roles = {"button", "link", "option", "treeitem", "tree", "listbox", "searchbox", "combobox", "dialog", "image",
                 "navigation"}
        for node in self.driver.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]:
            if not node["ignored"] and node["role"]["value"] in roles:
                assert node["name"]["value"], node

    def close(self):
        log = self.driver.get_log("browser")
        self.driver.quit()
        assert log == [], log


def check_small(home):
    contents = {"letter.png": pictures.png(1240, 1754, 90, 150), "broken.jpg": b"no picture",
                "card.tif": pictures.tiff(2000, 1200, data=bytes(2000 * 1200))}
    images = {home / "photos/2024/sea" / f"shore {n}.png": PEOPLE for n in (1, 2, 10)}
    images |= {home / "photos/2025/town.png": OTHER_PHOTOGRAPHS, home / "scans/broken.jpg": OTHER}
    images |= {home / "scans" / name: PAGES for name in ("letter.png", "card.tif")}
    images |= {home / "photos/2025" / name: OTHER for name in HOSTILE}
    for picture in images:
        picture.parent.mkdir(parents=True, exist_ok=True)
        picture.write_bytes(contents.get(picture.name) or pictures.png(640, 400, 90))
    made, failed = make_gallery(home / "page", images)
    assert made == 9 and f"thumbnail of {home}/scans/broken.jpg: " in failed, (made, failed)
    os.remove(home / "photos/2025/town.png")
    assert make_gallery(home / "page", images)[0] == 0
    data = home / "page/data.js"  # an index below itself, directly or through another index, is shown at the top
    data.write_text(data.read_text().replace("[1000000,-1,", "[1000000,0,").replace("[2000000,-1,", "[2000000,4,"))

    page = Page(home / "page")
    counts = dict(item.text.split("\n")[:2] for item in page.all("[role=treeitem]"))
    counts = {name: count for name, count in counts.items() if count != "0"}
    assert counts == {"Photographs": "4", "People": "3", "Other photographs": "1", "Documents": "2", "Pages": "2",
                      "Other": "4", str(home): "10", "photos": "7", "scans": "3"}, counts
    page.check_names_of_controls()
    assert page.text("#count") == "10 pictures" and page.js("document.title") == "Catalogue"

    # With the keyboard only: the tree of folders, one folder, a search in it, a picture, and back.
    for _ in range(5): page.press(Keys.TAB)
    page.check_focus("Photographs, 4 pictures")
    page.press(Keys.TAB, Keys.ARROW_DOWN, Keys.ARROW_RIGHT, Keys.ARROW_RIGHT)
    page.check_focus("2024/sea, 3 pictures")
    page.press(Keys.ARROW_LEFT, Keys.ENTER)
    assert page.text("#count") == "7 pictures"
    page.all("#search")[0].send_keys("SHORE")
    page.press(Keys.ARROW_DOWN, Keys.END)
    assert page.text("#count") == "3 pictures" and page.names() == ["shore 1.png", "shore 10.png", "shore 2.png"]
    page.press(Keys.ENTER)
    page.wait("document.querySelector('#stage img')?.naturalWidth === 640")
    page.check_names_of_controls()
    assert page.text("#viewer-name") == "shore 2.png" and page.text("#fact-index") == "Photographs \u203a People"
    page.press(Keys.HOME, Keys.ARROW_RIGHT)
    assert page.text("#viewer-position") == "2 of 3" and page.text("#fact-meaning") == "photographs that show faces"
    for _ in range(8):
        page.press(Keys.TAB)
        assert page.js("document.querySelector('#viewer :focus') || document.activeElement === document.body")
    page.driver.refresh()
    assert page.text("#viewer-position") == "2 of 3" and page.text("#title") == "photos"
    page.press(Keys.HOME, Keys.ESCAPE)
    page.check_focus("shore 1.png, ")

    # With the mouse: pictures of several formats, a missing one, and another index.
    page.load("#q=ete&sort=name")
    assert page.names() == [HOSTILE[1]]
    page.load()
    for name, size, note in [(HOSTILE[0], 640, ""), (HOSTILE[1], 640, ""), (HOSTILE[2], 640, ""), ("card.tif", 1600, ""),
                             ("town.png", 256, "The file is missing."), ("letter.png", 1240, "")]:
        page.all(".tile")[page.names().index(name)].click()
        page.wait(f"document.querySelector('#stage img')?.naturalWidth === {size}")
        assert page.text("#viewer-note") == note and page.text("#viewer-name") == name
        page.press(Keys.ESCAPE)
    assert page.text("#fact-paper") == "210 \u00d7 297 mm" and page.text("#fact-resolution") == "150 dots per inch"
    page.all('#indexes .label')[0].click()
    assert page.text("#count") == "4 pictures"
    page.driver.back()
    assert page.text("#count") == "10 pictures"

    page.all("#theme")[0].click()
    assert page.js("getComputedStyle(document.body).colorScheme") == "dark"
    page.resize(320, 600)
    page.wait("document.documentElement.scrollWidth === 320 && document.getElementById('sidebar').inert")
    page.all("#menu")[0].click()
    page.press(Keys.ESCAPE)
    page.check_focus("Indexes and folders")

    page.close()


def check_large(home):
    """100,000 missing pictures that share a few thumbnails."""
    records_file = home / "page/catalogcore-gallery.json"
    records = json.loads(records_file.read_text())
    kept = [record for record in records["pictures"].values() if record[6]]
    paths = [pathlib.Path(f"/nowhere/{n // 10:04}/{n:06}.jpg") for n in range(100_000)]
    records["pictures"] = {str(path): kept[n % len(kept)] for n, path in enumerate(paths)}
    records_file.write_text(json.dumps(records))
    make_gallery(home / "page", dict.fromkeys(paths, PAGES))
    page = Page(home / "page")

    def scroll(top):
        page.js("document.getElementById('scroller').scrollTo(0, arguments[0])", top)
        page.wait("document.elementFromPoint(innerWidth - 90, 500).closest('.tile') !== null")

    for width in (1200, 320):
        page.resize(width, 900)
        for part in (0.3, 0.99999, 0.5, 1):
            scroll(part * page.js("document.getElementById('scroller').scrollHeight"))
            assert len(page.all(".tile")) < 120
        assert page.names()[-1] == "099999.jpg"
    page.js("document.querySelector('.tile').focus()")
    page.press(Keys.END, Keys.ENTER, Keys.ARROW_LEFT, Keys.ESCAPE)
    page.check_focus("099998.jpg, ")
    # The focused tile stays in the document when it is scrolled out of view.
    for top, key, name in [(0, Keys.ARROW_RIGHT, "099999"), (0, Keys.HOME, "000000"), (1e9, Keys.ARROW_RIGHT, "000001")]:
        scroll(top)
        page.press(key)
        page.check_focus(f"{name}.jpg, ")
    assert 0 < len(page.all("#folders li")) < 120
    page.close()


with tempfile.TemporaryDirectory() as name:
    check_small(pathlib.Path(name))
    check_large(pathlib.Path(name))
