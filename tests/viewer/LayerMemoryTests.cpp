#include "zelto/Zelto.h"

#include "tests/support/TestData.h"
#include "tests/viewer/SceneWindow.h"
#include "viewer/worker/LayerStore.h"

#include <gdal.h>

#include <QLabel>
#include <QLocale>
#include <filesystem>

using namespace zelto;
using namespace zelto::test;

namespace {

constexpr qint64 MEBIBYTE = qint64{1} << 20;

/// Three layers of the sample scene, shown differently, in a view of 200 × 150 pixels.
class LayerMemory : public testing::Test {
  protected:
    static constexpr qint64 DRAWING_BYTES = 200 * 150 * 4;

    LayerMemory() {
        for (const int layer : {1, 2, 3})
            Open(layer, QString::fromStdString(SampleScene()));
        const view::LayerFacts& facts = m_store.Facts(1);
        m_request.view = view::ViewTransform::Fitting(facts.extent, {200, 150});
        m_request.isKept = true;
        for (const int layer : {1, 2, 3}) {
            view::DisplaySettings settings = facts.initial;
            settings.bands = {layer};
            m_request.layers.push_back({layer, settings});
        }
    }

    void Open(int layer, const QString& path) {
        QString reason;
        ASSERT_TRUE(m_store.Open(layer, {{path}, {}}, 1, reason)) << reason.toStdString();
    }

    std::vector<QImage> DrawAll() {
        std::vector<QImage> images;
        for (const view::LayerDrawing& layer : m_request.layers) {
            QString reason;
            images.push_back(m_store.Draw(layer, m_request, reason));
            EXPECT_EQ(reason, "");
        }
        return images;
    }

    /// What is kept beside the blocks that GDAL keeps.
    qint64 Kept() { return m_store.Memory().bytes - GDALGetCacheUsed64(); }

    view::LayerStore m_store;
    view::DrawRequest m_request;
};

class MemoryOfWindow : public SceneWindow {
  protected:
    QLabel& Shown() { return *m_window->findChild<QLabel*>("layersMemory"); }
};

} // namespace

TEST_F(LayerMemory, CountsADrawingOfEachLayerAndItsOpenFile) {
    const qint64 files = Kept();
    EXPECT_GT(files, 3 * MEBIBYTE);
    DrawAll();
    EXPECT_EQ(Kept(), files + 3 * DRAWING_BYTES);
    EXPECT_EQ(m_store.Memory().bound, view::LayerStore::MOST_BYTES + GDALGetCacheMax64());
}

TEST_F(LayerMemory, AnswersTheDrawingOfALayerThatHasNotChanged) {
    const std::vector<QImage> first = DrawAll();
    m_request.layers[1].settings.contrast = 0.5F;
    const std::vector<QImage> second = DrawAll();
    EXPECT_EQ(second[0].constBits(), first[0].constBits());
    EXPECT_NE(second[1], first[1]);
    EXPECT_EQ(second[2].constBits(), first[2].constBits());
}

TEST_F(LayerMemory, LetsGoOfTheDrawingsThatWereSeenLongestAgo) {
    const qint64 files = Kept();
    const std::vector<QImage> before = DrawAll();
    m_store.SetBound(files + DRAWING_BYTES);
    EXPECT_EQ(Kept(), files + DRAWING_BYTES);
    EXPECT_EQ(m_store.Memory().closedFiles, 0);
    QString reason;
    const QImage third = m_store.Draw(m_request.layers[2], m_request, reason);
    EXPECT_EQ(third.constBits(), before[2].constBits());
    const QImage first = m_store.Draw(m_request.layers[0], m_request, reason);
    EXPECT_NE(first.constBits(), before[0].constBits());
    EXPECT_EQ(first, before[0]);
}

TEST_F(LayerMemory, ClosesFilesAndDrawsTheSamePicturesFromThemWhenTheyAreOpenedAgain) {
    const std::vector<QImage> before = DrawAll();
    m_store.SetBound(1);
    EXPECT_EQ(m_store.Memory().closedFiles, 2) << "the one seen last stays open";
    EXPECT_EQ(DrawAll(), before);
    EXPECT_EQ(m_store.Memory().closedFiles, 2);
}

