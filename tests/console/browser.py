"""Debian's Chromium, headless, as the tests of the console use it: pages, links, forms, and the reports on a page."""

import os
import shutil
import tempfile

from selenium import webdriver
from selenium.common.exceptions import UnexpectedAlertPresentException, WebDriverException
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support import expected_conditions
from selenium.webdriver.support.ui import WebDriverWait

# Both by their paths, so that nothing is looked for or downloaded.
CHROMIUM = "/usr/bin/chromium"
DRIVER = "/usr/bin/chromedriver"
FLAGS = ("--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--no-proxy-server",
         "--disable-background-networking", "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage",
         "--host-resolver-rules=MAP *.example 127.0.0.1", "--hide-scrollbars", "--force-device-scale-factor=1")
SECONDS = 30


class Report:
    """One report of a page: what stands above it, its navigation and its rows, as they are shown."""

    def __init__(self, browser, element):
        self.browser = browser
        self.element = element

    def run(self, script, *arguments):
        return self.browser.driver.execute_script(
            "const table = arguments[0].querySelector('table[border=\"1\"]');"
            "const rows = table ? [...table.tBodies[0].rows] : [];" + script, self.element, *arguments)

    def headers(self):
        """The columns' headings in order; blank ones are ''."""
        return self.run("return [...rows.find(row => row.cells.length > 1).cells].map(cell => cell.innerText.trim());")

    # Data rows and the line of totals alike begin with a plain cell.
    LINES = "const lines = rows.filter(row => row.cells.length > 1 && row.cells[0].tagName == 'TD');"
    DATA = LINES + "const data = lines.filter(row => row.cells[0].innerText.trim() != 'TOTAL');"
    TEXTS = "row => [...row.cells].map(cell => cell.innerText.trim())"

    def rows(self):
        """The texts of every data row."""
        return self.run(self.DATA + f"return data.map({self.TEXTS});")

    def row_elements(self):
        return self.run(self.DATA + "return data;")

    def totals(self):
        """The texts of the line of totals; none where there is no such line."""
        found = self.run(self.LINES + f"return lines.map({self.TEXTS});")
        return found[-1] if found and found[-1][0] == "TOTAL" else []

    def column(self, heading):
        place = self.headers().index(heading)
        return [row[place] for row in self.rows()]

    def counts(self):
        """What the lines above the table say: {'Number of Entries:': '106', 'Displaying Entries:': '1 - 50'}."""
        lines = self.element.find_elements(By.CSS_SELECTOR, 'table[border="0"] > tbody > tr')
        cells = [[cell.text for cell in line.find_elements(By.TAG_NAME, "th")] for line in lines]
        return {line[0]: line[1] for line in cells if len(line) == 2 and line[0].endswith(":")}

    def link(self, image, heading=None):
        """The link that has the image: an arrow of a column, or a picture of the navigation."""
        found = self.run("""
            const [, image, heading] = arguments;
            const cells = rows.flatMap(row => [...row.cells]).filter(
                cell => heading === null || cell.tagName == 'TH' && cell.innerText.trim() == heading);
            const images = cells.flatMap(cell => [...cell.querySelectorAll('a > img')]);
            const found = images.find(each => each.getAttribute('src').endsWith('/' + image + '.gif'));
            return found ? found.parentNode : null;""", image, heading)
        if found is None:
            raise AssertionError(f"the report has no link with {image}.gif" + (f" for {heading}" if heading else ""))
        return found

    def sort(self, heading, arrow):
        """Clicks the column's "Up" (ascending) or "Down" (descending) arrow."""
        self.browser.follow(self.link(arrow, heading))

    def go(self, image):
        """Clicks "First", "Previous", "Next", "Last" or "All"."""
        self.browser.follow(self.link(image))

    def boxes(self):
        return self.element.find_elements(By.CSS_SELECTOR, 'input[type="checkbox"]')


