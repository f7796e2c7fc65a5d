"""The yardstick of bench/compare-corners: cornerHarris and a 3 x 3 dilate with OpenCV, on one thread.

Usage: opencv_corners.py IMAGE.lan TIMES.json
IMAGE.lan is a byte image of one band, TIMES.json what bench_corners measured on it. Prints the milliseconds of
both sides, each the least of several runs, and Corvane's time as a multiple of OpenCV's: below 1 it is the
faster one.

OpenCV smooths with a box instead of a Gaussian. One of 7 pixels has the variance (7 * 7 - 1) / 12 = 4 of the
Gaussian with sigma 2, whose kernel has 13 weights.
"""

import sys

from opencv_filters import cv2, milliseconds, np, read_lan, times_of

BLOCK_SIZE = 7
GRADIENT_SIZE = 3
K = 0.04
MOST = 1.5


def corners(image):
    response = cv2.cornerHarris(image, BLOCK_SIZE, GRADIENT_SIZE, K)
    return response, cv2.dilate(response, np.ones((3, 3), np.uint8))


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    image = read_lan(sys.argv[1])
    ours = times_of(sys.argv[2])
    cv2.setNumThreads(1)
    theirs = milliseconds(lambda: corners(image))
    print(f"OpenCV {cv2.__version__}, cornerHarris of block {BLOCK_SIZE} and 3 x 3 dilate: {theirs:.1f} ms")
    for name, wanted in (
        ("CornersInMemory", f"at most {MOST}"),
        ("HarrisCorners", "with the durable cornerResponse.lan"),
        ("CornersFromFiles", "without images in memory"),
    ):
        print(f"{name:24}{ours[name]:9.1f} ms{ours[name] / theirs:8.2f}  {wanted}")


if __name__ == "__main__":
    main()