TEST_F(LayerMemory, KeepsItsBoundWhateverIsWanted) {
    const qint64 bound = 2 * MEBIBYTE + MEBIBYTE / 2;
    m_store.SetBound(bound);
    for (int i = 0; i < 3; ++i) {
        m_request.view = m_request.view.MovedBy({5.0, 3.0});
        DrawAll();
        QString reason;
        for (const int layer : {2, 3, 1}) {
            m_store.CountValues(layer, i, reason);
            ASSERT_LE(Kept(), bound);
        }
    }
}

TEST_F(LayerMemory, CountsABandOnceForAsLongAsThereIsRoom) {
    QString reason;
    const view::BandHistogram first = m_store.CountValues(1, 0, reason);
    const qint64 kept = Kept();
    EXPECT_EQ(m_store.CountValues(1, 0, reason).counts, first.counts);
    EXPECT_EQ(Kept(), kept);
    m_store.SetBound(1);
    m_store.CountValues(2, 0, reason);
    EXPECT_EQ(m_store.CountValues(1, 0, reason).counts, first.counts) << "counted anew";
    EXPECT_EQ(reason, "");
}

TEST_F(LayerMemory, RefusesAFileThatIsAnotherImageByNow) {
    const TemporaryFolder folder;
    const std::string path = folder.File("scene.tif");
    std::filesystem::copy_file(SampleScene(), path);
    Open(4, QString::fromStdString(path));
    QString reason;
    ASSERT_NE(m_store.Find(1, reason), nullptr);
    m_store.SetBound(1);
    CRasterSource other;
    ASSERT_EQ(other.CreateRaster(RDF_GTiff, CommonFun::M2U(path).c_str(), 20, 10, 1, PDT_Byte,
                                 nullptr, nullptr, nullptr),
              GIS_SUCCESS);
    other.Close();
    EXPECT_EQ(m_store.Find(4, reason), nullptr);
    EXPECT_TRUE(reason.contains("scene.tif: another image now")) << reason.toStdString();
}

TEST_F(MemoryOfWindow, IsToldBelowTheLayersWithItsBound) {
    EXPECT_TRUE(Shown().isVisible());
    const qint64 bound = view::LayerStore::MOST_BYTES + GDALGetCacheMax64();
    EXPECT_TRUE(
        Shown().text().contains("of " + QLocale().formattedDataSize(bound, 0) + " in memory"))
        << Shown().text().toStdString();
    EXPECT_TRUE(Shown().toolTip().contains("seen longest ago"));
}

TEST_F(MemoryOfWindow, TellsOfFilesThatWereClosedAndShowsTheirPicturesAllTheSame) {
    const QString scene = QString::fromStdString(SampleScene());
    ASSERT_TRUE(OpenAndSettle(*m_window, {scene, scene}));
    view::DisplaySettings settings = Current().settings;
    settings.transparency = 0.5F; // so that all three are seen
    m_window->GetDocument().SetSettings(Current().id, settings);
    Trigger("zoom-in");
    ASSERT_TRUE(Settle(*m_window));
    const QImage before = Map().Shown().image;
    m_window->GetEngine().SetMemoryBound(1);
    Trigger("zoom-in");
    Trigger("zoom-out");
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(Map().Shown().image, before);
    EXPECT_TRUE(Shown().toolTip().contains("2 ")) << Shown().toolTip().toStdString();
}

TEST_F(MemoryOfWindow, IsNotSpentOnHistogramsBeforeThePictureIsThere) {
    QStringList order;
    QObject::connect(&m_window->GetEngine(), &view::Engine::Drawn, m_window.get(),
                     [&] { order += "picture"; });
    QObject::connect(&m_window->GetEngine(), &view::Engine::Counted, m_window.get(),
                     [&] { order += "histograms"; });
    ASSERT_TRUE(OpenAndSettle(*m_window, {QString::fromStdString(SampleScene())}));
    EXPECT_EQ(order.value(0), "picture");
    EXPECT_TRUE(order.contains("histograms"));
}
