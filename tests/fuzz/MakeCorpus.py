#!/usr/bin/env python3
"""Writes the hand-made part of the fuzz targets' corpus: corpus/<target>/<seed>.

Run it again after a change of a format or of a target's use of its bytes. Inputs that the fuzzer
found lie beside these seeds under other names and stay.
"""

import json
import struct
from pathlib import Path

CORPUS = Path(__file__).parent / "corpus"

WGS84 = ('GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],'
         'PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]]')
GAUSS_KRUGER = ('PROJCS["Beijing 1954 / GK 117E",GEOGCS["GCS_Beijing_1954",'
                'DATUM["D_Beijing_1954",SPHEROID["Krassowsky_1940",6378245,298.3]],'
                'PRIMEM["Greenwich",0],UNIT["Degree",0.0174532925199433]],'
                'PROJECTION["Gauss_Kruger"],PARAMETER["False_Easting",500000],'
                'PARAMETER["False_Northing",0],PARAMETER["Central_Meridian",117],'
                'PARAMETER["Scale_Factor",1],PARAMETER["Latitude_Of_Origin",0],'
                'UNIT["Meter",1]]')
HEIGHTS = ('VERTCS["EGM2008_Geoid",VDATUM["EGM2008_Geoid"],PARAMETER["Vertical_Shift",0],'
           'PARAMETER["Direction",1],UNIT["Meter",1]]')


def seed(target, name, data):
    """Writes one seed, text or bytes."""
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(data.encode() if isinstance(data, str) else data)


def utf16(text, size):
    """A text field of `size` bytes."""
    return text.encode("utf-16-le").ljust(size, b"\0")


def rectangle(kind, left, top, width, height):
    return struct.pack("<B4d", kind, left, top, width, height)


def polygon(*coordinates, count=None):
    count = len(coordinates) // 2 if count is None else count
    return struct.pack(f"<Bi{len(coordinates)}d", 6, count, *coordinates)


def area(*shapes, wkt="", count=None):
    header = utf16("ZELTO_AOI", 512) + struct.pack("<i", 101) + wkt.encode().ljust(1024, b"\0")
    header += bytes(4) + struct.pack("<4d", 0, 20, 15, 0)
    return header + struct.pack("<q", len(shapes) if count is None else count) + b"".join(shapes)


SHAPES = (rectangle(4, 10, 20, 5, 4), rectangle(5, 0, 8, 9, 7),
          polygon(0, 0, 10, 0, 10, 8, 5, 2, 1, 9))


def areas():
    seed("aoi_file", "empty", area())
    seed("aoi_file", "shapes", area(*SHAPES, wkt=WGS84))
    seed("aoi_file", "local", area(SHAPES[0], wkt='LOCAL_CS["here"]'))
    seed("aoi_file", "bow-tie", area(polygon(0, 0, 9, 9, 9, 0, 0, 9)))
    seed("aoi_file", "cut", area(*SHAPES)[:-20])
    seed("aoi_file", "many-promised", area(SHAPES[0], count=0x7FFFFFFF))
    seed("aoi_file", "vertices-promised", area(polygon(0, 0, 1, 1, count=0x10000000)))
    seed("aoi_file", "huge", area(rectangle(5, -1e15, 1e15, 2e15, 2e15),
                                  rectangle(4, -1e308, 1e308, 1e308, 1e308)))
    seed("aoi_file", "special", area(rectangle(5, float("nan"), 1, float("inf"), -3),
                                     polygon(0, 0, float("nan"), 1, float("-inf"), 2, 3, 3)))


def sample_class(name, bands, shapes=()):
    data = name.encode().ljust(256, b"\0") + struct.pack("<4i", 11, 12, 13, bands)
    data += struct.pack(f"<{3 * bands}d", *range(3 * bands)) + struct.pack("<2i", 21, 22)
    data += struct.pack(f"<{bands * bands}d", *range(bands * bands))
    return data + struct.pack("<2i", bool(shapes), len(shapes)) + b"".join(shapes)


def sample_file(*classes, count=None):
    header = utf16("ZELTO_SampleFileTag", 288)
    header += struct.pack("<i", len(classes) if count is None else count)
    return header.ljust(312, b"\0") + b"".join(classes)


