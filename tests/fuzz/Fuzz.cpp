// Feeds damaged files to the readers of the project's own formats:
//   zelto_fuzz [seconds] [seed]
// Build it with the sanitizers; it ends with the first finding or when the time is up.

#include "zelto/Zelto.h"

#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using zelto::test::ReadFile;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;

/// One file format: an intact file, and what reads it.
struct Target {
    const char* name;
    std::string intact;
    std::function<void(const std::wstring&)> read;
};

std::string IntactAoi(const TemporaryFolder& folder) {
    CAOISource source;
    source.SetSpatialReferenceWKT("LOCAL_CS[\"here\"]");
    auto* rectangle = new CDrawRectangle;
    rectangle->AddVertex({10.0, 20.0});
    rectangle->AddVertex({15.0, 16.0});
    source.AddDrawShape(rectangle);
    auto* ellipse = new CDrawEllipse;
    ellipse->AddVertex({0.0, 8.0});
    ellipse->AddVertex({9.0, 1.0});
    source.AddDrawShape(ellipse);
    auto* polygon = new CDrawPolygon;
    for (int i = 0; i < 9; ++i)
        polygon->AddVertex({i * 1.5, (i * i) % 7 + 0.25});
    polygon->m_complete = true;
    source.AddDrawShape(polygon);
    source.SaveAs(folder.WideFile("intact.aif").c_str(), VDF_AOI);
    return ReadFile(folder.File("intact.aif"));
}

std::string IntactAssistant(const TemporaryFolder& folder) {
    CClassifiedAssistantFile file;
    for (int i = 0; i < 5; ++i) {
        CClassifiedAssistantFile::ClassRecord record;
        record.SetName(L"class " + std::to_wstring(i));
        record.m_value = i;
        file.AddClass(record);
    }
    file.SetEntries({{1.0, 2.0, 3, 4}, {5.0, 6.0, 7, 8}});
    std::vector<std::vector<std::wstring>> matrix = {{L"a", L"b"}, {L"c", L"d"}};
    file.SetChangedMatrix(matrix);
    file.WriteClssifiedAssistantFile(folder.WideFile("intact.acf"));
    return ReadFile(folder.File("intact.acf"));
}

std::string IntactSamples(const TemporaryFolder& folder, const std::string& aoi) {
    // A header with the tag, and one class of three bands with the shapes of the area file.
    constexpr std::size_t AOI_HEADER = 1584;
    std::string bytes(CClassifySampleFile::HEADER_SIZE, '\0');
    const std::string tag = "ZELTO_SampleFileTag";
    for (std::size_t i = 0; i < tag.size(); ++i)
        bytes[2 * i] = tag[i];
    bytes[288] = 1;
    const auto appendInt = [&bytes](char value) { bytes += std::string{value, '\0', '\0', '\0'}; };
    bytes += std::string(256, 'n');
    for (const char value : {1, 2, 3, 3})
        appendInt(value);
    bytes += std::string(3 * 24, '\x3f');
    appendInt(0);
    appendInt(0);
    bytes += std::string(9 * 8, '\x40');
    appendInt(1);
    appendInt(3);
    bytes += aoi.substr(AOI_HEADER);
    WriteFile(folder.File("intact.samples"), bytes);
    return bytes;
}

/// Damages a file in one of the ways files get damaged: cut, overwritten, lengthened, or with a
/// number replaced by one that counts should not have.
std::string Damage(std::string bytes, std::mt19937& random) {
    const auto below = [&random](std::size_t n) { return n == 0 ? 0 : random() % n; };
    const int wounds = 1 + static_cast<int>(below(4));
    for (int i = 0; i < wounds; ++i) {
        switch (below(4)) {
        case 0:
            bytes.resize(below(bytes.size() + 1));
            break;
        case 1:
            if (!bytes.empty())
                bytes[below(bytes.size())] = static_cast<char>(random());
            break;
        case 2:
            bytes.insert(below(bytes.size() + 1),
                         std::string(below(40), static_cast<char>(random())));
            break;
        default: {
            constexpr unsigned HOSTILE[] = {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU,
                                            0x10000U,    0x00FFFFFFU, 2U};
            const unsigned value = HOSTILE[below(std::size(HOSTILE))];
            for (std::size_t b = 0, at = below(bytes.size()); b < 4 && at + b < bytes.size(); ++b)
                bytes[at + b] = static_cast<char>(value >> 8U * b);
        }
        }
    }
    return bytes;
}

std::vector<Target> MakeTargets(const TemporaryFolder& folder) {
    const std::string aoi = IntactAoi(folder);
    return {
        {"area of interest", aoi,
         [](const std::wstring& path) {
             CAOISource source;
             source.Open(path.c_str(), GIS_READONLY, true);
             source.TopoRelationWithPoint(1.0, 2.0);
             source.GetOGRGeometries();
         }},
        {"assistant file", IntactAssistant(folder),
         [](const std::wstring& path) {
             CClassifiedAssistantFile file;
             file.ReadClassifiedAssistantFile(path);
             const std::unique_ptr<CClassifyDisplayTable> table(file.CreateClassifyDisplayTable());
         }},
        {"sample file", IntactSamples(folder, aoi),
         [](const std::wstring& path) {
             CClassifySampleFile file;
             file.ReadClassifySampleFile(path);
         }},
    };
}

} // namespace

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? std::atof(argv[1]) : 60.0;
    const auto seed = argc > 2 ? static_cast<unsigned>(std::atol(argv[2])) : std::random_device{}();
    std::printf("seed %u\n", seed);
    std::fflush(stdout);

    CGISDataSource::RegisterGDAL();
    const TemporaryFolder folder;
    const std::vector<Target> targets = MakeTargets(folder);
    std::mt19937 random(seed);
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    long files = 0;
    while (std::chrono::steady_clock::now() < end) {
        for (const Target& target : targets) {
            // The area of interest is known by its extension.
            WriteFile(folder.File("damaged.aif"), Damage(target.intact, random));
            target.read(folder.WideFile("damaged.aif"));
            ++files;
        }
    }
    std::printf("%ld damaged files read\n", files);
    CGISDataSource::DestroyGDAL();
    return 0;
}
