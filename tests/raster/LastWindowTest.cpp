#include "zelto/raster/internal/LastWindow.h"

#include "zelto/datasource/GISDataSource.h"
#include "zelto/raster/internal/OpenedFile.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>

using zelto::SampledWindow;

namespace {

using Values = std::vector<std::uint16_t>;

class LastWindow : public testing::Test {
  protected:
    LastWindow() {
        CGISDataSource::RegisterGDAL();
        const auto before = zelto::FileState::Of(m_path);
        m_dataset.reset(GDALDataset::Open(m_path.c_str(), GDAL_OF_RASTER));
        zelto::NoteOpened(*m_dataset, before);
        m_bands = {m_dataset->GetRasterBand(1), m_dataset->GetRasterBand(2)};
    }
    ~LastWindow() override {
        zelto::ForgetLastWindow(*zelto::FileState::Of(m_path));
        zelto::NoteClosed(m_dataset.get());
        m_dataset.reset();
        CGISDataSource::DestroyGDAL();
    }

    void Keep(const SampledWindow& window, Values first, Values second) const {
        zelto::KeepLastWindow(m_bands, window, {first.data(), second.data()});
    }
    /// What is kept of both bands.
    std::optional<std::vector<Values>> Copy(const SampledWindow& window) const {
        const auto count = static_cast<std::size_t>(window.columns * window.rows);
        std::vector<Values> values(2, Values(count));
        if (!zelto::CopyLastWindow(m_bands, window, {values[0].data(), values[1].data()}))
            return std::nullopt;
        return values;
    }

    zelto::test::TemporaryFolder m_folder;
    std::string m_path = zelto::test::WriteRaster(
        m_folder.File("a.tif"), {.width = 4, .height = 3, .type = GDT_UInt16},
        {zelto::test::Pixels(12, 1.0), zelto::test::Pixels(12, 2.0)});
    GDALDatasetUniquePtr m_dataset;
    std::vector<GDALRasterBand*> m_bands;
};

constexpr SampledWindow WINDOW = {{0, 0, 4, 3}, 2, 1};

} // namespace

TEST_F(LastWindow, IsCopiedForTheSameBandsAndSamples) {
    EXPECT_EQ(Copy(WINDOW), std::nullopt);
    Keep(WINDOW, {5, 6}, {7, 8});
    EXPECT_EQ(Copy(WINDOW), (std::vector<Values>{{5, 6}, {7, 8}}));
    for (const SampledWindow& other :
         {SampledWindow{{1, 0, 3, 3}, 2, 1}, SampledWindow{{0, 0, 4, 2}, 2, 1},
          SampledWindow{{0, 0, 4, 3}, 1, 1}, SampledWindow{{0, 0, 4, 3}, 1, 2}})
        EXPECT_EQ(Copy(other), std::nullopt);
    std::swap(m_bands[0], m_bands[1]);
    EXPECT_EQ(Copy(WINDOW), std::nullopt);
}

TEST_F(LastWindow, IsReplacedByTheNext) {
    Keep(WINDOW, {5, 6}, {7, 8});
    Keep({{0, 0, 2, 2}, 1, 1}, {1}, {2});
    EXPECT_EQ(Copy(WINDOW), std::nullopt);
    EXPECT_EQ(Copy({{0, 0, 2, 2}, 1, 1}), (std::vector<Values>{{1}, {2}}));
}

TEST_F(LastWindow, IsNoneOfAFileThatWasWrittenToOrIsReadAnew) {
    Keep(WINDOW, {5, 6}, {7, 8});
    const auto before = std::filesystem::last_write_time(m_path);
    std::filesystem::last_write_time(m_path, before + std::chrono::seconds(1));
    EXPECT_EQ(Copy(WINDOW), std::nullopt);
    std::filesystem::last_write_time(m_path, before);
    EXPECT_NE(Copy(WINDOW), std::nullopt);
    zelto::FileState other = *zelto::StateAsOpened(*m_dataset);
    ++other.number;
    zelto::ForgetLastWindow(other);
    EXPECT_NE(Copy(WINDOW), std::nullopt);
    zelto::ForgetLastWindow(*zelto::StateAsOpened(*m_dataset));
    EXPECT_EQ(Copy(WINDOW), std::nullopt);
}

TEST_F(LastWindow, IsThatOfEveryDataSetOfTheFile) {
    Keep(WINDOW, {5, 6}, {7, 8});
    const GDALDatasetUniquePtr second(GDALDataset::Open(m_path.c_str(), GDAL_OF_RASTER));
    m_bands = {second->GetRasterBand(1), second->GetRasterBand(2)};
    EXPECT_EQ(Copy(WINDOW), std::nullopt);
    zelto::NoteOpened(*second, zelto::FileState::Of(m_path));
    EXPECT_EQ(Copy(WINDOW), (std::vector<Values>{{5, 6}, {7, 8}}));

    EXPECT_EQ(zelto::NoteClosed(m_dataset.get()), std::nullopt);
    EXPECT_EQ(zelto::NoteClosed(second.get()), zelto::FileState::Of(m_path));
}

TEST_F(LastWindow, IsNotKeptOfADataSetThatIsNoSourcesOrBeyondItsMemory) {
    zelto::NoteClosed(m_dataset.get());
    Keep(WINDOW, {5, 6}, {7, 8});
    EXPECT_EQ(Copy(WINDOW), std::nullopt);
    zelto::NoteOpened(*m_dataset, zelto::FileState::Of(m_path));
    const SampledWindow large = {{0, 0, 4, 3}, 2048, 2049};
    const Values samples(std::size_t{2048} * 2049);
    Keep(large, samples, samples);
    EXPECT_EQ(Copy(large), std::nullopt);
}