def samples():
    whole = sample_file(sample_class("crops", 2, SHAPES), sample_class("bare soil", 0))
    seed("sample_file", "empty", sample_file())
    seed("sample_file", "whole", whole)
    seed("sample_file", "cut", whole[:-9])
    seed("sample_file", "many-promised", sample_file(sample_class("a", 1), count=0x7FFFFFFF))
    bands = bytearray(sample_file(sample_class("a", 1)))
    struct.pack_into("<i", bands, 312 + 256 + 12, 46341)
    seed("sample_file", "bands-promised", bytes(bands))


def assistant_file(classes=0, entries=0, matrix=(), version=102):
    header = bytearray(utf16("ZELTO_ClassAssistFileTag", 1080))
    struct.pack_into("<i", header, 256, version)
    struct.pack_into("<i", header, 288, classes)
    struct.pack_into("<ii", header, 1072, entries > 0, entries)
    data = bytes(header)
    for i in range(classes):
        data += utf16(f"class {i}", 256) + struct.pack("<i4Bq", i, 10 * i, 20 * i, 30 * i, 255, 0)
    data += b"".join(struct.pack("<2d2i", i, i + 0.5, i, -i) for i in range(entries))
    if matrix:
        data += struct.pack("<2i", len(matrix), len(matrix[0]))
        data += b"".join(utf16(text, 256) for row in matrix for text in row)
    return data


def assistants():
    whole = assistant_file(3, 2, (("a", "b"), ("c", "d")))
    seed("assistant_file", "empty", assistant_file())
    seed("assistant_file", "whole", whole)
    seed("assistant_file", "old", assistant_file(2, 0, version=100))
    seed("assistant_file", "cut", whole[:-100])
    promised = bytearray(assistant_file(1))
    struct.pack_into("<i", promised, 288, 0x7FFFFFFF)
    seed("assistant_file", "many-promised", bytes(promised))
    seed("assistant_file", "wide-promised", assistant_file() + struct.pack("<2i", 1, 0x7FFFFFFF))
    seed("assistant_file", "empty-rows", assistant_file() + struct.pack("<2i", 0x7FFFFFFF, 0))


def texts():
    seed("polygon_text", "two", "first 0 0 10 0 10.5 8 end\nsecond 1e3 -2 3 4 5 6 end\n")
    seed("polygon_text", "odd", "a 1 2 3 end b end c 1 2")
    seed("polygon_text", "special", "a nan inf -inf 1e999 x y 0x10 end")
    seed("class_table", "plain", "value,red,green,blue,name\n1,10,20,30,water\n2,0,0,0,\n")
    seed("class_table", "quoted", '\ufeff-1,1,2,3,"a, ""b"" c"\n\n5, 6 ,7,8, d \r\n')
    seed("class_table", "wrong", '1,2,3,"open\n')
    seed("control_points", "plain", "column,row,x,y\n0,0,500,900\n# comment\n4,0,620,900\n0,2,500,840\n")
    seed("control_points", "line", "0,0,1,1\n1,1,2,2\n2,2,3,3\n")
    seed("control_points", "special", "1e308,-1e308,1e308,1\n-1e308,1e308,1,1\n0,0,0,0\n1,nan,0,0\n")
    seed("point_table", "columns", 'name,lon,lat\n"a,b",117.5," 36.25"\nc,1,2\n')
    seed("point_table", "plain", "x y\n# comment\n117.5 36.25\n-180,90 more\n")
    seed("point_table", "special", "1e308 -1e308\nnan inf\n+1;+2\n")
    options = ["1,2,3", "3,2,1", "0,10,5,0", "polygon 0,0 10,0 10,5", "UInt16", "GTiff",
               "new.img", "COMPRESS=LZW", "stddev", "heat", "\u00e4\ud7ff"]
    for kind, text in enumerate(options):
        seed("command_line", f"option-{kind:02}", bytes([kind]) + text.encode())
    seed("command_line", "ellipse", b"\x03ellipse:0;10;5;0")
    seed("command_line", "special", b"\x03rectangle nan,inf,1e308,-1e308")


def recipe(*bands, **others):
    colors = dict.fromkeys(("hue", "intensity", "saturation", "contrast", "transparency"), 0)
    return json.dumps({"format": "zelto display recipe", "version": 1, "bands": bands,
                       "colors": colors, **others})


