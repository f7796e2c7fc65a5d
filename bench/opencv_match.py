"""The yardstick of bench/compare-match: template and block matching with OpenCV, on one thread.

Usage: opencv_match.py FOLDER TIMES.json
FOLDER holds the pairs of bench_match, TIMES.json what it measured on them. Prints the milliseconds of both sides
and how many times as fast Corvane is. The grid's time holds a call of matchTemplate for each place; what such
calls cost by themselves, without anything to match, is printed beside it.
"""

import json
import sys
import time

from opencv_filters import cv2, np, read_lan, times_of

WINDOW = 19
HALF = WINDOW // 2
STEP = 10
RANGE = 55  # columns
ROWS = 1


def grid_places(size):
    """The rows and columns of the grid's places."""
    rows = (size - WINDOW - 2 * ROWS) // STEP + 1
    cols = (size - WINDOW) // STEP + 1
    return [HALF + ROWS + STEP * i for i in range(rows)], [HALF + STEP * j for j in range(cols)]


def match_grid(left, right):
    size = left.shape[0]
    rows, cols = grid_places(size)
    matched = 0
    for row in rows:
        for col in cols:
            first = max(col - RANGE, HALF)
            last = min(col + RANGE, size - 1 - HALF)
            template = left[row - HALF : row + HALF + 1, col - HALF : col + HALF + 1]
            area = right[row - ROWS - HALF : row + ROWS + HALF + 1, first - HALF : last + HALF + 1]
            scores = cv2.matchTemplate(area, template, cv2.TM_CCOEFF_NORMED)
            _, best, _, _ = cv2.minMaxLoc(scores)
            matched += best > 0.75
    return len(rows) * len(cols), matched


def call_milliseconds(count):
    """So many calls on an image of one pixel."""
    pixel = np.full((1, 1), 100, np.uint8)
    start = time.perf_counter()
    for _ in range(count):
        cv2.minMaxLoc(cv2.matchTemplate(pixel, pixel, cv2.TM_CCOEFF_NORMED))
    return 1000.0 * (time.perf_counter() - start)


def timed(work, runs):
    """The least time of several runs, in milliseconds, and the result."""
    best = float("inf")
    for _ in range(runs):
        start = time.perf_counter()
        result = work()
        best = min(best, time.perf_counter() - start)
    return 1000.0 * best, result


def counters_of(path, name):
    """The counters of a benchmark's first run."""
    with open(path, encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    return next(run for run in runs if run["name"].startswith(name))


def pair_of(folder, name):
    return [read_lan(f"{folder}/{name}_{side}.lan") for side in ("left", "right")]


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    folder, path = sys.argv[1:]
    cv2.setNumThreads(1)
    times = times_of(path)

    kernel = counters_of(path, "WindowKernel")
    print(f"Windows of {WINDOW} x {WINDOW}: {kernel['times as fast']:.1f} times as fast as the plain loop, at least 8")

    left, right = pair_of(folder, "grid")
    ours = times["Grid"]
    grid = counters_of(path, "Grid")
    theirs, (places, matched) = timed(lambda: match_grid(left, right), 2)
    print(f"Grid of {grid['places']:.0f} places, {grid['matched']:.0f} matched: {ours:.0f} ms")
    print(f"  OpenCV {cv2.__version__}, matchTemplate at {places} places, {matched} matched: {theirs:.0f} ms,")
    print(f"  of which {call_milliseconds(places):.0f} ms for the calls alone")
    print(f"  {theirs / ours:.1f} times as fast, at least 2.5; {grid['MB beyond']:.0f} MB beyond the images")

    left, right = pair_of(folder, "dense")
    dense = counters_of(path, "Dense")
    matcher = cv2.StereoBM_create(numDisparities=32, blockSize=WINDOW)
    block, _ = timed(lambda: matcher.compute(left, right), 5)
    print(f"Dense: {times['Dense']:.0f} ms; {dense['MB beyond']:.0f} MB beyond the images and maps")
    print(f"  {dense['times as fast']:.1f} times as fast as the plain form, at least 8")
    print(f"  OpenCV's StereoBM, window {WINDOW}, 32 disparities: {block:.0f} ms")


if __name__ == "__main__":
    main()
