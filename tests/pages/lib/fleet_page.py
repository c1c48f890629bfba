"""fleet_page.py FOLDER AXE RESULTS: opens the pages of FOLDER in a browser and writes for each promise one line into
RESULTS, "name" or "name: what was wrong".

FOLDER holds fleet.html, plain.html and hostile.html, plans.ndjson of the same fleet as fleet.html, and bad.txt, the names
of the machines that lack or lose a driver.
"""

import csv
import json
import pathlib
import subprocess
import sys
import time
import traceback

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "scripts" / "lib"))
import browser  # noqa: E402

folder = pathlib.Path(sys.argv[1])
axe = pathlib.Path(sys.argv[2]).read_text(encoding="utf-8")
plans = [json.loads(line)["machines"][0] for line in (folder / "plans.ndjson").read_text("utf-8").splitlines()]
answered = [machine for machine in plans if machine["outcome"] not in ("unreadable", "unknown-system")]
fleet = folder / "fleet.html"

COUNTS = "[...document.querySelectorAll('#groups tbody')].map(body => Number(body.dataset.count))"
SHOWN = ("[...document.querySelectorAll('#groups tbody')].filter(body => body.checkVisibility())"
         ".flatMap(body => [...body.querySelectorAll('.machines li:not(.filtered)')].map(li => li.firstChild.data.trim()))")
FOCUS = "document.activeElement"


def check(value, what):
    if not value:
        raise AssertionError(what)


def tab_to(page, wanted):
    """Presses Tab until the focus is where `wanted`, an expression of `e`, holds; each stop shows that it has the focus."""
    page.run("document.activeElement.blur(); getSelection().removeAllRanges(); scrollTo(0, 0)")
    for _ in range(200):
        page.press("Tab")
        if page.run(f"{FOCUS} === document.body"):
            continue  # beyond the last place, before the first
        check(page.run(f"getComputedStyle({FOCUS}).outlineStyle !== 'none'"),
              "nothing shows the focus of " + str(page.run(f"{FOCUS}.outerHTML.slice(0, 100)")))
        if page.run(f"(e => {wanted})({FOCUS})"):
            return
    raise AssertionError(f"Tab never gets to {wanted}")


def opens_quietly(page):
    page.requests.clear()
    page.complaints.clear()
    for options in ({}, {"dark": True}, {"width": 380}):
        page.open(fleet, **options)
    tab_to(page, "e.id === 'filter'")
    page.type("OFFICE")
    page.run("document.querySelector('th button').click(); document.querySelector('.devices a').click()")
    check(not page.complaints, page.complaints)
    check(set(page.requests) == {fleet.resolve().as_uri()}, page.requests)


def trouble_comes_first(page):
    page.open(fleet)
    bad = set((folder / "bad.txt").read_text().split())
    names = page.run(SHOWN)
    check(bad and set(names[:len(bad)]) == bad, names[:len(bad)])
    check(sorted(names) == sorted(machine["name"] for machine in answered), "not every machine is in the page once")


def sorts_by_keyboard(page):
    page.open(fleet)
    first = page.run(COUNTS)
    tab_to(page, "e.parentElement.dataset.sort === 'count'")
    page.press("Enter", text="\r")
    counts = page.run(COUNTS)
    check(counts != first, "the order is the same")
    check(counts == sorted(counts, reverse=True), counts)
    sort = "[...document.querySelectorAll('#groups thead th')].map(th => th.getAttribute('aria-sort'))"
    check(page.run(sort) == ["none", "descending", "none", "none"], page.run(sort))
    page.press(" ", code="Space", text=" ")
    check(page.run(COUNTS) == sorted(counts), page.run(COUNTS))
    check(page.run(sort) == ["none", "ascending", "none", "none"], page.run(sort))
    tab_to(page, "e.parentElement.dataset.sort === 'state'")
    page.press("Enter", text="\r")
    check(page.run(COUNTS) == first, "the first order does not come back")


