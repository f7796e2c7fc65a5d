"""The yardstick of bench/compare-filters: the same filters with OpenCV, to float images, on one thread.

Usage: opencv_filters.py IMAGE.lan TIMES.json
IMAGE.lan is a byte image of one band, TIMES.json what bench_filters measured on it. Prints, for each filter,
the milliseconds of both sides, each the least of several runs, and how fast Corvane is as a share of OpenCV:
above 1 it is the faster one.
"""

import json
import os
import sys
import time

try:
    import cv2
    import numpy as np
except ImportError:
    sys.exit("opencv_filters.py: python3-opencv is not installed; scripts/setup bench installs it")

RUNS = 15
REPLICATE = cv2.BORDER_REPLICATE
SMOOTH_SIGMA = 2.0
CROSSING_SIGMA = 3.0


def read_lan(path):
    """The pixels of a byte image with one band: a header of 128 bytes, with columns and rows at 16."""
    header = np.fromfile(path, dtype="<i4", count=32)
    cols, rows = int(header[4]), int(header[5])
    return np.fromfile(path, dtype=np.uint8, offset=128).reshape(rows, cols)


def milliseconds(work):
    """The least time of several runs."""
    best = float("inf")
    for _ in range(RUNS):
        start = time.perf_counter()
        work()
        best = min(best, time.perf_counter() - start)
    return 1000.0 * best


def kernel_of(sigma):
    """A Gaussian and its second derivative, as wide as Corvane's."""
    reach = int(np.ceil(3.0 * sigma))
    x = np.arange(-reach, reach + 1, dtype=np.float64)
    smooth = np.exp(-x * x / (2.0 * sigma * sigma))
    smooth /= smooth.sum()
    curve = smooth * (x * x - sigma * sigma) / sigma**4
    return smooth.astype(np.float32), (curve - curve.mean()).astype(np.float32)


def filtered(image, along_row, along_column):
    return cv2.sepFilter2D(image, cv2.CV_32F, along_row, along_column, borderType=REPLICATE)


def smooth_by_sep_filter(image):
    kernel, _ = kernel_of(SMOOTH_SIGMA)
    return filtered(image, kernel, kernel)


def smooth_by_gaussian_blur(image_as_float):
    size = 2 * int(np.ceil(3.0 * SMOOTH_SIGMA)) + 1
    return cv2.GaussianBlur(image_as_float, (size, size), SMOOTH_SIGMA, borderType=REPLICATE)


DIFFERENCE = np.array([-0.5, 0.0, 0.5], dtype=np.float32)
ITSELF = np.ones(1, dtype=np.float32)


def gradient(image):
    gx = filtered(image, DIFFERENCE, ITSELF)
    gy = filtered(image, ITSELF, DIFFERENCE)
    return gx, gy, cv2.magnitude(gx, gy)


def gradient_by_filter2d(image):
    gx = cv2.filter2D(image, cv2.CV_32F, DIFFERENCE.reshape(1, 3), borderType=REPLICATE)
    gy = cv2.filter2D(image, cv2.CV_32F, DIFFERENCE.reshape(3, 1), borderType=REPLICATE)
    return gx, gy, cv2.magnitude(gx, gy)


def gradient_with_files(image):
    """gx and gy as durable files, as Corvane's command leaves them."""
    gx, gy, magnitude = gradient(image)
    for name, part in (("gx.bin", gx), ("gy.bin", gy)):
        with open(name, "wb") as file:
            part.tofile(file)
            file.flush()
            os.fsync(file.fileno())
    return magnitude


def zero_crossing(image):
    """Marks where the Laplacian is above 0 and the least of its neighbours below; zeros are not looked at."""
    smooth, curve = kernel_of(CROSSING_SIGMA)
    laplacian = filtered(image, smooth, curve)
    cv2.add(laplacian, filtered(image, curve, smooth), dst=laplacian)
    least = cv2.erode(laplacian, np.ones((3, 3), np.uint8), borderType=REPLICATE)
    above = cv2.compare(laplacian, 0.0, cv2.CMP_GT)
    return cv2.bitwise_and(above, cv2.compare(least, 0.0, cv2.CMP_LT))


def times_of(path):
    """The least time of the repetitions of each benchmark, in milliseconds."""
    times = {}
    with open(path, encoding="utf-8") as file:
        for run in json.load(file)["benchmarks"]:
            if run.get("run_type") == "iteration" and "error_message" not in run:
                name = run["name"].split("/")[0]
                times[name] = min(times.get(name, float("inf")), run["real_time"])
    return times


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    image = read_lan(sys.argv[1])
    as_float = image.astype(np.float32)
    ours = times_of(sys.argv[2])
    cv2.setNumThreads(1)
    rows = [
        ("GaussianSmooth", "sepFilter2D of bytes", lambda: smooth_by_sep_filter(image), 0.6),
        ("GaussianSmooth", "GaussianBlur of floats", lambda: smooth_by_gaussian_blur(as_float), 0.6),
        ("GradientInMemory", "sepFilter2D, magnitude", lambda: gradient(image), 0.6),
        ("GradientInMemory", "filter2D, magnitude", lambda: gradient_by_filter2d(image), 0.6),
        ("GradientWithFiles", "the same, gx and gy to files", lambda: gradient_with_files(image), None),
        ("ZeroCrossing", "sepFilter2D, erode, compare", lambda: zero_crossing(image), 1.0),
        ("ZeroCrossingLowMemory", "the same", lambda: zero_crossing(image), None),
    ]
    print(f"{'Corvane':24}{'ms':>9}  {'OpenCV ' + cv2.__version__:32}{'ms':>9}{'speed':>8}  wanted")
    for name, yardstick, work, wanted in rows:
        theirs = milliseconds(work)
        wish = f"{wanted:.1f} or more" if wanted else ""
        print(f"{name:24}{ours[name]:9.1f}  {yardstick:32}{theirs:9.1f}{theirs / ours[name]:8.2f}  {wish}")


if __name__ == "__main__":
    main()