class Browser:
    """with Browser("http://127.0.0.1:8080/KalvoforExchange/") as browser: browser.open("Default.asp")"""

    def __init__(self, address, size=(1200, 800)):
        self.address = address
        self.size = size

    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="kalvo-browser-")
        options = Options()
        options.binary_location = CHROMIUM
        options.unhandled_prompt_behavior = "ignore"
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        for flag in FLAGS + (f"--user-data-dir={self.folder}/profile",):
            options.add_argument(flag)
        try:
            self.driver = webdriver.Chrome(service=Service(DRIVER, log_path=os.devnull), options=options)
        except BaseException:
            shutil.rmtree(self.folder, ignore_errors=True)
            raise
        self.driver.set_page_load_timeout(SECONDS)
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                    {"width": self.size[0], "height": self.size[1], "deviceScaleFactor": 1, "mobile": False})
        return self

    def __exit__(self, *error):
        self.driver.quit()
        shutil.rmtree(self.folder, ignore_errors=True)

    def wait(self, what, condition):
        return WebDriverWait(self.driver, SECONDS).until(condition, what)

    # Pages

    def open(self, page):
        self.driver.get(self.address + page)

    def leaves(self, act):
        """Does `act`, which leads to another page, and waits until that page is there."""
        self.driver.execute_script("window.pageBefore = true")
        act()
        self.wait("the next page did not come", self.has_arrived)

    @staticmethod
    def has_arrived(driver):
        try:
            return driver.execute_script("return !window.pageBefore && document.readyState === 'complete'")
        except UnexpectedAlertPresentException:
            raise
        except WebDriverException:
            return False  # between two pages

    def follow(self, element):
        self.leaves(element.click)

    def follow_text(self, text):
        self.follow(self.driver.find_element(By.LINK_TEXT, text))

    def press(self, caption):
        self.leaves(self.button(caption).click)

    def button(self, caption):
        return self.driver.find_element(By.CSS_SELECTOR, f'input[type="submit"][value="{caption}"]')

    def page(self):
        """The page's address below the console's, without its parameters."""
        return self.driver.current_url.removeprefix(self.address).split("?")[0].split("#")[0]

    def text(self):
        return self.driver.find_element(By.TAG_NAME, "body").text

    def heading(self):
        return self.driver.find_element(By.TAG_NAME, "h1").text

    def reports(self):
        return [Report(self, element) for element in self.driver.find_elements(By.CSS_SELECTOR, ".report")]

    def broken_images(self):
        return self.driver.execute_script(
            "return [...document.images].filter(each => !(each.complete && each.naturalWidth > 0)).map(each => each.src)")

    def images(self):
        return self.driver.execute_script("return document.images.length")

    def bookmark_top(self):
        """(how far the address's bookmark is below the window's upper edge, whether the page can scroll no further)"""
        return self.driver.execute_script(
            "const end = document.documentElement, mark = document.getElementsByName(location.hash.slice(1))[0];"
            "return [mark.getBoundingClientRect().top, end.scrollTop + end.clientHeight >= end.scrollHeight - 1];")

    def answer(self, yes):
        """Answers the question that a script asks, and returns its text."""
        question = self.wait("nothing was asked", expected_conditions.alert_is_present())
        text = question.text
        if yes:
            question.accept()
        else:
            question.dismiss()
        return text

    def complaints(self):
        """What Chromium logged since the last call: files that are missing, scripts that failed."""
        return [entry["message"] for entry in self.driver.get_log("browser") if entry["level"] == "SEVERE"]

    # Signing in and out

    def sign_in(self, name, password):
        """On the sign-in page, which every page leads to until one has signed in."""
        self.driver.find_element(By.NAME, "Name").send_keys(name)
        self.driver.find_element(By.NAME, "Password").send_keys(password)
        self.press("Sign in")

    def sign_out(self):
        self.press("Sign out")

    def forget(self):
        """What closing the browser does: the session is gone."""
        self.driver.delete_all_cookies()
