"""The command from outside: what it prints, how it ends, and which files it leaves alone.

command_test.py TARNEX SOURCES BUILD: the program, the folder of the project and that of its build.
"""
import contextlib
import csv
import fcntl
import io
import json
import math
import os
import pathlib
import pty
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

try:
    import jsonschema
except ImportError:
    print("skipped: install python3-jsonschema for", sys.executable)
    sys.exit(77)

TARNEX, SOURCES, BUILD = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
ABILENE = ["abilene/abilene.network", "--demands", "abilene/abilene.demands"]
COMMANDS = ["show", "place", "explain", "verify", "diff", "fail", "merge", "bench", "convert", "help", "completion"]

WRONG_USES = [  # arguments, first line on standard error
    ("", "tarnex: no command: expected one, as in `tarnex show FILE`"),
    ("plaec x", "tarnex: no command plaec: did you mean place?"),
    ("--frobnicate", "tarnex: unknown option --frobnicate: expected a command, --help or --version"),
    ("show", "tarnex show: FILE is missing: A network or a plan, in any of the formats"),
    ("show a b", "tarnex show: unexpected argument b"),
    ("show a --listt nodes", "tarnex show: unknown option --listt: did you mean --list?"),
    ("show a --list edges", "tarnex show: --list edges: expected nodes, links or demands"),
    ("show a --list", "tarnex show: --list needs a value: --list WHAT"),
    ("place a --save ''", "tarnex place: --save is empty: expected FILE"),
    ("show a --list nodes --list links", "tarnex show: --list is given 2 times"),
    ("show a --json --csv",
     "tarnex show: two forms of output: expected one of --json, --jsonl, --csv"),
    ("show a --matrix-line 0", "tarnex show: --matrix-line 0: expected a whole number of 1 or more"),
    ("show a --scale -1", "tarnex show: --scale -1: expected a number of 0 or more"),
    ("show a --mix gold", "tarnex show: --mix gold: expected NAME=SHARE,..., as gold=10%,bronze=90%"),
    ("place a --retry some", "tarnex place: --retry some: expected a whole number of 0 or more"),
    ("place a --protect gold=lokal",
     "tarnex place: --protect lokal: expected local, global, local-or-global or none"),
    ("place a --weight haste=1", "tarnex place: --weight haste: expected fortz, load-balance, load, "
     "squared-load, utilization, squared-utilization or delay"),
    ("place a --list all --csv", "tarnex place: --csv holds one list: expected --list lsps, "
     "backups, links or refusals"),
    ("place abilene/abilene.network",
     "tarnex place: abilene/abilene.network has no demands: expected --demands FILE"),
    ("place {abilene} --protect lead=local",
     "tarnex place: --protect lead: expected gold, silver or bronze"),
    ("place plan.json", "tarnex place: plan.json is a plan: expected --demands FILE, with what to "
     "place on it"),
    ("explain plan.json Seatle Denver 5", "tarnex explain: no node Seatle: did you mean Seattle?"),
    ("explain plan.json Seattle Denver 5 --level iron",
     "tarnex explain: --level iron: expected gold, silver or bronze"),
    ("diff plan.json plan.json --threshold 101%",
     "tarnex diff: --threshold 101%: expected at most 100%"),
    ("fail plan.json --set ducts",
     "tarnex fail: --set ducts: expected links, duplex, nodes, pairs or a file that names sets, "
     "several with commas"),
    ("fail plan.json --shard 3/2 --save x", "tarnex fail: --shard 3/2: expected I/N with I from 1 to N"),
    ("fail plan.json --shard 1/2", "tarnex fail: --shard needs a file: expected --save FILE"),
    ("convert plan.json out.xyz", "tarnex convert: out.xyz: no format goes with this suffix; "
     "expected .json, .txt, .snd, .graphml, .graph, .dot or .gv, or --to NAME"),
    ("completion fish", "tarnex completion: SHELL fish: expected bash"),
]

