#!/usr/bin/env python3
"""page_picture.py PAGE PICTURE WIDTH HEIGHT: the first screen of a page of HTML, as a browser of that size shows it."""

import sys

import browser

with browser.browser() as one:
    page = one.page()
    page.open(sys.argv[1], width=int(sys.argv[3]), height=int(sys.argv[4]))
    page.picture(sys.argv[2], whole=False)
