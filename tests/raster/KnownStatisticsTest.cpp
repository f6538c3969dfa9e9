#include "zelto/raster/internal/KnownStatistics.h"

#include "zelto/datasource/GISDataSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// Two bands of a file that is open.
class KnownStatistics : public testing::Test {
  protected:
    explicit KnownStatistics(const zelto::test::RasterSpec& spec = {
                                 .width = 4, .height = 3, .options = {"COMPRESS=DEFLATE"}}) {
        CGISDataSource::RegisterGDAL();
        const std::string path =
            zelto::test::WriteRaster(m_folder.File("a.tif"), spec,
                                     {zelto::test::Pixels(12, 1.0), zelto::test::Pixels(12, 2.0)});
        m_file = zelto::FileState::Of(path);
        m_dataset.reset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        zelto::NoteOpened(*m_dataset, m_file);
    }
    ~KnownStatistics() override {
        zelto::ForgetStatistics(*m_file);
        zelto::NoteClosed(m_dataset.get());
        m_dataset.reset();
        CGISDataSource::DestroyGDAL();
    }

    GDALRasterBand& Band(int number) const { return *m_dataset->GetRasterBand(number); }
    /// The mean that is known; nothing where none is.
    std::optional<double> Mean(int number, std::optional<double> noData) const {
        const auto known = zelto::KnownStatistics(Band(number), noData);
        return known ? std::optional(known->mean) : std::nullopt;
    }

    zelto::test::TemporaryFolder m_folder;
    std::optional<zelto::FileState> m_file;
    GDALDatasetUniquePtr m_dataset;
};

/// GDAL samples its smaller picture, which can be built anew while the file stays as it is.
class KnownStatisticsOfAPyramid : public KnownStatistics {
  protected:
    KnownStatisticsOfAPyramid()
        : KnownStatistics(
              {.width = 4, .height = 3, .options = {"COMPRESS=DEFLATE"}, .overviews = {2}}) {}
};

} // namespace

TEST_F(KnownStatistics, AreThoseOfTheBandAndItsNoDataValue) {
    EXPECT_EQ(Mean(1, {}), std::nullopt);
    zelto::KeepStatistics(Band(1), {}, {.mean = 1.0});
    zelto::KeepStatistics(Band(1), 0.0, {.mean = 2.0});
    zelto::KeepStatistics(Band(1), NO_NUMBER, {.mean = 3.0});
    zelto::KeepStatistics(Band(2), {}, {.mean = 4.0});
    EXPECT_EQ(Mean(1, {}), 1.0);
    EXPECT_EQ(Mean(1, 0.0), 2.0);
    EXPECT_EQ(Mean(1, NO_NUMBER), 3.0);
    EXPECT_EQ(Mean(2, {}), 4.0);
    EXPECT_EQ(Mean(2, 0.0), std::nullopt);
}

TEST_F(KnownStatistics, AreThoseThatWereKeptLast) {
    zelto::KeepStatistics(Band(1), {}, {.mean = 1.0});
    zelto::KeepStatistics(Band(1), {}, {.mean = 2.0});
    EXPECT_EQ(Mean(1, {}), 2.0);
}

TEST_F(KnownStatistics, AreForgottenWithTheirFile) {
    zelto::KeepStatistics(Band(1), {}, {.mean = 1.0});
    zelto::FileState other = *m_file;
    ++other.number;
    zelto::ForgetStatistics(other);
    EXPECT_EQ(Mean(1, {}), 1.0);
    zelto::ForgetStatistics(*m_file);
    EXPECT_EQ(Mean(1, {}), std::nullopt);
}

TEST_F(KnownStatistics, AreNotKeptOfADataSetThatIsNoSources) {
    zelto::NoteClosed(m_dataset.get());
    zelto::KeepStatistics(Band(1), {}, {.mean = 1.0});
    zelto::NoteOpened(*m_dataset, m_file);
    EXPECT_EQ(Mean(1, {}), std::nullopt);
}

TEST_F(KnownStatisticsOfAPyramid, AreNotKept) {
    zelto::KeepStatistics(Band(1), {}, {.mean = 1.0});
    EXPECT_EQ(Mean(1, {}), std::nullopt);
}
