"""The performance report's arithmetic over a committed fixture: best of repetitions, the memcpy
yardstick of the same run scaled to the same byte count, reference ratios and the target check."""
import importlib.machinery
import importlib.util
import json
import math
import pathlib
import sys

FIXTURE = pathlib.Path(__file__).with_name("performance_report_fixture.json")

# (benchmark, kind, limit, input bytes, expected value, expected met); None: nothing to measure.
CASES = [
    ("BM_Work/1024", "ratio", 2.0, None, 2.0, True),  # min of repetitions, CPU time, limit included
    ("BM_Work/2048", "ratio", 2.5, None, 3.0, False),  # microseconds; memcpy scaled up from 1024
    ("BM_Short/64", "ratio", 2.0, None, 1.5, True),  # the memcpy of the nearest size
    ("BM_Work/1024", "ratio", 0.6, 4096, 0.5, True),  # input bytes replace the counted ones
    ("BM_Other/1024", "ratio", 1.5, None, 2.0, False),  # the memcpy of its own run
    ("BM_Call", "ns", 39, None, 40.0, False),  # an errored repetition does not count
    ("BM_Agg", "ns", 300, None, 300.0, True),  # the min aggregate, not the mean
    ("BM_Work/2048", "nfc", 3.0, None, 3.0, True),  # over the reference benchmark
    ("BM_Call", "ratio", 1.0, None, None, None),  # no bytes: no yardstick
    ("BM_Absent", "ns", 1.0, None, None, None),
]


def main():
    loader = importlib.machinery.SourceFileLoader("report", sys.argv[1])
    report = importlib.util.module_from_spec(importlib.util.spec_from_loader("report", loader))
    loader.exec_module(report)
    rows = report.measure(json.loads(FIXTURE.read_text()))
    targets = [(name, name, kind, limit, size) for name, kind, limit, size, _, _ in CASES]
    results = report.check(rows, targets, {"nfc": r"icu.*nfc"})
    failures = 0
    for case, (_, _, value, _, _, met) in zip(CASES, results, strict=True):
        name, _, _, _, expected, expected_met = case
        same = value == expected if expected is None else math.isclose(value, expected)
        if not same or met != expected_met:
            print(f"{case}: measured {value}, met {met}")
            failures += 1
    print(f"{len(CASES) - failures} of {len(CASES)} cases right")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
