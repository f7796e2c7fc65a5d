"""Warps photo.lan as bench_photos has made its orthophoto, and prints the ratios of the times in times.json.

gdalwarp computes each pixel's place for itself (-et 0) and takes the nearest pixel, on one thread. Fails if too
few of the pixels are the same.
"""

import json
import math
import struct
import subprocess
import sys
import time

LEAST_SAME = 98.0  # % of the pixels: where both cut a place to another side of an edge they differ
K = 1e-5  # degrees a ground unit: gdalwarp takes rational functions of longitude and latitude


def header(path):
    """cols, rows, x and y of the upper left corner, cell."""
    with open(path, "rb") as file:
        bytes_ = file.read(128)
    return struct.unpack_from("<ii", bytes_, 16) + struct.unpack_from("<fff", bytes_, 112)


def describe(path, data_type, x, y, cell):
    """A copy of a .lan that GDAL reads as raw pixels in their place; returns its path."""
    cols, rows = header(path)[:2]
    raw = path.replace(".lan", ".img")
    with open(path, "rb") as file, open(raw, "wb") as copy:
        copy.write(file.read()[128:])
    with open(path.replace(".lan", ".hdr"), "w") as file:
        file.write(f"ENVI\nsamples = {cols}\nlines = {rows}\nbands = 1\n"
                   f"data type = {data_type}\ninterleave = bsq\nbyte order = 0\n"
                   f"map info = {{Geographic Lat/Lon, 1, 1, {x!r}, {y!r}, {cell!r}, {cell!r}, WGS-84}}\n")
    return raw


def projection():
    """The rows of P: (col, row, 1) ~ P (ground point - centre); and the centre."""
    with open("photo.orn") as file:
        numbers = [[float(word) for word in line.split()] for line in file.read().splitlines()[1:]]
    f, centre = numbers[0][0], numbers[1]
    w, p, k = (math.radians(angle) for angle in numbers[2])
    (a, _, c), (_, e, g) = numbers[4], numbers[5]
    sw, cw, sp, cp, sk, ck = math.sin(w), math.cos(w), math.sin(p), math.cos(p), math.sin(k), math.cos(k)
    r = [[cp * ck, cw * sk + sw * sp * ck, sw * sk - cw * sp * ck],
         [-cp * sk, cw * ck - sw * sp * sk, sw * ck + cw * sp * sk],
         [sp, -sw * cp, cw * cp]]
    rows = [[(r[0][i] + r[2][i] * c / f) / a for i in range(3)],
            [(r[1][i] + r[2][i] * g / f) / e for i in range(3)],
            [-r[2][i] / f for i in range(3)]]
    return rows, centre


def with_functions(source):
    """The photo with its projection as rational functions; returns the path."""
    rows, (x, y, z) = projection()
    scale_xy, scale_z = 2000.0, 2000.0
    unit = rows[2][2] * -z

    def polynomial(row):
        terms = [row[2] * -z, row[0] * scale_xy, row[1] * scale_xy, row[2] * scale_z]
        return " ".join(repr(term / unit) for term in terms) + " 0" * 16

    # Coordinates are cut to pixels here, while gdalwarp takes whole numbers for pixels' centres.
    values = {"LINE_OFF": -0.5, "SAMP_OFF": -0.5, "LINE_SCALE": 1, "SAMP_SCALE": 1,
              "LAT_OFF": y * K, "LONG_OFF": x * K, "LAT_SCALE": scale_xy * K, "LONG_SCALE": scale_xy * K,
              "HEIGHT_OFF": 0, "HEIGHT_SCALE": scale_z,
              "LINE_NUM_COEFF": polynomial(rows[1]), "LINE_DEN_COEFF": polynomial(rows[2]),
              "SAMP_NUM_COEFF": polynomial(rows[0]), "SAMP_DEN_COEFF": polynomial(rows[2])}
    items = "".join(f'<MDI key="{key}">{value}</MDI>' for key, value in values.items())
    return write_vrt("functions.vrt", source, f'<Metadata domain="RPC">{items}</Metadata>')


