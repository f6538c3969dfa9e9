// Whole programs as a person runs them, from the start of the process to its end, each against
// the tool of GDAL that does the same.

#include "bench/support/Areas.h"
#include "bench/support/Process.h"
#include "bench/support/Ratio.h"
#include "bench/support/Scene.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto::bench {

namespace {

using Words = std::vector<std::string>;

constexpr int SIZE = 12000;
constexpr int SIZES[] = {380, 1200, 3800, SIZE};
constexpr int VERTICES = 1000;

Words operator+(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

Words Zelto(const Words& arguments) {
    return Words{OwnProgram("zelto")} + arguments;
}

std::string Megabytes(double peak) {
    return std::to_string(std::lround(peak)) + " MB";
}

/// Two programs against each other. Their peak memory goes into the remark.
/// @param image whose stored statistics are removed before each run
void AddPrograms(const std::string& name, double limit, const Words& measured,
                 const Words& baseline, const std::string& image, int pairs = 5) {
    const auto baselinePeak = std::make_shared<double>(0.0);
    const auto forget = [image] { std::filesystem::remove(image + ".aux.xml"); };
    AddRatio("program/" + name, limit,
             {[=] {
                  const double peak = RunProgram(measured);
                  Remark("program/" + name,
                         "peak " + Megabytes(peak) + ", baseline " + Megabytes(*baselinePeak));
              },
              forget},
             {[=] { *baselinePeak = RunProgram(baseline); }, forget}, pairs);
}

/// How gdal_translate makes the picture that `zelto render` makes of a whole image, with the
/// samples from `low` to `high` shown.
Words PictureOptions(const std::string& low, const std::string& high) {
    return {"-q",
            "-ot",
            "Byte",
            "-scale",
            low,
            high,
            "0",
            "255",
            "-b",
            "3",
            "-b",
            "2",
            "-b",
            "1",
            "-outsize",
            "1024",
            "1024",
            "-co",
            "COMPRESS=DEFLATE",
            "-co",
            "PHOTOMETRIC=RGB"};
}

/// Milliseconds that a program takes from its start to its end.
double TimeOf(const Words& program) {
    const auto start = std::chrono::steady_clock::now();
    RunProgram(program);
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

/// What comes before any work: loading the libraries, and whatever they do by then. The quickest
/// runs tell how much of it is the engine's.
void AddStart() {
    const std::string name = "program/start: --version / gdalinfo --version";
    struct Quickest {
        double own = 1e9;
        double gdal = 1e9;
    };
    const auto quickest = std::make_shared<Quickest>();
    AddRatio(name, 0.0, {[=] {
                 quickest->own = std::min(quickest->own, TimeOf(Zelto({"--version"})));
                 const double beyond = std::max(quickest->own - quickest->gdal, 0.0);
                 Remark(name, std::to_string(std::lround(beyond)) + " ms beyond, promised 10");
             }},
             {[=] {
                 quickest->gdal = std::min(quickest->gdal, TimeOf({"gdalinfo", "--version"}));
             }},
             25);
}

void AddInfo(const std::string& image, const std::string& suffix) {
    AddPrograms("info, " + suffix + " / gdalinfo", 2.0, Zelto({"info", image}),
                {"gdalinfo", "-nomd", "-norat", "-noct", image}, image, 15);
}

/// Pictures whose stretch needs the statistics of a sample; those of 16-bit values all do.
void AddSampledRender(const std::string& image, const std::string& suffix, int pairs) {
    const std::string out = BenchFile("out.tif");
    const Words reference = Words{OwnProgram("zelto_reference"), "sample-and-translate", image,
                                  BenchFile("other.tif")} +
                            PictureOptions("0", "10000");
    AddPrograms("render, stddev, " + suffix + " / sample and translate", 1.2,
                Zelto({"render", "--overwrite", image, out}), reference, image, pairs);
    AddPrograms("render, zoom, " + suffix + " / sample and translate", 1.2,
                Zelto({"render", "--overwrite", "--stretch", "zoom", "--low", "0", "--high", "255",
                       image, out}),
                reference, image, pairs);
}

/// A picture of 8-bit values between bounds, which needs no statistics.
void AddBoundedRender() {
    const std::string image = ThreeBands8Bit();
    AddPrograms("render, bounds given, 8-bit / gdal_translate -scale", 1.1,
                Zelto({"render", "--overwrite", "--stretch", "zoom002", "--low", "20", "--high",
                       "200", "--bands", "3,2,1", image, BenchFile("out.tif")}),
                Words{"gdal_translate"} + PictureOptions("20", "200") +
                    Words{image, BenchFile("other.tif")},
                image, 5);
}

void AddStatistics(const std::string& image) {
    const Words gdal = {"gdalinfo", "-stats", image};
    AddPrograms("info --stats / gdalinfo -stats", 0.7, Zelto({"info", "--stats", image}), gdal,
                image, 7);
    AddPrograms("stats, whole image / gdalinfo -stats", 0.7, Zelto({"stats", image}), gdal, image,
                7);
    const std::string star = StarArea(SIZE, VERTICES);
    Words read = {OwnProgram("zelto_reference"), "read", image};
    for (const double side : StarBox(SIZE))
        read.push_back(std::to_string(side));
    const Words stats = Zelto({"stats", "--aoi", star, image});
    AddPrograms("stats in 1,000 vertices / raw reads, all threads", 1.2, stats, read, image, 3);
    AddPrograms("stats --covariance / stats", 1.3, stats + Words{"--covariance"}, stats, image, 3);
    const Words hundred = Zelto({"stats", "--aoi", HundredAreas(), image});
    AddPrograms("stats --each of 100 polygons / of their union", 1.4, hundred + Words{"--each"},
                hundred, image, 3);
}

void AddAreas(const std::string& image) {
    const std::string star = StarArea(SIZE, VERTICES);
    const Words render = Zelto({"render", "--overwrite", image, BenchFile("out.tif")});
    AddPrograms("render --aoi of 1,000 vertices / render", 1.25, render + Words{"--aoi", star},
                render, image);
    AddPrograms("aoi mask of 1,000 vertices / gdal_rasterize", 1.1,
                Zelto({"aoi", "mask", "--overwrite", star, image, BenchFile("mask.tif")}),
                {"gdal_rasterize",
                 "-q",
                 "-burn",
                 "1",
                 "-init",
                 "0",
                 "-ot",
                 "Byte",
                 "-co",
                 "COMPRESS=DEFLATE",
                 "-te",
                 "300000",
                 "4380000",
                 "420000",
                 "4500000",
                 "-tr",
                 "10",
                 "10",
                 star,
                 BenchFile("burnt.tif")},
                image);
}

/// The time of one command for a scene of `size` squared, or for an area of so many vertices, as
/// a point of a curve.
void AddPoint(const std::string& curve, double x, const Words& words) {
    AddTime("cost/" + curve + '/' + std::to_string(std::llround(x)), 1,
            {[=] { RunProgram(words); }}, 3);
}

void AddCurves() {
    for (const int size : SIZES) {
        const std::string image = PixelInterleaved(size, Pyramid::None);
        const double pixels = static_cast<double>(size) * size;
        AddPoint("pixels/info", pixels, Zelto({"info", image}));
        AddPoint("pixels/render", pixels,
                 Zelto({"render", "--overwrite", image, BenchFile("out.tif")}));
        AddPoint("pixels/stats", pixels, Zelto({"stats", image}));
        AddPoint("pixels/aoi mask", pixels,
                 Zelto({"aoi", "mask", "--overwrite", StarArea(size, VERTICES), image,
                        BenchFile("mask.tif")}));
    }
    constexpr int MIDDLE = 3800;
    const std::string image = PixelInterleaved(MIDDLE, Pyramid::None);
    for (const int vertices : {10, 100, 1000, 10000, 100000}) {
        const std::string star = StarArea(MIDDLE, vertices);
        AddPoint("vertices/render --aoi", vertices,
                 Zelto({"render", "--overwrite", "--aoi", star, image, BenchFile("out.tif")}));
        AddPoint("vertices/stats --aoi", vertices, Zelto({"stats", "--aoi", star, image}));
        AddPoint("vertices/aoi mask", vertices,
                 Zelto({"aoi", "mask", "--overwrite", star, image, BenchFile("mask.tif")}));
    }
}

/// Makes the scenes in a process of its own: the peak memory of a program is at least that of the
/// process that starts it.
void MakeScenes() {
    const pid_t child = fork();
    if (child == 0) {
        for (const int size : SIZES)
            PixelInterleaved(size, Pyramid::None);
        PixelInterleaved(SIZE, Pyramid::Built);
        ThreeBands8Bit();
        _exit(0);
    }
    waitpid(child, nullptr, 0);
}

} // namespace

void Register() {
    MakeScenes();
    // GDAL's tools would keep statistics beside the image and repeat them from there.
    setenv("GDAL_PAM_ENABLED", "NO", 1);
    const std::string plain = PixelInterleaved(SIZE, Pyramid::None);
    const std::string pyramid = PixelInterleaved(SIZE, Pyramid::Built);
    AddStart();
    AddInfo(pyramid, "with pyramid");
    AddInfo(plain, "without pyramid");
    AddStatistics(plain);
    AddSampledRender(pyramid, "with pyramid", 7);
    AddSampledRender(plain, "without pyramid", 3);
    AddBoundedRender();
    AddAreas(pyramid);
    AddCurves();
}

} // namespace zelto::bench
