"use strict";
// Sorts, filters and saves what the page holds. Without it the page has all of its content, in the order of importance.
(() => {
  const table = document.getElementById("groups");
  const opened = [];
  // Paper cannot be opened.
  addEventListener("beforeprint", () => {
    for (const details of document.querySelectorAll("details:not([open])")) {
      details.open = true;
      opened.push(details);
    }
  });
  addEventListener("afterprint", () => {
    for (const details of opened.splice(0)) details.open = false;
  });
  const openTarget = () => {
    const target = location.hash.length > 1 && document.getElementById(location.hash.slice(1));
    if (target instanceof HTMLDetailsElement) target.open = true;
  };
  addEventListener("hashchange", openTarget);
  openTarget();
  if (!table) return;

  const groups = [...table.tBodies].map((body, place) => {
    const machines = [...body.querySelectorAll(".machines li")];
    const trails = [...body.querySelectorAll(".devices a")].map((link) =>
      document.getElementById(link.hash.slice(1)));
    const cells = body.rows[0].cells;
    const own = cells[0].textContent + "\n" + cells[2].textContent + "\n" + cells[3].textContent + "\n" +
      trails.map((trail) => trail.dataset.name || "").join("\n");
    return {
      body, place, machines, trails,
      own: own.toLowerCase(),
      names: machines.map((machine) => machine.textContent.toLowerCase()),
      keys: {
        state: Number(body.dataset.rank), count: Number(body.dataset.count),
        system: cells[2].textContent, adapters: cells[3].textContent,
      },
    };
  });
  const isShown = (group) => !group.body.classList.contains("filtered");
  const shownMachines = (group) => group.machines.filter((machine) => !machine.classList.contains("filtered"));

  // --- filter -------------------------------------------------------------------------------------------------------
  const form = document.querySelector(".tools");
  const filter = document.getElementById("filter");
  const number = (count, noun) => count.toLocaleString("en") + " " + noun + (count === 1 ? "" : "s");
  const say = () => {
    const shown = groups.filter(isShown);
    const count = (of, which) => of.reduce((sum, group) => sum + which(group).length, 0);
    const all = count(groups, (group) => group.machines);
    document.getElementById("shown").textContent =
      count(shown, shownMachines).toLocaleString("en") + " of " + number(all, "machine") + " shown, " +
      shown.length.toLocaleString("en") + " of " + number(groups.length, "group");
  };
  const apply = () => {
    const text = filter.value.trim().toLowerCase();
    const states = new Set([...form.querySelectorAll("[name=state]:checked")].map((box) => box.value));
    for (const group of groups) {
      // A text that only machines' names have narrows the group down to those machines.
      const isOwn = group.own.includes(text);
      let some = isOwn;
      group.machines.forEach((machine, at) => {
        const fits = isOwn || group.names[at].includes(text);
        machine.classList.toggle("filtered", !fits);
        some = some || fits;
      });
      group.body.classList.toggle("filtered", !some || !states.has(group.body.dataset.state));
    }
    say();
  };
  form.addEventListener("submit", (event) => event.preventDefault());
  form.addEventListener("input", apply);

  // --- order --------------------------------------------------------------------------------------------------------
  const compare = (one, other) => typeof one === "number" ? one - other : one < other ? -1 : one > other ? 1 : 0;
  const headings = [...table.tHead.rows[0].cells];
  const sortBy = (heading) => {
    const key = heading.dataset.sort;
    const isFirst = heading.getAttribute("aria-sort") === "none";
    // Large numbers first: they are what one looks for.
    const rises = isFirst ? key !== "count" : heading.getAttribute("aria-sort") !== "ascending";
    for (const other of headings) other.setAttribute("aria-sort", "none");
    heading.setAttribute("aria-sort", rises ? "ascending" : "descending");
    groups.sort((one, other) => {
      const order = compare(one.keys[key], other.keys[key]);
      return (rises ? order : -order) || one.place - other.place;
    });
    table.append(...groups.map((group) => group.body));
  };
  for (const heading of headings) {
    const button = document.createElement("button");
    button.type = "button";
    button.append(...heading.childNodes);
    heading.append(button);
    heading.setAttribute("aria-sort", heading.dataset.sort === "state" ? "ascending" : "none");
    button.addEventListener("click", () => sortBy(heading));
  }

  // --- values -------------------------------------------------------------------------------------------------------
  // A spreadsheet takes a text that begins with one of these for a formula.
  const quoted = (text) => "\"" + (/^[=+\-@\t\r]/.test(text) ? "'" + text : text).replaceAll("\"", "\"\"") + "\"";
  const csvText = () => {
    const lines = [["machine", "file", "state", "system", "device", "accepted by", "INF", "line", "pass", "section",
      "description", "DriverVer"]];
    for (const group of groups.filter(isShown)) {
      const cells = group.body.rows[0].cells;
      const state = cells[0].textContent.trim();
      const system = cells[2].querySelector("code").textContent;
      for (const machine of shownMachines(group)) {
        const start = [machine.firstChild.data.trim(), machine.dataset.file, state, system];
        const ways = group.trails.map(({dataset: way}) => [way.key, way.by, way.inf, way.line, way.pass, way.section,
          way.name, way.ver]);
        for (const way of ways.length ? ways : [Array(8).fill("")]) lines.push([...start, ...way]);
      }
    }
    return lines.map((line) => line.map((text) => quoted(text || "")).join(",") + "\r\n").join("");
  };
  document.getElementById("csv").addEventListener("click", () => {
    const link = document.createElement("a");
    // With the mark that makes spreadsheets read UTF-8.
    link.href = URL.createObjectURL(new Blob(["\uFEFF", csvText()], {type: "text/csv"}));
    link.download = "fleet.csv";
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 1000);
  });

  form.hidden = false;
  say();
})();
