// Long operations of the library, cancelled at every step of their progress: none says that it is
// done, and no pixel is lost.

#include "zelto/aoi/AOIMask.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/faults/Meaning.h"
#include "tests/faults/Operations.h"
#include "tests/faults/Tally.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

namespace {

using namespace zelto::test;

struct LongOperation {
    const char* name;
    const char* file; ///< one of the originals
    std::function<bool(CRasterSource&, CDataProgress*)> run;
    bool keepsPixels = true;
};

void PrintTo(const LongOperation& operation, std::ostream* out) {
    *out << operation.name;
}

bool BuildsPyramid(CRasterSource& source, CDataProgress* progress) {
    return source.BuildOverviews("AVERAGE", 0, nullptr, progress) == GIS_SUCCESS;
}

bool Measures(CRasterSource& source, CDataProgress* progress) {
    double range[4] = {};
    return source.GetRasterBand(0)->ComputeStatics(&range[0], &range[1], &range[2], &range[3],
                                                   false, progress);
}

bool Counts(CRasterSource& source, CDataProgress* progress) {
    std::vector<int> counts(64);
    return source.GetRasterBand(0)->GetHistogram(0.5, 20.0, 64, counts.data(), false, false,
                                                 progress);
}

/// Into a band of the file itself; its pixels are the mask's then.
bool BurnsMask(CRasterSource& source, CDataProgress* progress) {
    __int64 inside = 0;
    return CAOIMask::WriteRaster(nullptr, &source, inside, progress) == GIS_SUCCESS;
}

class Cancelled : public testing::TestWithParam<LongOperation> {
  protected:
    Cancelled() { CGISDataSource::RegisterGDAL(); }
    ~Cancelled() override { CGISDataSource::DestroyGDAL(); }

    /// @return whether the operation was cancelled, rather than done before
    bool CancelAfter(int steps) {
        const std::string path = m_folder.File(GetParam().file);
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path()))
            std::filesystem::remove_all(entry.path());
        std::filesystem::copy_file(Originals::Get().File(GetParam().file), path);
        const std::string pixels = PixelsOf(path);
        RecordingProgress progress(steps);
        bool done = false;
        {
            CRasterSource source;
            EXPECT_EQ(source.Open(m_folder.WideFile(GetParam().file).c_str(), GIS_UPDATE, false),
                      GIS_SUCCESS);
            done = GetParam().run(source, &progress);
        }
        const bool cancelled = static_cast<int>(progress.m_steps.size()) > steps;
        // A refusal of the very last step comes when all is done.
        const bool isLate = cancelled && progress.m_steps.back().first >= 100;
        EXPECT_TRUE(done == !cancelled || isLate)
            << (progress.m_steps.empty() ? 0 : progress.m_steps.back().first) << " % done";
        EXPECT_TRUE(!GetParam().keepsPixels || PixelsOf(path) == pixels);
        return cancelled;
    }

    const TemporaryFolder m_folder;
};

} // namespace

TEST_P(Cancelled, AtEveryStepSaysThatItIsNotDone) {
    int steps = 0;
    for (; CancelAfter(steps); ++steps) {
        SCOPED_TRACE(steps);
        Count("cancelled at a step");
    }
    EXPECT_GT(steps, 0);
}

INSTANTIATE_TEST_SUITE_P(Library, Cancelled,
                         testing::Values(LongOperation{"PyramidInside", "scene.tif", BuildsPyramid},
                                         LongOperation{"PyramidImagine", "scene.img",
                                                       BuildsPyramid},
                                         LongOperation{"Statistics", "scene.tif", Measures},
                                         LongOperation{"Histogram", "scene.tif", Counts},
                                         LongOperation{"Mask", "scene.tif", BurnsMask, false}));
