"""policy_test.py KALVO: what Chromium lets a page do under the policy that the server sends."""

import base64
import hashlib
import http.server
import sys
import threading
import unittest

import cases
from browser import Browser
from selenium.common.exceptions import NoAlertPresentException
from selenium.webdriver.common.by import By
from serving import Serving

KALVO = sys.argv.pop()
RAW = """<html><head><title>plain</title><base href="http://127.0.0.1:9/"></head><body>
<script>document.title = "script";</script><img src="x" onerror="document.title = 'image'">
<svg onload="document.title = 'svg'"></svg><a id="link" href="javascript:document.title = 'link'">x</a>
<div id="styled" style="color: rgb(1, 2, 3)">x</div><button id="button" onclick="document.title = 'button'">x</button>
<form id="form" action="http://127.0.0.1:9/"><input type="submit"></form>
<script src="http://127.0.0.1:9/x.js"></script></body></html>"""


def digest(text):
    return "sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()


HANDLER, STYLE = "document.title = 'declared'", "color: rgb(1, 2, 3)"
PAGES = {
    "Raw.asp": RAW,
    "Own.asp": f'<%@ Language="JavaScript" Handlers="{digest(HANDLER)}" Styles="{digest(STYLE)}" %>'
               f'<button id="button" onclick="{HANDLER}">x</button><div id="styled" style="{STYLE}">x</div>',
    "Delete.asp": '<script src="confirm.js"></script>'
                  '<form onSubmit="return ConfirmDeleteMessage()" action="Done.asp"><input type="submit" value="Delete"></form>',
    "Done.asp": "quite done",
    "confirm.js": 'function ConfirmDeleteMessage() { return window.confirm("Sure?"); }',
}


def setUpModule():
    global server, browser
    server = Serving(KALVO, PAGES, "workers = 2")
    unittest.addModuleCleanup(lambda: server.__exit__(None))
    server.start()
    browser = Browser(server.address).__enter__()
    unittest.addModuleCleanup(browser.__exit__)


def color():
    return browser.driver.execute_script("return getComputedStyle(document.getElementById('styled')).color")


class Policy(unittest.TestCase):
    def test_nothing_that_stands_in_a_page_runs(self):
        browser.open("Raw.asp")
        for what in ("button", "link"):
            browser.driver.find_element(By.ID, what).click()
        self.assertEqual(browser.driver.title, "plain")
        self.assertNotEqual(color(), "rgb(1, 2, 3)")
        browser.driver.execute_script("document.getElementById('form').submit()")
        self.assertEqual(browser.page(), "Raw.asp")
        self.assertTrue(browser.driver.execute_script("return document.baseURI").endswith("/Raw.asp"))
        refused = " ".join(browser.complaints())
        for rule in ("script-src", "style-src", "form-action", "base-uri"):
            self.assertIn(rule, refused)
        with self.assertRaises(NoAlertPresentException):
            browser.driver.switch_to.alert.accept()

    def test_what_a_page_declares_does(self):
        browser.open("Own.asp")
        browser.driver.find_element(By.ID, "button").click()
        self.assertEqual((browser.driver.title, color()), ("declared", "rgb(1, 2, 3)"))

    def test_the_delete_forms_handler_asks(self):
        browser.open("Delete.asp")
        browser.button("Delete").click()
        self.assertEqual(browser.answer(False), "Sure?")
        self.assertEqual(browser.page(), "Delete.asp")
        self.assertEqual([each for each in browser.complaints() if "Content Security Policy" in each], [])

    def test_no_other_site_frames_a_page(self):
        class Neighbour(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                self.send_response(200)
                self.send_header("Content-Type", "text/html")
                self.end_headers()
                self.wfile.write(f'<iframe src="{server.address}Done.asp"></iframe>'.encode())

            def log_message(self, *_):
                pass

        with http.server.ThreadingHTTPServer(("127.0.0.1", 0), Neighbour) as neighbour:
            threading.Thread(target=neighbour.serve_forever, daemon=True).start()
            browser.complaints()
            browser.driver.get(f"http://127.0.0.1:{neighbour.server_port}/")
            browser.driver.switch_to.frame(0)
            self.assertNotIn("quite done", browser.driver.page_source)
            browser.driver.switch_to.default_content()
            self.assertIn("frame-ancestors", " ".join(browser.complaints()))
            neighbour.shutdown()


if __name__ == "__main__":
    cases.main()