def filters_by_keyboard(page):
    page.open(fleet)
    check(page.run("document.querySelector('#filter').labels[0].textContent.trim()") == "Filter", "the input has no label")
    every = len(page.run(SHOWN))
    tab_to(page, "e.id === 'filter'")
    name = next(machine["name"] for machine in answered if machine["name"].startswith("EDGE"))
    page.type(name.lower())
    check(page.run(SHOWN) == [name], page.run(SHOWN))
    said = page.run("document.querySelector('[role=status]').textContent")
    check(said == f"1 of {every} machines shown, 1 of {len(page.run(COUNTS))} groups", said)
    for _ in name:
        page.press("Backspace")
    check(len(page.run(SHOWN)) == every, "not all come back")
    page.type("1c4d")
    check({shown.split("-")[0] for shown in page.run(SHOWN)} == {"LAB"}, page.run(SHOWN))
    page.press("Backspace")
    page.type("\u00e4")
    check(page.run(SHOWN) == [], page.run(SHOWN))


def states_are_chosen_by_keyboard(page):
    page.open(fleet)
    tab_to(page, "e.value === 'served'")
    page.press(" ", code="Space", text=" ")
    shown = page.run("[...new Set([...document.querySelectorAll('#groups tbody')].filter(b => b.checkVisibility())"
                     ".map(b => b.dataset.state))]")
    check(shown and "served" not in shown, shown)


def adapters_lead_to_their_way(page):
    page.open(fleet)
    tab_to(page, "e.matches('.devices a')")
    page.press("Enter", text="\r")
    check(page.wait_until("document.querySelector('.trail:target')?.open"), "the way stays closed")
    text = page.run("document.querySelector('.trail:target').innerText")
    for word in ("Served because", "Searched", "Driver", "Passed over"):
        check(word in text, text)


def saves_values(page):
    page.open(fleet)
    page.send("Browser.setDownloadBehavior", behavior="allow", downloadPath=str(folder.resolve()))
    tab_to(page, "e.id === 'csv'")
    page.press("Enter", text="\r")
    file = folder / "fleet.csv"
    end = time.monotonic() + browser.LIMIT
    while not file.exists():
        check(time.monotonic() < end, "no file comes")
        time.sleep(0.05)
    rows = list(csv.DictReader(file.read_text("utf-8-sig").splitlines()))
    expected = sorted(
        (machine["name"], machine["source"], machine["system"]["section"], device.get("key", ""),
         (device.get("match") or {}).get("inf", ""), str((device.get("match") or {}).get("line", "")))
        for machine in answered for device in machine["devices"] or [{}])
    found = sorted((row["machine"], row["file"], row["system"], row["device"], row["INF"], row["line"]) for row in rows)
    check(found == expected, [pair for pair in zip(found, expected) if pair[0] != pair[1]][:2])


def values_are_no_formulas(page):
    page.open(folder / "hostile.html")
    page.send("Browser.setDownloadBehavior", behavior="deny")
    page.run("URL.createObjectURL = blob => { window.blob = blob; return '#'; }; document.getElementById('csv').click()")
    rows = list(csv.reader(page.run("blob.text()").lstrip("\ufeff").splitlines()))
    check(any("cmd|" in field for row in rows for field in row), rows)
    check(not [field for row in rows for field in row if field[:1] in "=+-@" and field], rows)


SKELETON = ("[...document.querySelectorAll('*')].map(e => e.localName + ' ' + "
            "e.getAttributeNames().sort().join(' ')).join('\\n')")


def names_are_no_markup(page):
    page.complaints.clear()
    page.requests.clear()
    page.open(folder / "hostile.html")
    hostile = page.run(SKELETON)
    text = page.run("document.documentElement.outerHTML")
    check(page.run("typeof window.owned") == "undefined", "a name was run")
    check(page.run("document.scripts.length") == 1, "there are more scripts")
    check("onerror" in text, "the names are not in the page")
    check(not any(mark in text for mark in "\u202e\u2028\x1b"), "invisible characters are in the page")
    check(not page.complaints and len(page.requests) == 1, (page.complaints, page.requests))
    page.open(folder / "plain.html")
    check(page.run(SKELETON) == hostile, "other names make other elements")


