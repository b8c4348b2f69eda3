#!/usr/bin/python3
"""site.py SITE: the documentation of a built site in Chromium, from its files, without a server:
what its search finds, and that pages fit the width of a screen and pictures can be read there."""

import pathlib
import sys

from selenium import webdriver
from selenium.common.exceptions import TimeoutException
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

docs = pathlib.Path(sys.argv[1]).resolve() / "docs"

# What is typed, and a section that has to be among those found.
SEARCHES = [
    ("fade", "guide.html#guide-keys-end-to-end"),
    ("fading", "guide.html#guide-keys-end-to-end"),
    ("dict", "python.html#python-layers"),
    ("player", "guide.html#guide-play-it"),
    ("universes", "guide.html#guide-edit-a-light-show"),
    ("insertInLa", "guide.html#guide-remove"),
]
# What has to be found before all else.
FIRST = [
    ("wait", "guide.html#guide-let-an-alert-take-over"),
]
NOWHERE = "zyzzyva"

options = webdriver.ChromeOptions()
for option in ("--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars"):
    options.add_argument(option)
options.binary_location = "/usr/bin/chromium"
browser = webdriver.Chrome(
    service=webdriver.chrome.service.Service("/usr/bin/chromedriver"), options=options)
failures = []
try:
    browser.get((docs / "speed.html").as_uri())
    field = browser.find_element("id", "words")
    found = browser.find_element("id", "found")

    def found_links():
        return browser.execute_script(
            "return [...arguments[0].querySelectorAll('a')].map(a => a.getAttribute('href'))",
            found)

    for query, expected, most in [(*row, 12) for row in SEARCHES] + [(*row, 1) for row in FIRST]:
        field.send_keys(Keys.CONTROL, "a")
        field.send_keys(query)
        try:
            WebDriverWait(browser, 10).until(lambda _: expected in found_links()[:most])
        except TimeoutException:
            failures.append(f'"{query}" finds {found_links()}, not {expected}')
    field.send_keys(Keys.CONTROL, "a")
    field.send_keys(NOWHERE)
    WebDriverWait(browser, 10).until(lambda _: NOWHERE in found.text)
    field.send_keys(Keys.CONTROL, "a")
    field.send_keys("universes", Keys.ENTER)
    WebDriverWait(browser, 10).until(lambda _: "guide.html" in browser.current_url)

    for page in sorted(docs.glob("*.html")):
        for width in (400, 1366):
            browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
                "width": width, "height": 700, "deviceScaleFactor": 1, "mobile": width < 768})
            browser.get(page.as_uri())
            needed = browser.execute_script("return document.documentElement.scrollWidth")
            narrow = browser.execute_script(
                "return [...document.querySelectorAll('object')].filter(o => o.clientWidth < 700)")
            failures.extend(f"{page.name}: {picture.get_attribute('data')} is too small to read"
                            for picture in narrow)
            if needed > width:
                failures.append(f"{page.name} is {needed} pixels wide on a screen of {width}")
finally:
    browser.quit()
print("\n".join(failures) or "the documentation is found and fits")
sys.exit(bool(failures))