WRONG_INPUTS = [  # arguments, what the first line on standard error matches
    ("show nowhere", r"nowhere: .*"),
    ("show abilene", r"abilene: .*"),
    ("place {abilene} --save nowhere/plan.json", r"tarnex place: .*nowhere.*"),
    ("place bad.network --demands abilene/abilene.demands --save kept", r"bad\.network:3:\d+: .*"),
    ("place abilene/abilene.network --demands bad.network --save kept", r"bad\.network:\d+:\d+: .*"),
    ("convert bad.network kept --to json", r"bad\.network:3:\d+: .*"),
    ("verify abilene/abilene.network", r"abilene/abilene\.network: .*expected a plan.*"),
    ("place loop.network --demands loop.network --strict --save kept", r"loop\.network:.*"),
]


class Scratch(unittest.TestCase):
    """A scratch copy of the examples, with a plan and files that are damaged."""

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        shutil.copytree(SOURCES / "examples" / "abilene", self.folder / "abilene")
        self.write("bad.network", "classes a\nlevels gold silver bronze\nnode 0\n")
        self.write("loop.network", "classes a\nlevels gold\nnode 0 A\nnode 1 B\n"
                   "link 0 A A 5\nlink 1 A B 5\n")
        self.write("kept", "as it was")

    def write(self, name, text):
        (self.folder / name).write_text(text)

    def run_words(self, *words, status=0, **settings):
        done = subprocess.run([TARNEX, *words], cwd=self.folder, capture_output=True, text=True,
                              timeout=120, **settings)
        self.assertIn(done.returncode, status if isinstance(status, tuple) else (status,),
                      (words, done.stdout, done.stderr))
        return done

    def run_line(self, line, status):
        return self.run_words(*shlex.split(line.format(abilene=" ".join(ABILENE))), status=status)

    def make_plan(self, *options, name="plan.json"):
        self.run_words("place", *ABILENE, "--save", name, *options, status=(0, 1))


class WrongUse(Scratch):
    def test_says_what_was_expected(self):
        self.make_plan()
        for line, expected in WRONG_USES:
            done = self.run_line(line, 2)
            first, pointer = done.stderr.splitlines()[-2:]
            self.assertEqual(first, expected)
            about = line.split()[0] if line.split() and line.split()[0] in COMMANDS else ""
            self.assertEqual(pointer, f"Try: tarnex help {about}".rstrip())
            self.assertEqual(done.stdout, "", line)

    def test_names_the_place_and_touches_nothing(self):
        for line, expected in WRONG_INPUTS:
            done = self.run_line(line, 2)
            self.assertRegex(done.stderr.splitlines()[-1 if "--strict" in line else 0], expected)
            self.assertEqual(done.stdout, "", line)
            self.assertEqual((self.folder / "kept").read_text(), "as it was", line)

    def test_says_when_a_disk_is_full(self):
        for line in "place {abilene} --save /dev/full", "convert {abilene} /dev/full --to json":
            self.assertRegex(self.run_line(line, 2).stderr,
                             "cannot write /dev/full: No space left on device")

    def test_says_when_standard_output_takes_no_more(self):
        with open("/dev/full", "w") as full:
            done = subprocess.run([TARNEX, "help"], stdout=full, stderr=subprocess.PIPE, text=True)
        self.assertEqual(done.returncode, 2)
        self.assertIn("standard output", done.stderr)


