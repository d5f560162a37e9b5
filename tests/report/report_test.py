"""The report in a browser: what is on the page, and what the choices do.

report_test.py TARNEX SOURCES: the program and the folder of the project.
"""
import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.select import Select
except ImportError:
    print("skipped: install python3-selenium for", sys.executable)
    sys.exit(77)
if not shutil.which("chromium") or not shutil.which("chromedriver"):
    print("skipped: install chromium and chromium-driver")
    sys.exit(77)

TARNEX, SOURCES = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-background-networking",
         "--disable-component-update", "--disable-sync", "--no-first-run",
         "--window-size=1400,900"]

# What the page makes of every failure, as the command tells it.
ALL_SWITCHES = """return plan.failures.map((failure) => {
  const { use, fates } = switchOver(plan, failure);
  const of = (fate) => fates.filter((one) => one.fate === fate);
  const full = plan.links.flatMap((link) => plan.classes.map((_, c) => [link, c]))
    .filter(([link, c]) => use[link.id][c] > link.capacity[c] * (1 + 1e-9) &&
      use[link.id][c] > plan.usualUse[link.id][c] * (1 + 1e-9));
  return { failure: failure.name, hit: fates.length, local: of("local").length,
    global: of("global").length, lost: of("lost").length, ended: of("ended").length,
    lostBandwidth: d3.sum(of("lost"), (one) => one.lsp.bandwidth), overloads: full.length };
});"""


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        holder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(holder.cleanup)
        cls.folder = pathlib.Path(holder.name)
        options = webdriver.ChromeOptions()
        for flag in FLAGS:
            options.add_argument(flag)
        options.add_argument(f"--user-data-dir={cls.folder}/profile")
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        cls.browser = webdriver.Chrome(service=Service(shutil.which("chromedriver")),
                                       options=options)
        cls.addClassCleanup(cls.browser.quit)

    @classmethod
    def tarnex(cls, *words):
        done = subprocess.run([TARNEX, *words], cwd=cls.folder, capture_output=True, text=True,
                              timeout=120)
        assert done.returncode in (0, 1), done.stderr
        return done.stdout

    def open(self, network, demands, *options):
        self.tarnex("place", network, "--demands", demands, *options, "--save", "plan.json")
        self.tarnex("report", "plan.json")
        self.browser.get(f"file://{self.folder}/plan.html")
        return json.loads((self.folder / "plan.json").read_text())

    def open_abilene(self):
        examples = SOURCES / "examples" / "abilene"
        return self.open(examples / "abilene.network", examples / "abilene.demands",
                         "--protect", "local-or-global")

    def tearDown(self):
        self.assertEqual(self.browser.get_log("browser"), [])
        asked = self.browser.execute_script("return performance.getEntriesByType('resource').length")
        self.assertEqual(asked, 0, "requests")

    def find(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def texts(self, selector):
        return [one.text for one in self.browser.find_elements(By.CSS_SELECTOR, selector)]

    def tab(self, name):
        self.browser.find_element(By.XPATH, f"//button[@role='tab'][.='{name}']").click()

    def row(self, text):
        self.browser.find_element(By.XPATH, f"//div[contains(@class,'cells')][span[.='{text}']]").click()

    def test_failures_are_those_of_the_command(self):
        self.open_abilene()
        told = {row["failure"]: row for row in json.loads(self.tarnex("fail", "plan.json", "--json"))
                ["failures"]}
        found = self.browser.execute_script(ALL_SWITCHES)
        self.assertEqual(len(found), len(told))
        for figures in found:
            row = told[figures["failure"]]
            self.assertEqual(figures, {key: row[key] for key in figures})
        self.tab("Failures")
        self.row("Houston")
        row = told["Houston"]
        self.assertIn(f"{row['hit']} LSPs are hit: {row['local']} go on over local backups, "
                      f"{row['global']} over global ones, {row['lost']} are lost",
                      self.find("#switch").text)
        self.assertEqual(Select(self.find("#failure")).first_selected_option.text, "Houston")
        self.assertEqual(len(self.browser.find_elements(By.CSS_SELECTOR, ".link.failed")),
                         self.browser.execute_script("return switched.failure.links.length"))

    def test_links_show_what_the_plan_says(self):
        plan = self.open_abilene()
        worst = {row["link"]: row for row in json.loads(self.tarnex("fail", "plan.json", "--json"))
                 ["links"]}
        names = self.browser.execute_script("return plan.links.map((link) => link.name)")
        levels = len(plan["network"]["levels"])
        for show, level, share in (
                ("reserved", levels - 1, lambda link, c: sum(plan["use"][link]["total"][c])),
                ("carried", 0, lambda link, c: plan["use"][link]["primary"][c][0])):
            Select(self.find("#show")).select_by_value(show)
            Select(self.find("#level")).select_by_value(str(level))
            for c in range(len(plan["network"]["classes"])):
                Select(self.find("#class")).select_by_value(str(c))
                shown = self.browser.execute_script("return plan.links.map((link) => shareNow(link))")
                for link, value in enumerate(shown):
                    capacity = plan["network"]["links"][link]["capacity"][c]
                    self.assertAlmostEqual(value, share(link, c) / capacity)
        Select(self.find("#show")).select_by_value("worst")
        shown = self.browser.execute_script("return plan.links.map((link) => shareNow(link))")
        for name, value in zip(names, shown):
            self.assertEqual(value, worst[name]["worst"])
        Select(self.find("#level")).select_by_value(str(levels - 1))
        self.tab("Links")
        self.row(names[3])
        total = sum(plan["use"][3]["total"][0])
        self.assertIn(f"{total:,g}", self.texts("#details .of-class")[0])

    def test_an_lsp_shows_its_path_and_backups(self):
        plan = self.open_abilene()
        nodes = [node["name"] for node in plan["network"]["nodes"]]
        placed = [(demand["name"], demand["lsp"]) for demand in plan["demands"] if "lsp" in demand]
        name, lsp = next(one for one in placed if one[1].get("backups"))
        self.find("input[type=search]").send_keys(name)
        self.row(name)
        details = self.find("#details").text
        for path in [lsp["path"], *(backup["path"] for backup in lsp["backups"])]:
            self.assertIn(" > ".join(nodes[node] for node in path), details)
        self.assertEqual(len(self.browser.find_elements(By.CSS_SELECTOR, ".way")),
                         1 + len(lsp["backups"]))

    def test_tables_sort_and_keys_move(self):
        self.open_abilene()
        self.browser.find_element(By.XPATH, "//button[@role='columnheader'][.='bandwidth']").click()
        shown = self.browser.execute_script("return tabs.table.rows.map((lsp) => lsp.bandwidth)")
        self.assertEqual(shown, sorted(shown, reverse=True))
        rows = self.find(".rows")
        rows.send_keys(Keys.ARROW_DOWN, Keys.ARROW_DOWN)
        chosen = self.browser.execute_script("return [state.chosen.id, tabs.table.rows[1].id]")
        self.assertEqual(chosen[0], chosen[1])
        rows.send_keys(Keys.ESCAPE)
        self.assertIn("Choose an LSP", self.find("#details").text)

    def test_two_plans_side_by_side(self):
        examples = SOURCES / "examples" / "abilene"
        for objective in ("load", "hops"):
            self.tarnex("place", examples / "abilene.network", "--demands", examples / "abilene.demands",
                        "--protect", "local-or-global", "--objective", objective,
                        "--save", f"{objective}.json")
        self.tarnex("report", "--compare", "load.json", "hops.json", "-o", "both.html")
        self.browser.get(f"file://{self.folder}/both.html")
        told = json.loads(self.tarnex("diff", "load.json", "hops.json", "--json"))
        found = self.browser.execute_script(
            "return demands.map(({ name, change, pair }) => [change, name, ...pair.map("
            "(one) => one?.nodes ? one.nodes.map((node) => node.name) : null)])")
        self.assertGreater(len(found), 0)
        self.assertEqual(found, [[row["change"], row["demand"], row["pathBefore"], row["pathAfter"]]
                                 for row in told["demands"]])
        for c, name in enumerate(("interactive", "data")):
            Select(self.find("#class")).select_by_visible_text(name)
            growth = dict(self.browser.execute_script(
                "return links.filter(differs).map((link) => [link.name, growth(link)])"))
            rows = {row["link"]: row for row in told["links"] if row["class"] == name}
            self.assertEqual(set(growth), set(rows))
            for link, row in rows.items():
                self.assertAlmostEqual(growth[link], row["gain"])
        moved = next(row for row in told["demands"] if row["change"] == "moved")
        self.row(moved["demand"])
        for side, key in (("before", "pathBefore"), ("after", "pathAfter")):
            self.assertIn(" > ".join(moved[key]), self.find(f"#{side}-details").text)
            self.assertEqual(len(self.browser.find_elements(By.CSS_SELECTOR, f"#{side}-map .way.path")), 1)
        Select(self.find("#failure")).select_by_visible_text("Houston")
        for side in ("before", "after"):
            self.assertIn("Houston fails", self.find(f"#{side}-details").text)
        self.browser.execute_script("before.map.fit(); after.map.show(d3.zoomIdentity.scale(3))")
        self.assertEqual(self.browser.execute_script("return before.map.view.k"), 3)

    def test_names_in_a_drawing_keep_apart(self):
        self.open_abilene()
        self.tarnex("draw", "plan.json", "-o", "map.svg")
        self.browser.get(f"file://{self.folder}/map.svg")
        boxes = self.browser.execute_script(
            "return [...document.querySelectorAll('.name, circle')].map((one) => {"
            "const { x, y, width, height } = one.getBBox();"
            "return [one.textContent, x, y + 0.2 * height, x + width, y + 0.8 * height]; })")
        self.assertEqual(len([box for box in boxes if box[0]]), 11)
        for i, (_, left, top, right, bottom) in enumerate(boxes):
            for _, left2, top2, right2, bottom2 in boxes[:i]:
                self.assertFalse(left < right2 and left2 < right and top < bottom2 and top2 < bottom)

    def test_names_are_but_names(self):
        bad = '</script><img src=x onerror="document.title=1">'
        (self.folder / "bad.json").write_text(json.dumps({
            "nodes": [{"id": bad}, {"id": "<!--"}, {"id": "&amp;"}],
            "links": [{"source": a, "target": b, "capacity": 5} for a, b in
                      ((bad, "<!--"), ("<!--", "&amp;"), ("&amp;", bad))]}))
        (self.folder / "bad.demands").write_text('demand 1 "<!--" "&amp;" 1\n')
        self.open("bad.json", "bad.demands")
        names = self.browser.execute_script("return plan.nodes.map((node) => node.name)")
        self.assertEqual(names, [bad, "<!--", "&amp;"])
        self.assertEqual(self.browser.find_elements(By.TAG_NAME, "img"), [])
        self.assertEqual(self.browser.title, "plan")
        self.row("<!--")
        self.assertIn("<!-- > &amp;", self.find("#details").text)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
