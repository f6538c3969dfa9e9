#include "tests/faults/Operations.h"

#include "tests/support/RasterFile.h"
#include "tests/support/VectorFile.h"

#include <filesystem>
#include <ostream>

namespace zelto::test {

namespace {

namespace fs = std::filesystem;
using Change = Operation::Change;
using Inputs = std::vector<std::pair<std::string, std::string>>;

const Inputs SCENE = {{"scene.tif", "scene.tif"}};
const Inputs OLD_TIFF = {{"out.tif", "old.tif"}, {"out.tfw", "old.tfw"}};
const Inputs OLD_SHAPES = {{"out.shp", "old.shp"}, {"out.shx", "old.shx"}, {"out.dbf", "old.dbf"}};

Inputs operator+(Inputs a, const Inputs& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Inputs One(const std::string& name, const std::string& original) {
    return {{name, original}};
}

std::vector<Operation> MakeOperations() {
    const Inputs area = One("area.geojson", "area.geojson");
    const Inputs classes = One("classes.tif", "classes.tif");
    const Inputs moved = {{"in.tif", "scene.tif"}, {"in.tfw", "old.tfw"}};
    const Inputs movedEnvi = {{"in.dat", "in.dat"}, {"in.hdr", "in.hdr"}};
    const Inputs oldEnvi = {{"out.dat", "old.dat"}, {"out.hdr", "old.hdr"}};
    return {
        {"Create",
         {"create", "@out.tif", "--size", "300x300", "--fill", "7", "--overwrite"},
         OLD_TIFF,
         {"out.tif", "out.tfw"}},
        {"CreateImagine",
         {"create", "@out.img", "--size", "300x300", "--fill", "7", "--overwrite"},
         One("out.img", "old.img"),
         {"out.img"},
         Change::Replaces,
         false},
        {"Copy",
         {"copy", "@scene.tif", "@out.tif", "--overwrite"},
         SCENE + OLD_TIFF,
         {"out.tif", "out.tfw"}},
        {"CopyToEnvi",
         {"copy", "@scene.tif", "@out.dat", "--format", "ENVI", "--overwrite"},
         SCENE,
         {"out.dat"}},
        {"CopyToPcidsk",
         {"copy", "@scene.tif", "@out.pix", "--overwrite"},
         SCENE + One("out.pix", "old.pix"),
         {"out.pix"},
         Change::Replaces,
         false},
        {"AoiMask",
         {"aoi", "mask", "@area.geojson", "@scene.tif", "@out.tif", "--overwrite"},
         SCENE + area + OLD_TIFF,
         {"out.tif", "out.tfw"}},
        {"AoiNew",
         {"aoi", "new", "@out.aif", "--rect", "0,10,10,0", "--overwrite"},
         One("out.aif", "old.txt"),
         {"out.aif"}},
        {"AoiNewShapefile",
         {"aoi", "new", "@out.shp", "--rect", "0,10,10,0", "--overwrite"},
         OLD_SHAPES,
         {"out.shp"}},
        {"AoiConvert",
         {"aoi", "convert", "@area.geojson", "@out.aif", "--overwrite"},
         area + One("out.aif", "old.txt"),
         {"out.aif"}},
        {"PolygonizeToGeoPackage",
         {"polygonize", "@classes.tif", "@out.gpkg", "--overwrite"},
         classes + One("out.gpkg", "old.gpkg"),
         {"out.gpkg"}},
        {"PolygonizeToShapefile",
         {"polygonize", "@classes.tif", "@out.shp", "--overwrite"},
         classes + OLD_SHAPES,
         {"out.shp"}},
        {"PolygonizeToGeoJson",
         {"polygonize", "@classes.tif", "@out.geojson", "--overwrite"},
         classes + One("out.geojson", "area.geojson"),
         {"out.geojson"}},
        {"Move",
         {"file", "mv", "@in.tif", "@out.tif", "--overwrite"},
         moved + OLD_TIFF,
         {"out.tif", "out.tfw"},
         Change::Moves},
        {"MoveEnvi",
         {"file", "mv", "@in.dat", "@out.dat", "--overwrite"},
         movedEnvi + oldEnvi,
         {"out.dat", "out.hdr"},
         Change::Moves},
        {"MoveImagine",
         {"file", "mv", "@in.img", "@out.img", "--overwrite"},
         One("in.img", "scene.img") + One("out.img", "old.img"),
         {"out.img"},
         Change::Moves},
        {"FileCopy",
         {"file", "cp", "@in.tif", "@out.tif", "--overwrite"},
         moved + OLD_TIFF,
         {"out.tif", "out.tfw"}},
        {"FileCopyEnvi",
         {"file", "cp", "@in.dat", "@out.dat", "--overwrite"},
         movedEnvi + oldEnvi,
         {"out.dat", "out.hdr"}},
        {"PyramidInside",
         {"pyramids", "build", "@scene.tif"},
         SCENE,
         {"scene.tif"},
         Change::InPlace},
        {"PyramidInsideAgain",
         {"pyramids", "build", "@levels.tif", "--resampling", "AVERAGE"},
         One("levels.tif", "levels.tif"),
         {"levels.tif"}},
        {"PyramidInsideImagine",
         {"pyramids", "build", "@scene.img"},
         One("scene.img", "scene.img"),
         {"scene.img"},
         Change::InPlace,
         false},
        {"PyramidBeside", {"pyramids", "build", "@in.dat"}, movedEnvi, {"in.dat"}},
        {"PyramidBesideAgain",
         {"pyramids", "build", "@in.dat", "--resampling", "AVERAGE"},
         movedEnvi + One("in.aux", "in.aux") + One("in.rrd", "in.rrd"),
         {"in.dat"}},
        {"Georef",
         {"georef", "@scene.tif", "--box", "0,30,30,0", "--srs", "EPSG:32651"},
         SCENE,
         {"scene.tif"}},
        {"GeorefPoints",
         {"georef", "@scene.tif", "--gcp", "0,0,1,9", "--gcp", "9,0,9,9", "--gcp", "0,9,1,1"},
         SCENE,
         {"scene.tif"}},
        {"Render",
         {"render", "@scene.tif", "@out.png", "--overwrite"},
         SCENE + One("out.png", "old.png"),
         {"out.png"}},
        {"RenderSheet",
         {"render", "--contact-sheet", "@scene.tif", "@out.png", "--overwrite"},
         SCENE + One("out.png", "old.png"),
         {"out.png"}},
        {"RenderRecipe",
         {"render", "@scene.tif", "@out.png", "--save-recipe", "@out.json", "--overwrite"},
         SCENE + One("out.json", "old.txt"),
         {"out.json"}},
        {"RenderTiff",
         {"render", "@scene.tif", "@out.tif", "--overwrite"},
         SCENE + OLD_TIFF,
         {"out.tif"}},
        {"RenderInto",
         {"render", "@scene.tif", "@classes.tif", "--into", "@pictures", "--overwrite"},
         SCENE + classes + One("pictures/scene.png", "old.png"),
         {"pictures/scene.png", "pictures/classes.png"},
         Change::Each},
        {"Zonal",
         {"zonal", "@scene.tif", "@area.geojson", "--out", "@out.gpkg", "--overwrite"},
         SCENE + area + One("out.gpkg", "old.gpkg"),
         {"out.gpkg"}},
        {"ZonalToShapefile",
         {"zonal", "@scene.tif", "@area.geojson", "--out", "@out.shp", "--overwrite"},
         SCENE + area + OLD_SHAPES,
         {"out.shp"}},
        {"Compose",
         {"compose", "@scene.tif:1", "@scene.tif:2", "@scene.tif:3", "@out.tif", "--overwrite"},
         SCENE + OLD_TIFF,
         {"out.tif"}},
        {"HistogramPlot",
         {"histogram", "@scene.tif", "--png", "@out.png", "--overwrite"},
         SCENE + One("out.png", "old.png"),
         {"out.png"}},
        {"Samples",
         {"samples", "collect", "@scene.tif", "--aoi", "@area.geojson", "-o", "@out.smp",
          "--overwrite"},
         SCENE + area + One("out.smp", "old.txt"),
         {"out.smp"}},
        {"Classes",
         {"classes", "write", "@classes.csv", "@out.acf", "--overwrite"},
         One("classes.csv", "classes.csv") + One("out.acf", "old.txt"),
         {"out.acf"}},
    };
}

/// Patches of a few values.
double Patches(int column, int row) {
    return (column / 7 * 31 + row / 5 * 17) % 11;
}

void WriteImage(const std::string& path, const char* driver, int side, int bands,
                const std::vector<int>& overviews = {}) {
    RasterSpec spec = {.width = side, .height = side};
    spec.driver = driver;
    spec.geoTransform = NorthUp(500000.0, 4000000.0, 1.0);
    spec.srs = "EPSG:32650";
    spec.overviews = overviews;
    WriteRaster(path, spec, std::vector<Pixels>(bands, MakePixels(side, side, Patches)));
}

} // namespace

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

const std::vector<Operation>& AllOperations() {
    static const std::vector<Operation> operations = MakeOperations();
    return operations;
}

std::vector<std::string> WordsIn(const Operation& operation, const std::string& folder) {
    std::vector<std::string> words;
    for (const std::string& word : operation.words)
        words.push_back(word.front() == '@' ? folder + '/' + word.substr(1) : word);
    return words;
}

const Originals& Originals::Get() {
    static const Originals originals;
    return originals;
}

Originals::Originals() {
    constexpr int SIDE = 300; // large enough for a pyramid
    WriteImage(File("scene.tif"), "GTiff", SIDE, 3);
    WriteImage(File("scene.img"), "HFA", SIDE, 3);
    WriteImage(File("in.dat"), "ENVI", SIDE, 1);
    {
        // The pyramid that a file has already, levels of its own numbers.
        const GDALDatasetUniquePtr image(GDALDataset::Open(File("in.dat").c_str()));
        const int levels[] = {2, 4};
        image->BuildOverviews("NEAREST", 2, levels, 0, nullptr, nullptr, nullptr);
    }
    {
        const CPLConfigOptionSetter inside("USE_RRD", "NO", false);
        WriteImage(File("levels.tif"), "GTiff", SIDE, 1, {2, 4, 8});
    }
    WriteImage(File("classes.tif"), "GTiff", 60, 1);
    for (const auto& [name, driver] :
         {std::pair("old.tif", "GTiff"), std::pair("old.img", "HFA"),
          std::pair("old.pix", "PCIDSK"), std::pair("old.dat", "ENVI")})
        WriteImage(File(name), driver, 20, 1);
    WriteFile(File("old.tfw"), "1\n0\n0\n-1\n100.5\n99.5\n");
    WriteFile(File("old.txt"), "what stood here before");
    WriteFile(File("old.png"), "what stood here before");
    WriteFile(File("classes.csv"), "0,0,0,0,water\n1,10,20,30,forest\n");
    WriteFile(
        File("area.geojson"),
        R"({"type":"FeatureCollection","crs":{"type":"name","properties":{"name":"EPSG:32650"}},)"
        R"("features":[{"type":"Feature","properties":{"n":1},"geometry":{"type":"Polygon",)"
        R"("coordinates":[[[500010,3999990],[500200,3999950],[500100,3999800],[500010,3999990]]]}}]})");
    WriteVector(File("old.shp"), {.type = wkbPolygon, .fields = {{"n", OFTInteger}}},
                {"POLYGON ((0 0,0 1,1 1,0 0))"});
    VectorLayout package;
    package.driver = "GPKG";
    package.type = wkbPolygon;
    WriteVector(File("old.gpkg"), package, {"POLYGON ((0 0,0 1,1 1,0 0))"});
}

void Originals::Prepare(const Operation& operation, const std::string& folder) const {
    for (const auto& entry : fs::directory_iterator(folder))
        fs::remove_all(entry.path());
    for (const auto& [name, original] : operation.inputs) {
        const fs::path copy = fs::path(folder) / name;
        fs::create_directories(copy.parent_path());
        fs::copy_file(File(original), copy);
    }
}

} // namespace zelto::test