class Pages(Scratch):
    def test_every_example_runs(self):
        nb_examples = 0
        for page in [[], *([name] for name in COMMANDS)]:
            text = self.run_words("help", *page).stdout
            with tempfile.TemporaryDirectory() as folder:
                shutil.copytree(SOURCES / "examples", folder, dirs_exist_ok=True)
                for line in re.findall(r"^ +\$ (.*)$", text, re.MULTILINE):
                    done = subprocess.run(line, shell=True, cwd=folder, capture_output=True,
                                          text=True, env=os.environ | {"PATH": self.path()})
                    self.assertIn(done.returncode, (0, 1), (line, done.stderr))
                    self.assertNotEqual(done.stdout + done.stderr, "" if "convert" not in line
                                        else None, line)
                    nb_examples += 1
        self.assertGreater(nb_examples, 15)

    @staticmethod
    def path():
        return f"{TARNEX.parent}:{os.environ['PATH']}"

    def options_of(self, command):
        return set(re.findall(r"^  (--[a-z-]+)", self.run_words("help", command).stdout,
                              re.MULTILINE))

    def test_the_man_page_has_every_option(self):
        page = self.run_words("help", "--man").stdout
        for command in COMMANDS:
            for option in self.options_of(command):
                self.assertIn(option.replace("-", "\\-"), page)
        if shutil.which("groff"):
            done = subprocess.run(["groff", "-ww", "-man", "-Tutf8"], input=page, text=True,
                                  capture_output=True)
            self.assertEqual((done.returncode, done.stderr), (0, ""))

    def complete(self, *words):
        script = ('source <("$0" completion bash); COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
                  '_tarnex; printf "%s\\n" "${COMPREPLY[@]}"')
        done = subprocess.run(["bash", "-c", script, TARNEX, "tarnex", *words], text=True,
                              cwd=self.folder, capture_output=True, check=True)
        return set(done.stdout.split())

    def test_bash_completes(self):
        self.assertEqual(self.complete("pl"), {"place"})
        self.assertEqual(self.complete("place", "--obj"), {"--objective"})
        self.assertEqual(self.complete("place", "--order", "l"), {"level", "largest"})
        self.assertEqual(self.complete("show", "abi"), {"abilene"})
        self.assertEqual(self.complete("help", "ver"), {"verify"})
        for command in COMMANDS:
            self.assertEqual(self.complete(command, "--"), self.options_of(command) | {"--help"})

    def test_help_is_the_same_on_both_ways(self):
        self.assertEqual(self.run_words("place", "-h").stdout, self.run_words("help", "place").stdout)
        self.assertRegex(self.run_words("--version").stdout, r"^tarnex \d+\.\d+\.\d+\n$")


class Forms(Scratch):
    def documents(self):
        """Commands with every kind of document."""
        self.make_plan("--protect", "local", "--order", "given")
        self.make_plan("--objective", "hops", name="other.json")
        explain = ["explain", "plan.json", "Seattle", "Chicago"]
        return [["show", *ABILENE],
                *(["show", *ABILENE, "--list", what] for what in ("nodes", "links", "demands")),
                ["place", *ABILENE, "--protect", "gold=local", "--order", "given", "--list", "all"],
                [*explain, "10"],
                [*explain, "9G"],
                [*explain, "2G", "--level", "gold", "--class", "data", "--protect", "global"],
                ["verify", "plan.json"],
                ["diff", "plan.json", "other.json"],
                ["fail", "plan.json", "--set", "links,nodes,pairs"],
                ["fail", "other.json"],
                ["fail", "plan.json", "--set", "abilene/abilene.ducts", "--reroute", "--list", "lost"],
                ["fail", "plan.json", "--shard", "1/2", "--save", "part.jsonl"],
                ["bench", *ABILENE, "--seconds", "0.1"]]

    def test_documents_are_as_their_schemas_say(self):
        schemas = SOURCES / "docs" / "schema" / "command"
        seen = set()
        for words in self.documents():
            document = json.loads(self.run_words(*words, "--json", status=(0, 1)).stdout)
            name = document["schema"].removeprefix("tarnex-")
            seen.add(name)
            schema = json.loads((schemas / f"{name}.json").read_text())
            judge = jsonschema.Draft202012Validator(schema)
            judge.check_schema(schema)
            judge.validate(document)
            for key in list(document):  # the schema notices what is missing or of another kind
                self.assertFalse(judge.is_valid(document | {key: 0.5}), key)
        self.assertEqual(seen, {file.stem for file in schemas.glob("*.json")})

    def test_lines_and_document_hold_the_same(self):
        for words in self.documents():
            if words[0] == "bench":
                continue
            document = json.loads(self.run_words(*words, "--json", status=(0, 1)).stdout)
            lines = self.run_words(*words, "--jsonl", status=(0, 1)).stdout.splitlines()
            rebuilt = json.loads(lines[0]) | {key: [] if isinstance(value, list) else value
                                              for key, value in document.items()}
            for line in map(json.loads, lines[1:]):
                kind = line.pop("record")
                if isinstance(document[kind], list):
                    rebuilt[kind].append(line)
                else:
                    self.assertEqual(line, document[kind])
            self.assertEqual(rebuilt, document)

    def test_csv_is_quoted(self):
        self.write("quoted.json", json.dumps({
            "nodes": [{"id": 'A "big", old'}, {"id": "B"}],
            "links": [{"source": 'A "big", old', "target": "B", "capacity": 5}]}))
        text = self.run_words("show", "quoted.json", "--list", "nodes", "--csv").stdout
        rows = list(csv.reader(io.StringIO(text, newline="")))
        self.assertEqual([row[:2] for row in rows],
                         [["id", "name"], ["0", 'A "big", old'], ["1", "B"]])

    def run_on_terminal(self, *words, **environment):
        leader, follower = pty.openpty()
        subprocess.run([TARNEX, *words], stdout=follower, cwd=self.folder, check=True,
                       env=os.environ | {"TERM": "xterm"} | environment)
        os.close(follower)
        with os.fdopen(leader, "rb") as output:
            return output.read1(100_000)

    def test_colours_are_for_terminals(self):
        words = ["show", ABILENE[0]]
        self.assertNotIn("\033", self.run_words(*words).stdout)
        self.assertIn(b"\033[1m", self.run_on_terminal(*words))
        self.assertNotIn(b"\033", self.run_on_terminal(*words, NO_COLOR="1"))


