"""The yardstick of bench/compare-segmentation: the same segmentation with scikit-image.

Usage: skimage_segmentation.py IMAGE.raw TIMES.json
IMAGE.raw holds the bytes of a square grey image, TIMES.json what bench_segmentation measured on it. Prints the
seconds of both sides, each the best of its runs, how many times faster Corvane is, and its memory.
"""

import json
import math
import sys
import time

try:
    import numpy as np
    import skimage
    from skimage.segmentation import felzenszwalb
except ImportError as error:
    sys.exit(f"skimage_segmentation.py: {error}; python3-skimage is missing: scripts/setup bench installs it")

SIGMA = 1.0
SCALE = 350.0
MIN_SIZE = 150
RUNS = 2
WARM_UP = 256  # rows and columns


def segment(image):
    return felzenszwalb(image, scale=SCALE, sigma=SIGMA, min_size=MIN_SIZE)


def best_time(image):
    """The seconds of the fastest run, and its labels; what is done once only is done before."""
    segment(image[:WARM_UP, :WARM_UP])
    best, labels = math.inf, None
    for _ in range(RUNS):
        labels = None  # so that two are never there together
        start = time.perf_counter()
        labels = segment(image)
        best = min(best, time.perf_counter() - start)
    return best, labels


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    pixels = np.fromfile(sys.argv[1], dtype=np.uint8)
    size = math.isqrt(pixels.size)
    with open(sys.argv[2], encoding="utf-8") as file:
        runs = [run for run in json.load(file)["benchmarks"] if run.get("run_type") == "iteration"]
    if not runs or any(run.get("error_occurred") for run in runs):
        sys.exit("skimage_segmentation.py: bench_segmentation has failed")
    ours = min(run["real_time"] for run in runs) / 1000.0
    theirs, labels = best_time(pixels.reshape(size, size))
    memory = max(run["bytes a pixel"] for run in runs)
    print(f"{size} x {size} pixels, sigma {SIGMA}, scale {SCALE}, least size {MIN_SIZE}, the best of {RUNS} runs")
    print(f"Corvane              {ours:8.2f} s  {runs[0]['regions']:8.0f} regions")
    print(f"scikit-image {skimage.__version__:7} {theirs:8.2f} s  {labels.max() + 1:8} regions")
    print(f"times faster         {theirs / ours:8.2f}    (wanted: 6 or more)")
    print(f"bytes a pixel        {memory:8.1f}    (wanted: 110 or less)")


if __name__ == "__main__":
    main()