def recipes():
    bounds = {"minimum": 10, "maximum": 20}
    statistics = {**bounds, "mean": 15, "standardDeviation": "Infinity"}
    histogram = {**bounds, "counts": [1, 2, 3]}
    linear = {"band": 1, "stretch": "linear", "statistics": statistics}
    zoom = {"stretch": "zoom", "low": 1, "high": "NaN"}
    seed("display_recipe", "linear", recipe(linear))
    seed("display_recipe", "equalize", recipe({"band": 2, "stretch": "equalize",
                                               "statistics": statistics, "histogram": histogram}))
    seed("display_recipe", "auto-levels", recipe({"band": 1, "stretch": "autolevels",
                                                  "histogram": histogram, "threshold": 0.5}))
    seed("display_recipe", "zoom", recipe({"band": 3, "stretch": "zoom", "function": zoom}))
    seed("display_recipe", "table", recipe(
        *[{"band": 1, "stretch": "table", "table": [7] * 256}] * 3))
    seed("display_recipe", "ramp", recipe(linear, ramp=["#0102ff"] * 256))
    seed("display_recipe", "classes", recipe(linear, classes=[
        {"low": 0.5, "high": 1.5, "color": [1, 2, 3, 255], "name": "\u6c34"}]))
    seed("display_recipe", "view", recipe(
        linear, view={"left": 0, "top": 10, "right": 10, "bottom": 0, "width": 20, "height": 30,
                      "srs": "EPSG:4326"}, mask={"area": "area.aif", "outside": "black"}))
    seed("display_recipe", "nested", "[" * 1000)


def references():
    for name, text in (("geographic", WGS84), ("projected", GAUSS_KRUGER), ("heights", HEIGHTS),
                       ("code", "EPSG:32650"), ("proj", "+proj=utm +zone=50 +datum=WGS84"),
                       ("url", "http://127.0.0.1:1/none"), ("compound", "EPSG:4326+5773"),
                       ("lines", WGS84 + "\r\nsecond line\n")):
        seed("reference", name, b"\x14\x00\x00\x00" + text.encode())
    seed("reference", "connected", b"\x14\x00\x01\x00" + WGS84.encode())
    for name, text in (("geographic", WGS84), ("projected", GAUSS_KRUGER), ("heights", HEIGHTS)):
        seed("wkt", name, text)
        seed("projection_file", name, text + "\r\nsecond line\n")
    seed("wkt", "nested", "GEOGCS[" * 300)
    seed("projection_file", "empty", "\n")
    seed("reference", "shifted", b"\x27\x01\x01\x01" + bytes([90, 91, 92, 81, 82, 83, 84]) +
         GAUSS_KRUGER.encode())


def numbers():
    for kind, name in enumerate(("matrix", "equations", "grid")):
        seed("least_squares", name, bytes([kind, 4]) + bytes(range(60, 160)))
        seed("least_squares", f"{name}-special", bytes([kind, 9]) + bytes(range(160, 255)))
    seed("least_squares", "denormal", bytes([0, 59]) + bytes([241]) * 110)
    for order in range(1, 4):
        seed("least_squares", f"fit-{order}",
             bytes([2, order, 100, 8, 8, 82, 82]) + bytes((37 * i) % 200 for i in range(60)))


# Calls of the target "interface": the operations by subject, in the order of their tables.
OPERATIONS = {
    name: bytes([subject, which])
    for subject, names in enumerate((
        "Open OpenSimple OpenWarped OpenSeveral OpenAsDataset Reopen Close OpenNull OpenScratch "
        "Compose CopySettings ReadPixel WritePixel ConvertPositions SetNoData SetGeoTransform "
        "CompareReferences AskNames BuildPyramid",
        "DrawInterleaved DrawPlanes FillCache AskShownColor ReleaseCache SetStretch Equalize "
        "UseWallis SetThreshold SetAdjustments SetShownBands SetColorBand SetDisplayKind SetRamp "
        "SetClasses AdjustPicture",
        "ReadBlock WriteBlock CacheData AskCache Release ComputeStatistics CountValues "
        "SetHistogram SetStretchData SetEnhancement SetRange SetPalette UseOverview",
        "Draw AddVertices Finish Remove Hit HitArea Edit EditVertices Copy UseEllipse "
        "MakeGeometries FromGeometry Empty UseControlPoints",
        "MakeRegion AskRegion BoundRegion ComputeRegion ComputeShape ComputeReport ComputeMask "
        "Reproject"))
    for which, name in enumerate(names.split())
}
RASTERS = 14