class Pipes(Scratch):
    def test_are_read_as_files_are(self):
        self.make_plan()
        self.write("bare.network", "unit Mbit/s\nnode 0 A\nnode 1 B\nlink 0 A B\n")
        for suffix in "json", "txt", "graphml", "graph", "dot":
            self.run_words("convert", *ABILENE, f"as.{suffix}")
        for words in (["as.json"], ["as.txt"], ["as.graphml"], ["as.graph"], ["as.dot"],
                      ["plan.json"], [ABILENE[0]], ["bare.network", "--capacity", "2G"]):
            expected = self.run_words("show", *words)
            text = (self.folder / words[0]).read_text()
            piped = self.run_words("show", "/dev/stdin", *words[1:], input=text)
            self.assertEqual((piped.stdout, piped.stderr), (expected.stdout, expected.stderr))
        for name in "as.json", ABILENE[2]:
            expected = self.run_words("place", ABILENE[0], "--demands", name, status=(0, 1))
            piped = self.run_words("place", ABILENE[0], "--demands", "/dev/stdin", status=(0, 1),
                                   input=(self.folder / name).read_text())
            self.assertEqual(piped.stdout, expected.stdout)

    def test_that_are_empty_are_refused(self):
        for name in "text", "json", "sndlib", "gml", "dot", "repetita":
            self.assertIn("/dev/stdin:", self.run_words("show", "/dev/stdin", "--format", name,
                                                        status=2, input="").stderr)


class Work(Scratch):
    def test_what_is_placed_is_right_and_the_same_each_time(self):
        for options in [], ["--protect", "local-or-global", "--order", "largest"], \
                ["--order", "given", "--retry", "3", "--objective", "load"]:
            self.make_plan(*options)
            self.make_plan(*options, name="again.json")
            self.assertEqual((self.folder / "plan.json").read_bytes(),
                             (self.folder / "again.json").read_bytes())
            self.run_words("verify", "plan.json", status=0)
            self.run_words("diff", "plan.json", "again.json", status=0)

    def test_a_changed_plan_is_not_right(self):
        self.make_plan()
        plan = (self.folder / "plan.json").read_text()
        changed = re.sub(r'("bandwidth": ?)1300\b', r"\g<1>1301", plan)
        self.assertNotEqual(plan, changed)
        self.write("plan.json", changed)
        self.assertRegex(self.run_words("verify", "plan.json", status=1).stdout, "deviations +[1-9]")

    def test_the_largest_bandwidth_fits_and_no_larger_one(self):
        self.make_plan()
        ask = ["explain", "plan.json", "Denver", "NewYork"]
        options = ["--class", "data", "--json"]
        answer = json.loads(self.run_words(*ask, "1T", *options, status=1).stdout)
        largest = answer["refusal"]["largestBandwidth"]
        self.run_words(*ask, repr(largest), *options, status=0)
        self.run_words(*ask, repr(math.nextafter(largest, math.inf)), *options, status=1)

    def test_goes_on_from_a_plan(self):
        self.make_plan()
        self.write("more", "demand 900 Denver Chicago data gold 10\n")
        self.run_words("place", "plan.json", "--demands", "more", "--save", "plan.json",
                       status=(0, 1))
        self.run_words("verify", "plan.json", status=0)
        text = self.run_words("show", "plan.json", "--list", "demands", "--csv").stdout
        self.assertIn(",900,Denver,Chicago,data,gold,10", text)