def turned(source, ortho):
    """The photo as an image whose rows rise by a degree; returns the path."""
    cols, rows, x, y, cell = ortho
    dx, dy = cell * K * math.cos(math.radians(1)), cell * K * math.sin(math.radians(1))
    return write_vrt("turned.vrt", source,
                     f"<SRS>EPSG:4326</SRS><GeoTransform>{x * K!r}, {dx!r}, {dy!r}, {y * K!r}, {dy!r}, {-dx!r}"
                     "</GeoTransform>")


def write_vrt(path, source, content):
    cols, rows = header("photo.lan")[:2]
    with open(path, "w") as file:
        file.write(f'<VRTDataset rasterXSize="{cols}" rasterYSize="{rows}">{content}'
                   '<VRTRasterBand dataType="Byte" band="1"><SimpleSource>'
                   f'<SourceFilename relativeToVRT="1">{source}</SourceFilename><SourceBand>1</SourceBand>'
                   "</SimpleSource></VRTRasterBand></VRTDataset>")
    return path


def best_of(command, n):
    best = math.inf
    for _ in range(n):
        start = time.perf_counter()
        subprocess.check_call(command)
        best = min(best, time.perf_counter() - start)
    return best


def warp(source, ortho, more):
    """Seconds of the best run, and the pixels."""
    cols, rows, x, y, cell = ortho
    left, top = (x - cell / 2) * K, (y + cell / 2) * K  # a cell counts by its upper left corner here
    extent = [left, top - rows * cell * K, left + cols * cell * K, top]
    seconds = best_of(["gdalwarp", "-q", "-overwrite", "-et", "0", "-r", "near", "-wm", "1000",
                       "-t_srs", "EPSG:4326", "--config", "GDAL_NUM_THREADS", "1",
                       "--config", "GDAL_CACHEMAX", "1000", "-te", *map(repr, extent),
                       "-ts", str(cols), str(rows), "-of", "ENVI", *more, source, "out.img"], 5)
    with open("out.img", "rb") as file:
        return seconds, file.read()


def copy(source):
    """Seconds to start, read and write alone."""
    return best_of(["gdal_translate", "-q", "-of", "ENVI", source, "copy.img"], 5)


def main():
    ortho = header("ortho.lan")
    with open("ortho.lan", "rb") as file:
        ours = file.read()[128:]
    with open(sys.argv[1]) as file:
        runs = json.load(file)["benchmarks"]
    seconds = min(run["real_time"] for run in runs if run["run_type"] == "iteration") / 1000
    print(f"orthophoto of {len(ours) / 1e6:.1f} million pixels: {seconds:.3f} s, "
          f"{len(ours) / seconds / 1e6:.0f} million a second")

    photo = describe("photo.lan", 1, 0.0, 0.0, 1.0)
    _, _, x, y, cell = header("dem.lan")
    dem = describe("dem.lan", 4, x * K, y * K, cell * K)
    on_dem = ["-rpc", "-to", f"RPC_DEM={dem}", "-to", "RPC_DEMINTERPOLATION=near"]
    files = copy(photo)
    print(f"gdal_translate, the start and the files alone: {files:.3f} s")
    for name, source, more in (("rational functions on the DEM", with_functions(photo), on_dem),
                               ("a turned image, no DEM", turned(photo, ortho), [])):
        taken, pixels = warp(source, ortho, more)
        print(f"gdalwarp, {name}: {taken:.3f} s, ratio {taken / seconds:.1f}, "
              f"without start and files {(taken - files) / seconds:.1f}")
        if more:
            same = 100 * sum(map(int.__eq__, ours, pixels)) / len(ours)
            print(f"  same pixels: {same:.2f} %")
            if same < LEAST_SAME:
                sys.exit(f"less than {LEAST_SAME} % of the pixels are the same")


main()