def reads_without_script(page):
    page.open(fleet, script=False)
    check(page.run("document.querySelectorAll('button').length") == page.run(
        "[...document.querySelectorAll('button')].filter(b => !b.checkVisibility()).length"), "a button does nothing")
    check(not page.run("document.querySelector('.tools').checkVisibility()"), "the filter does nothing")
    # Opened by hand, as its reader would.
    page.run("document.querySelectorAll('details').forEach(d => d.open = true)")
    text = page.run("document.body.innerText")
    for machine in answered:
        check(machine["name"] in text, machine["name"])
    check("Passed over" in text, "no INF file is passed over")


def paper_text(page, name):
    file = folder / name
    page.paper(file)
    return subprocess.run(["pdftotext", "-layout", file, "-"], check=True, capture_output=True).stdout.decode()


def prints_everything(page):
    page.open(fleet)
    text = paper_text(page, "fleet.pdf")
    words = set(text.split())
    missing = [machine["name"] for machine in answered if machine["name"] not in words]
    check(not missing, missing[:5])
    devices = {device["key"] for machine in answered for device in machine["devices"]}
    check(devices and devices <= words, devices - words)
    check(text.count("Served because") == page.run("document.querySelectorAll('.trail dl').length"), "a way is missing")
    check("Download" not in text, "the paper has buttons")
    check(not page.run("document.querySelector('.more details').open"), "the page stays open after printing")


def prints_without_script(page):
    page.open(fleet, script=False)
    words = set(paper_text(page, "plain.pdf").split())
    missing = [machine["name"] for machine in answered if machine["name"] not in words]
    check(not missing, missing[:5])


def prints_what_is_filtered(page):
    page.open(fleet)
    tab_to(page, "e.id === 'filter'")
    page.type("LAB-")
    text = paper_text(page, "filtered.pdf")
    check("LAB-" in text and "OFFICE-" not in text.split("Adapters and systems")[0], "the filter does not count")
    check(f"of {len(answered)} machines shown" in text, "the paper does not say that it is a part")


def serves_everybody(page):
    for options in ({}, {"dark": True}, {"width": 380}):
        page.open(fleet, **options)
        page.run("document.querySelectorAll('details').forEach((d, at) => { if (at % 2) d.open = true; })")
        page.run(axe + ";0")
        result = page.run("axe.run(document, {resultTypes: ['violations']})")
        check(result["passes"], "nothing was checked")
        found = [f"{rule['id']} ({rule['impact']}): {rule['nodes'][0]['html'][:200]}" for rule in result["violations"]]
        check(not found, (options, found))
    check(page.run("['header', 'main', 'footer', 'h1'].every(name => document.querySelectorAll('body ' + name).length === 1)"),
          "a landmark is missing")
    check(page.run("[...document.querySelectorAll('table')].every(t => t.caption && t.querySelector('th[scope=col]') "
                   "&& t.querySelector('th[scope=row]'))"), "a table has no caption or headings")


promises = [opens_quietly, trouble_comes_first, sorts_by_keyboard, filters_by_keyboard, states_are_chosen_by_keyboard,
            adapters_lead_to_their_way, saves_values, values_are_no_formulas, names_are_no_markup, reads_without_script,
            prints_everything, prints_without_script, prints_what_is_filtered, serves_everybody]
with browser.browser() as one, open(sys.argv[3], "w", encoding="utf-8") as results:
    for promise in promises:
        try:
            promise(one.page())
            results.write(promise.__name__ + "\n")
        except (AssertionError, browser.BrowserError, subprocess.CalledProcessError) as error:
            results.write(f"{promise.__name__}: {error!r}\n".replace("\n", " ") + "\n")
        except Exception:  # noqa: BLE001: a broken check is a broken promise, and the others are still looked at.
            results.write(f"{promise.__name__}: {traceback.format_exc()!r}\n")