def call(name, *arguments):
    return OPERATIONS[name] + bytes(arguments)


def opened(raster, source=0):
    return call("Open", source, raster, 1, 1)


def sequences():
    draw = call("DrawInterleaved", 0, 0, 4, 4, 1, 1, 1)
    planes = call("DrawPlanes", 0, 0, 4, 5, 4, 1, 1, 1)
    triangle = call("Draw", 5, 4, 82, 82, 98, 82, 98, 94, 82, 94) + call("Finish", 1)
    for raster in range(RASTERS):
        seed("interface", f"show-{raster:02}", opened(raster) + draw + planes)
        seed("interface", f"region-{raster:02}",
             opened(raster) + triangle + call("MakeRegion", 0, 1, 1) + call("BoundRegion", 0) +
             call("ComputeRegion", 0, 0, 1, 0) + call("ComputeShape", 0, 1, 1, 1, 0, 0) + planes +
             call("ComputeReport", 0, 0, 0, 0, 82, 160, 5, 80, 82, 0))
        seed("interface", f"band-{raster:02}",
             opened(raster) + call("CacheData", 0, 1, 0, 0, 4, 4, 4, 4) +
             call("AskCache", 0, 1, 82, 84, 1, 90, 91) +
             call("ComputeStatistics", 0, 1, 80, 0, 0, 0) +
             call("CountValues", 0, 1, 16, 80, 200, 0, 0) + call("Equalize", 0, 1))
    for stretch in range(12):
        seed("interface", f"stretch-{stretch:02}",
             opened(0) + call("SetStretch", 0, stretch) + call("Equalize", 0, 0) + draw +
             call("UseWallis", 0, 1) + draw)
    seed("interface", "again", opened(0) + opened(1) + call("Reopen", 0, 0) + draw +
         call("Close", 0) + draw + call("Reopen", 0, 1) + draw)
    seed("interface", "closed", opened(0) + triangle + call("Close", 0) +
         call("ComputeRegion", 0, 0, 1, 0) + call("ComputeShape", 0, 1, 1, 1, 0, 0) + planes +
         call("ComputeReport", 0, 0, 0, 0, 82, 160, 5, 80, 82, 0))
    seed("interface", "composed", opened(0) + opened(1, 1) +
         call("Compose", 0, 0, 1, 1, 1, 2) + call("DrawInterleaved", 2, 0, 4, 4, 1, 1, 1) +
         call("DrawPlanes", 2, 0, 4, 4, 4, 0, 1, 1) + call("ReadPixel", 2, 1, 1, 0))
    seed("interface", "scratch", call("OpenScratch", 0) + call("WriteBlock", 0, 1, 0, 0, 4, 4, 4, 4, 90) +
         call("WritePixel", 0, 1, 1) + call("SetNoData", 0, 1, 90, 1) +
         call("BuildPyramid", 0, 1, 1, 0) + call("UseOverview", 0, 1, 0, 81, 81) +
         call("SetGeoTransform", 0, 80, 82, 80, 90, 80, 78, 1) + draw)
    for kind in range(6):
        seed("interface", f"shape-{kind}",
             opened(0) + call("Draw", kind, 5, 82, 82, 98, 82, 98, 94, 90, 86, 82, 94) +
             call("Hit", 0, 0, 90, 86, 80, 0) + call("Finish", 1) +
             call("HitArea", 0, 90, 86, 80, 0, 1) + call("Edit", 3, 90, 90, 1, 84, 84) +
             call("EditVertices", 3, 90, 90, 1, 1, 1) + call("Copy", 3) + call("MakeGeometries", 0) +
             call("ComputeMask", 0, 4, 4, 1, 3, 3, 90, 90))
    seed("interface", "ways", opened(0) + call("Reproject", 0, 0, 0, 80, 20, 2, 90, 90, 90) +
         call("OpenWarped", 0, 5, 0) + draw + call("OpenSeveral", 0, 0, 1, 2, 0, 1) + draw)


if __name__ == "__main__":
    areas()
    samples()
    assistants()
    texts()
    recipes()
    references()
    numbers()
    sequences()