class Sweep(Scratch):
    SETS = ["--set", "duplex,nodes", "--reroute", "--list", "lost"]

    def part(self, number, of, *options, save=None, status=(0, 1)):
        return self.run_words("fail", "plan.json", *self.SETS, "--shard", f"{number}/{of}", "--save",
                              save or f"part{number}.jsonl", *options, status=status)

    def merge(self, *parts, status=(0, 1)):
        return self.run_words("merge", "plan.json", *parts, "--json", status=status)

    def setUp(self):
        super().setUp()
        self.make_plan("--protect", "gold=local")
        self.whole = self.run_words("fail", "plan.json", *self.SETS, "--json", status=(0, 1)).stdout

    def test_is_the_same_in_any_number_of_parts_and_jobs(self):
        jobs = self.run_words("fail", "plan.json", *self.SETS, "--json", "--jobs", "3", status=(0, 1))
        self.assertEqual(jobs.stdout, self.whole)
        for of in 1, 2, 5:
            for number in range(1, of + 1):
                self.part(number, of, "--jobs", str(number))
            parts = [f"part{number}.jsonl" for number in range(1, of + 1)]
            self.assertEqual(self.merge(*reversed(parts)).stdout, self.whole)
        self.part(3, 5, save="again.jsonl")
        self.assertEqual((self.folder / "again.jsonl").read_text(),
                         (self.folder / "part3.jsonl").read_text())

    def test_goes_on_where_it_was_broken_off(self):
        self.part(1, 2)
        self.part(2, 2)
        text = (self.folder / "part1.jsonl").read_text()
        for kept in 0, 10, text.index("\n") + 1, len(text) // 2, len(text) - 1:
            self.write("half.jsonl.partial", text[:kept])
            self.part(1, 2, "--resume", save="half.jsonl")
            self.assertEqual((self.folder / "half.jsonl").read_text(), text)
            self.part(1, 2, "--resume", save="half.jsonl")  # nothing is left to do
            self.assertEqual((self.folder / "half.jsonl").read_text(), text)
            self.write("half.jsonl", text[:kept])  # cut off after it was complete
            self.part(1, 2, "--resume", save="half.jsonl")
            self.assertEqual((self.folder / "half.jsonl").read_text(), text)
            (self.folder / "half.jsonl").unlink()
        self.assertIn("belongs to another sweep",
                      self.part(2, 2, "--resume", save="part1.jsonl", status=2).stderr)

    def test_a_backup_that_leads_nowhere_is_no_help(self):
        plan = json.loads((self.folder / "plan.json").read_text())
        backup = next(backup for demand in plan["demands"]
                      for backup in demand.get("lsp", {}).get("backups", []))
        backup["path"] = backup["path"][:1]
        self.write("wrong.json", json.dumps(plan))
        self.run_words("fail", "wrong.json", status=1)

    def test_a_failure_that_hits_nothing_is_no_finding(self):
        self.write("one", "demand 0 Seattle Sunnyvale data gold 10\n")
        self.write("far", "failure far duplex NewYork WashingtonDC\n")
        self.run_words("place", ABILENE[0], "--demands", "one", "--save", "one.json")
        self.run_words("fail", "one.json", "--set", "far", status=0)
        self.run_words("fail", "one.json", status=1)

    def test_replaces_no_device(self):
        os.mkfifo(self.folder / "pipe")
        self.assertIn("expected a regular file", self.part(1, 2, save="pipe", status=2).stderr)
        self.assertTrue((self.folder / "pipe").is_fifo())

    def test_one_process_writes_a_part(self):
        with (self.folder / "part1.jsonl.partial").open("w") as partial:
            fcntl.flock(partial, fcntl.LOCK_EX)
            self.assertIn("another process is writing it", self.part(1, 2, status=2).stderr)
        self.part(1, 2)

    def test_a_plan_through_a_pipe_is_told_by_what_came_out_of_it(self):
        plan = (self.folder / "plan.json").read_text()
        for number in 1, 2:
            words = ["fail", "/dev/stdin", *self.SETS, "--shard", f"{number}/2", "--save",
                     f"part{number}.jsonl"]
            self.run_words(*words, input=plan, status=(0, 1))
        self.assertEqual(self.merge("part1.jsonl", "part2.jsonl").stdout, self.whole)

    def test_ctrl_c_reaches_those_that_place_anew_as_well(self):
        save = self.folder / "stopped.jsonl"
        for attempt in range(10):
            process = subprocess.Popen(
                [TARNEX, "fail", "plan.json", "--set", "pairs", "--reroute", "--save", save],
                cwd=self.folder, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                start_new_session=True)
            time.sleep(0.03 + attempt * 0.005)
            os.killpg(process.pid, signal.SIGINT)
            _, err = process.communicate(timeout=60)
            # killed by the signal where it comes before the program has begun to handle it
            self.assertIn(process.returncode, (0, 1, 130, -signal.SIGINT), err)

    def test_what_does_not_belong_together_is_refused(self):
        for number in 1, 2, 3:
            self.part(number, 3)
        self.make_plan(name="other.json")
        one, two, three = texts = [(self.folder / f"part{n}.jsonl").read_text() for n in (1, 2, 3)]
        lines = two.splitlines(keepends=True)
        for parts, problem in ((texts[:2], "has 3 parts: expected all of them, not 2"),
                               ([one, two, two], "part 2 is given twice"),
                               ([one, "", three], "expected the first line"),
                               ([one, "{}\n", three], "1: no line that"),
                               ([one, "".join(lines[:-1]), three], "the part is not complete"),
                               ([one, two + lines[-1], three], "expected failure"),
                               ([one, "".join(lines[:1] + lines[2:]), three], "expected failure 1"),
                               ([one, two.replace('"levels":[[', '"levels":[', 1), three], "2: no line that"),
                               ([one, re.sub('"peaks":\\[\\[[0-9]+', '"peaks":[[99', two), three],
                                "a number is larger"),
                               ([one, two.replace("preempting", "gently"), three], "another sweep"),
                               ([one, re.sub('"plan":"[^"]*"', '"plan":"1"', two), three],
                                "another plan")):
            for n, text in enumerate(parts, 1):
                self.write(f"p{n}", text)
            done = self.merge(*(f"p{n}" for n in range(1, len(parts) + 1)), status=2)
            self.assertIn(problem, done.stderr)

    def test_a_process_that_dies_is_replaced(self):
        self.write_many()
        words = ["fail", "plan.json", "--set", "many", "--reroute", "--json"]
        expected = self.run_words(*words, status=1).stdout
        process = subprocess.Popen([TARNEX, *words, "--jobs", "2"], cwd=self.folder,
                                   stdout=subprocess.PIPE, text=True)
        self.kill_some(process, "-P", str(process.pid))
        out, _ = process.communicate(timeout=60)
        self.assertEqual((process.returncode, out), (1, expected))

    def write_many(self):
        """As many failures as take a few seconds, also with a sanitizer."""
        def write(number):
            self.write("many", "".join(f"failure s{n} link Denver KansasCity node Houston\n"
                                       for n in range(number)))
        write(100)
        begin = time.monotonic()
        self.run_words("fail", "plan.json", "--set", "many", "--reroute", status=1)
        write(int(min(4000, 100 * 3 / (time.monotonic() - begin))))

    def kill_some(self, process, *which):
        """Kills processes while another one runs."""
        killed = 0
        while process.poll() is None and killed < 4:
            found = subprocess.run(["pgrep", *which], capture_output=True, text=True).stdout.split()
            for one in found[:1]:
                with contextlib.suppress(ProcessLookupError):
                    os.kill(int(one), signal.SIGKILL)
                    killed += 1
            time.sleep(0.05)
        self.assertGreater(killed, 0)

    def test_recipe_for_gnu_parallel_survives_processes_that_die(self):
        self.write_many()
        options = ["--set", "duplex,many", "--reroute"]
        expected = self.run_words("fail", "plan.json", *options, "--json", status=1).stdout
        process = subprocess.Popen([SOURCES / "deploy" / "parallel.sh", "plan.json", "sweep", "3",
                                    *options], cwd=self.folder, stdout=subprocess.PIPE, text=True,
                                   stderr=subprocess.DEVNULL,
                                   env=os.environ | {"TARNEX": str(TARNEX), "FORM": "--json"})
        self.kill_some(process, "-f", f"^{TARNEX} fail plan.json --set duplex,sets1 ")
        out, _ = process.communicate(timeout=100)
        self.assertEqual((process.returncode, out), (1, expected))


