#include "zelto/aoi/DrawShape.h"
#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/classify/ClassifiedAssistantFile.h"
#include "zelto/classify/ClassifySampleFile.h"

#include "tests/classify/AssistantBytes.h"
#include "tests/classify/SampleBytes.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <random>

namespace {

constexpr int ROUNDS = 1000;

/// Changes a few bytes or integers behind the tag, and now and then cuts or lengthens.
std::string Damage(std::string bytes, std::size_t tagSize, std::mt19937& random) {
    const auto below = [&](std::size_t n) { return random() % n; };
    for (std::size_t changes = 1 + below(6); changes > 0; --changes) {
        const std::size_t at = tagSize + below(bytes.size() - tagSize - 4);
        const std::int32_t values[] = {
            -1, 0, 1, 2147483647, 65536, -46341, 1 << 28, static_cast<int>(random()), 1000};
        if (below(3) == 0)
            bytes[at] = static_cast<char>(random());
        else
            bytes.replace(at & ~std::size_t{3}, 4,
                          zelto::test::Bytes().Int(values[below(std::size(values))]).Str());
    }
    if (below(4) == 0)
        bytes.resize(below(bytes.size() + 64), static_cast<char>(random()));
    return bytes;
}

} // namespace

TEST(DamagedAssistantFiles, AreReadWithinTheirSize) {
    constexpr unsigned seed = 20240611;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const zelto::test::TemporaryFolder folder;
    const std::string whole = zelto::test::WholeAssistantFile().Str();
    CClassifiedAssistantFile file;
    for (int round = 0; round < ROUNDS; ++round) {
        SCOPED_TRACE(round);
        const std::string bytes = Damage(whole, 256, random);
        zelto::test::WriteFile(folder.File("damaged"), bytes);
        if (!file.ReadClassifiedAssistantFile(folder.WideFile("damaged")))
            continue;
        std::size_t texts = 0;
        for (const auto& row : file.GetChangedMatrix())
            texts += row.size();
        ASSERT_LE(file.GetClasses().size() * 272 + file.GetEntries().size() * 24 + texts * 256,
                  bytes.size() - 1080);
        const std::unique_ptr<CClassifyDisplayTable> table(file.CreateClassifyDisplayTable());
        ASSERT_EQ(static_cast<std::size_t>(table->GetItemCount()), file.GetClasses().size());
        std::filesystem::remove(folder.Path() / "again");
        ASSERT_TRUE(file.WriteClssifiedAssistantFile(folder.WideFile("again")));
    }
}

TEST(DamagedSampleFiles, AreReadWithinTheirSize) {
    constexpr unsigned seed = 20240612;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const zelto::test::TemporaryFolder folder;
    const std::string whole = zelto::test::WholeSampleFile().Str();
    CClassifySampleFile file;
    for (int round = 0; round < ROUNDS; ++round) {
        SCOPED_TRACE(round);
        const std::string bytes = Damage(whole, 40, random);
        zelto::test::WriteFile(folder.File("damaged"), bytes);
        if (file.ReadClassifySampleFile(folder.WideFile("damaged")) == 0)
            continue;
        std::size_t least = 0;
        for (int i = 0; i < file.GetClassCount(); ++i) {
            const auto& record = *file.GetClass(i);
            least += 272 + record.m_firstArray.size() * 24 + record.m_matrix.size() * 8;
            for (const CDrawShape* shape : record.m_sampleShapes)
                least +=
                    shape->m_shapeKind == SHAPE_POLYGON ? 5 + shape->m_vertices.size() * 16 : 33;
        }
        ASSERT_LE(least, bytes.size() - 312);
        std::filesystem::remove(folder.Path() / "again");
        file.WriteClassifySampleFile(folder.WideFile("again"));
    }
}