class Interrupt(Scratch):
    def setUp(self):
        super().setUp()
        side = 24  # a torus of routers, with more demands than a minute is enough for
        nodes = [f"{x}.{y}" for x in range(side) for y in range(side)]
        at = {name: [f"{(x + 1) % side}.{y}", f"{x}.{(y + 1) % side}"]
              for name in nodes for x, y in [map(int, name.split("."))]}
        links = [pair for name in nodes for to in at[name] for pair in ((name, to), (to, name))]
        self.write("torus.network", "classes a\nlevels gold\n" + "".join(
            f"node {i} {name}\n" for i, name in enumerate(nodes)) + "".join(
            f"link {i} {a} {b} 1e6\n" for i, (a, b) in enumerate(links)))
        self.write("torus.demands", "".join(
            f"demand {i} {nodes[i % len(nodes)]} {nodes[(i * 7 + 5) % len(nodes)]} a gold 1\n"
            for i in range(60_000) if i % len(nodes) != (i * 7 + 5) % len(nodes)))

    def test_stops_at_once_and_keeps_the_file(self):
        process = subprocess.Popen([TARNEX, "place", "torus.network", "--demands", "torus.demands",
                                    "--protect", "local", "--save", "kept"], cwd=self.folder,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        time.sleep(2)
        self.assertIsNone(process.poll())
        process.send_signal(signal.SIGINT)
        begin = time.monotonic()
        out, err = process.communicate(timeout=60)
        self.assertLess(time.monotonic() - begin, 5)
        self.assertEqual((process.returncode, out), (130, ""), err)
        self.assertRegex(err, r"stopped: of \d+ demands \d+ were placed.*kept was not touched")
        self.assertEqual((self.folder / "kept").read_text(), "as it was")
        self.assertEqual([file.name for file in self.folder.iterdir() if "kept" in file.name],
                         ["kept"])


    def start(self, *words):
        process = subprocess.Popen([TARNEX, *words], cwd=self.folder, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.communicate)
        return process

    def test_leaves_no_neighbour_behind(self):
        process = self.start("convert", "torus.network", "--demands", "torus.demands", "kept",
                             "--to", "json")
        while process.poll() is None and not list(self.folder.glob("kept.*.tmp")):
            pass
        process.send_signal(signal.SIGINT)
        _, err = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 130, err)
        self.assertEqual([file.name for file in self.folder.glob("kept*")], ["kept"])
        self.assertEqual("left as before" in err, (self.folder / "kept").read_text() == "as it was")

    def test_says_what_was_written_before(self):
        lines = (self.folder / "torus.demands").read_text().splitlines(keepends=True)
        self.write("some.demands", "".join(lines[:2000]))
        process = self.start("place", "torus.network", "--demands", "some.demands", "--save",
                             "new.json", "--list", "lsps", "--json")  # more than the pipe takes
        while process.poll() is None and not (self.folder / "new.json").exists():
            time.sleep(0.01)
        time.sleep(1)
        process.send_signal(signal.SIGINT)
        _, err = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 130, err)
        self.assertIn("stopped while printing; new.json had been written", err)


class Install(Scratch):
    def test_runs_from_an_empty_prefix(self):
        prefix = self.folder / "prefix"
        subprocess.run(["cmake", "--install", BUILD, "--prefix", prefix, "--component", "command"],
                       check=True, capture_output=True)
        done = subprocess.run([prefix / "bin" / "tarnex", "show", ABILENE[0]], cwd=self.folder,
                              capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        for file, start in (("man/man1/tarnex.1", ".TH TARNEX"),
                            ("bash-completion/completions/tarnex", "# Completion of tarnex")):
            self.assertTrue((prefix / "share" / file).read_text().startswith(start), file)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[4:])
