#include "zelto/display/DisplayRecipe.h"

#include "zelto/display/StretchPreparation.h"
#include "zelto/display/ZoomLinear.h"

#include "tests/display/ShownRaster.h"
#include "tests/support/SmallDisk.h"

#include <fstream>
#include <limits>
#include <random>
#include <utility>

using namespace zelto::test;

namespace {

constexpr unsigned SEED = 20261122;

/// Three bands of random values, the same every time.
ShownRaster Scene(GDALDataType type = GDT_UInt16) {
    std::minstd_rand random(SEED);
    std::vector<Pixels> bands;
    for (int b = 0; b < 3; ++b)
        bands.push_back(MakePixels(40, 30, [&](int, int) {
            return static_cast<double>(random() % (type == GDT_Byte ? 256 : 3000 + 500 * b));
        }));
    return {{.width = 40, .height = 30, .type = type, .geoTransform = NorthUp(0, 30, 1)}, bands};
}

std::string Prepared(ShownRaster& source, const std::string& stretch,
                     const std::vector<double>& gamma = {}) {
    CStretchPreparation preparation(&source);
    EXPECT_TRUE(preparation.SetStretch(stretch));
    EXPECT_TRUE(preparation.SetGamma(gamma));
    EXPECT_EQ(preparation.Apply(nullptr), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    CDisplayRecipe recipe;
    EXPECT_TRUE(recipe.Take(source));
    return recipe.GetJson();
}

/// Why a text is refused; empty when it is not.
std::string Refusal(const std::string& json) {
    CDisplayRecipe recipe;
    return recipe.SetJson(json) ? "" : CGISDataSource::GetLastErrorText();
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from << " in " << text;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

const char* const PLAIN = R"({
  "format": "zelto display recipe",
  "version": 1,
  "bands": [
    {
      "band": 1,
      "stretch": "linear",
      "statistics": {
        "minimum": 10,
        "maximum": 20,
        "mean": 15,
        "standardDeviation": 2.5
      }
    }
  ],
  "colors": {
    "hue": 0,
    "intensity": 0,
    "saturation": 0,
    "contrast": 0,
    "transparency": 0
  }
})";

} // namespace

TEST(DisplayRecipe, GivesTheBytesOfEveryStretchAgain) {
    for (const GDALDataType type : {GDT_Byte, GDT_UInt16, GDT_Float32}) {
        for (const std::string& stretch : CStretchPreparation::GetStretchNames()) {
            ShownRaster source = Scene(type);
            const std::string json = Prepared(source, stretch);
            const Bytes expected = source.Interleaved(true);
            ShownRaster again = Scene(type);
            CDisplayRecipe recipe;
            ASSERT_TRUE(recipe.SetJson(json)) << CGISDataSource::GetLastErrorText();
            ASSERT_TRUE(recipe.Apply(again)) << CGISDataSource::GetLastErrorText();
            EXPECT_EQ(again.Interleaved(true), expected) << stretch << " " << type;
            EXPECT_EQ(recipe.GetJson(), json) << stretch;
        }
    }
}

TEST(DisplayRecipe, TakesTheZoomsWithBoundsThatDoNotDivideEvenly) {
    std::minstd_rand random(SEED);
    std::uniform_real_distribution<double> bound(0, 250);
    for (int i = 0; i < 50; ++i) {
        ShownRaster source = Scene();
        const double low = bound(random);
        const double high = low + 0.1 + bound(random) / 7;
        CStretchPreparation preparation(&source);
        ASSERT_TRUE(preparation.SetStretch("zoom"));
        ASSERT_TRUE(preparation.SetBounds(low, high));
        ASSERT_EQ(preparation.Apply(nullptr), GIS_SUCCESS);
        CDisplayRecipe recipe;
        ASSERT_TRUE(recipe.Take(source));
        ShownRaster again = Scene();
        ASSERT_TRUE(recipe.Apply(again));
        EXPECT_EQ(again.Interleaved(), source.Interleaved()) << low << " " << high;
    }
}

TEST(DisplayRecipe, HoldsAdjustmentsRampAndCurve) {
    ShownRaster source = Scene();
    source.Show({2});
    CColorRamp ramp = DistinctRamp();
    source.SetColorRamp(&ramp);
    source.SetDisplayType(static_cast<DataDisplayType>(1));
    source.m_hue = 0.1F;
    source.m_intensity = -0.2F;
    source.m_saturation = 0.3F;
    source.m_contrast = 0.25F;
    source.m_transparency = 0.4F;
    const std::string json = Prepared(source, "linear", {2.2});
    EXPECT_NE(json.find("\"hue\": 0.1,"), std::string::npos);
    ShownRaster again = Scene();
    CDisplayRecipe recipe;
    ASSERT_TRUE(recipe.SetJson(json));
    ASSERT_TRUE(recipe.Apply(again));
    EXPECT_EQ(again.GetShowBandArray(), (std::vector<int>{2}));
    EXPECT_EQ(again.m_saturation, 0.3F);
    EXPECT_EQ(again.Interleaved(true), source.Interleaved(true));
}

TEST(DisplayRecipe, HoldsClasses) {
    ShownRaster source({.width = 3, .height = 1}, {{12, 25, 40}});
    CClassifyDisplayTable classes = TwoClasses();
    source.SetClassifyDisplayTable(&classes);
    source.SetDisplayType(DISPLAY_CLASSIFIED);
    CDisplayRecipe recipe;
    ASSERT_TRUE(recipe.Take(source));
    ShownRaster again({.width = 3, .height = 1}, {{12, 25, 40}});
    CDisplayRecipe read;
    ASSERT_TRUE(read.SetJson(recipe.GetJson()));
    ASSERT_TRUE(read.Apply(again));
    EXPECT_EQ(again.Interleaved(), source.Interleaved());
    EXPECT_EQ(again.GetClassifyDisplayTable()->GetItem(0)->m_name, L"water");
}

TEST(DisplayRecipe, PutsAFormerDisplayAway) {
    ShownRaster source = Scene();
    const std::string json = Prepared(source, "none");
    ShownRaster other = Scene();
    Prepared(other, "wallis");
    other.m_hue = 0.5F;
    CDisplayRecipe recipe;
    ASSERT_TRUE(recipe.SetJson(json));
    ASSERT_TRUE(recipe.Apply(other));
    EXPECT_EQ(other.Interleaved(true), source.Interleaved(true));
}

TEST(DisplayRecipe, AFileHoldsViewAndMask) {
    const TemporaryFolder folder;
    ShownRaster source = Scene();
    Prepared(source, "percent");
    CDisplayRecipe recipe;
    ASSERT_TRUE(recipe.Take(source));
    recipe.SetView(CDisplayRecipe::View{{0.1, 20.7, 30, 2}, 640, 480, "EPSG:32650"});
    recipe.SetMask(CDisplayRecipe::Mask{folder.WideFile("areas/fields.aif"), true});
    ASSERT_TRUE(recipe.Write(folder.WideFile("look.json").c_str()));
    CDisplayRecipe read;
    ASSERT_TRUE(read.Read(folder.WideFile("look.json").c_str()));
    ASSERT_TRUE(read.GetView().has_value());
    EXPECT_EQ(read.GetView()->box.GetLeft(), 0.1);
    EXPECT_EQ(read.GetView()->box.GetTop(), 20.7);
    EXPECT_EQ(read.GetView()->width, 640);
    EXPECT_EQ(read.GetView()->srs, "EPSG:32650");
    ASSERT_TRUE(read.GetMask().has_value());
    EXPECT_EQ(read.GetMask()->area, folder.WideFile("areas/fields.aif"));
    EXPECT_TRUE(read.GetMask()->isBlack);
    EXPECT_NE(ReadFile(folder.Path() / "look.json").find("\"area\": \"areas/fields.aif\""),
              std::string::npos)
        << "beside the recipe, wherever both are";
}

TEST(DisplayRecipe, NamesTheMemberThatIsWrong) {
    EXPECT_EQ(Refusal(PLAIN), "");
    const auto with = [](const std::string& from, const std::string& to) {
        return Refusal(Replaced(PLAIN, from, to));
    };
    EXPECT_EQ(with("\"maximum\": 20", "\"maximum\": \"much\""),
              "bands[0].statistics.maximum: it is no number");
    EXPECT_EQ(with("\"mean\"", "\"average\""), "bands[0].statistics.mean: it is missing");
    EXPECT_EQ(with("\"mean\": 15", "\"mean\": 15, \"mode\": 3"),
              "bands[0].statistics.mode: a recipe has no such member");
    EXPECT_EQ(with("\"colors\"", "\"colours\""), "colors: it is missing");
    EXPECT_EQ(with("\"version\"", "\"vertigo\": 1, \"version\""),
              "vertigo: a recipe has no such member");
    EXPECT_EQ(with("\"version\": 1", "\"version\": 2"), "version: it is not 1");
    EXPECT_EQ(with("\"hue\": 0", "\"hue\": 1.5"), "colors.hue: it is not within its bounds");
    EXPECT_EQ(with("\"hue\": 0", "\"hue\": -1.5"), "colors.hue: it is not within its bounds");
    EXPECT_EQ(with("\"linear\"", "\"zoom\", \"function\": {\"stretch\": \"linear\"}"),
              "bands[0].function.stretch: 'linear' is not the name of a stretch that can be here");
    EXPECT_EQ(with("\"band\": 1", "\"band\": 0"),
              "bands[0].band: it is no whole number from 1 to 2147483647");
    EXPECT_EQ(with("\"band\": 1", "\"band\": 1.5").find("bands[0].band: it is no whole"), 0U);
    EXPECT_EQ(with("\"linear\"", "\"percent\"").find("bands[0].stretch: 'percent' is not"), 0U);
    EXPECT_EQ(with("\"linear\"", "\"equalize\""), "bands[0].histogram: it is missing");
    EXPECT_EQ(with("\"band\": 1", "\"threshold\": 1, \"band\": 1"),
              "bands[0].threshold: the stretch has no use for it");
    EXPECT_EQ(with("zelto display recipe", "cake").find("format: "), 0U);
    EXPECT_EQ(Refusal("{"), "it is no JSON from line 1 on");
    EXPECT_EQ(Refusal("[]"), "it is no object");
    EXPECT_NE(Refusal(""), "");
}

TEST(DisplayRecipe, NamesTheListThatIsWrong) {
    const auto with = [](const std::string& from, const std::string& to) {
        return Refusal(Replaced(PLAIN, from, to));
    };
    EXPECT_EQ(with("\"bands\": [", "\"bands\": 5, \"others\": ["),
              "bands: it is no list of at most 3 elements");
    const std::string none = "{\"band\": 1, \"stretch\": \"none\"}";
    EXPECT_EQ(with("\"bands\": [", "\"bands\": [" + none + ","),
              "bands: one band is shown, or three are");
    EXPECT_EQ(with("\"bands\": [", "\"bands\": [" + none + "," + none + "," + none + ","),
              "bands: it is no list of at most 3 elements");
    EXPECT_EQ(with("\"bands\": [", "\"ramp\": [], \"bands\": [" + none + "," + none + ","),
              "ramp: it is for a single band");
    EXPECT_EQ(with("\"linear\"", "\"table\", \"table\": [1, 2]"),
              "bands[0].table: it has not 256 elements");
    EXPECT_EQ(with("\"colors\"", "\"ramp\": [\"#000000\"], \"colors\""),
              "ramp: it has not 256 elements");
    for (const std::string color : {"\"red\"", "\"#12345g\"", "\"1234567\"", "5"}) {
        std::string ramp = color;
        for (int i = 1; i < 256; ++i)
            ramp += ", \"#0000ff\"";
        EXPECT_EQ(with("\"colors\"", "\"ramp\": [" + ramp + "], \"colors\""),
                  "ramp[0]: it is no colour as #rrggbb");
    }
    EXPECT_EQ(with("\"colors\"", "\"classes\": [{\"low\": 0, \"high\": 1, \"name\": \"sea\", "
                                 "\"color\": [1, 2, 3]}], \"colors\""),
              "classes[0].color: it has not four elements");
    EXPECT_EQ(with("\"colors\"", "\"classes\": [{\"low\": 0, \"high\": 1, \"name\": \"sea\", "
                                 "\"color\": [1, 256, 3, 4]}], \"colors\""),
              "classes[0].color[1]: it is no whole number from 0 to 255");
    std::string ramp = "\"#0000ff\"";
    for (int i = 1; i < 256; ++i)
        ramp += ", \"#0000ff\"";
    EXPECT_EQ(with("\"colors\"", "\"classes\": [], \"ramp\": [" + ramp + "], \"colors\""),
              "classes: they and a ramp contradict each other");
}

TEST(DisplayRecipe, NamesWhatIsWrongWithViewAndMask) {
    const auto withView = [](const std::string& sides) {
        return Refusal(
            Replaced(PLAIN, "\"colors\"",
                     "\"view\": {" + sides + ", \"width\": 4, \"height\": 3}, \"colors\""));
    };
    EXPECT_EQ(withView(R"("left": 1, "top": 4, "right": 5, "bottom": 2)"), "");
    for (const char* sides : {R"("left": 5, "top": 4, "right": 5, "bottom": 2)",
                              R"("left": 1, "top": 2, "right": 5, "bottom": 2)",
                              R"("left": "-Infinity", "top": 4, "right": 5, "bottom": 2)",
                              R"("left": 1, "top": "Infinity", "right": 5, "bottom": 2)",
                              R"("left": 1, "top": 4, "right": "Infinity", "bottom": 2)",
                              R"("left": 1, "top": 4, "right": 5, "bottom": "-Infinity")"})
        EXPECT_EQ(withView(sides), "view.left: the box has no area") << sides;
    EXPECT_EQ(Refusal(Replaced(PLAIN, "\"colors\"",
                               "\"mask\": {\"area\": \"a.aif\", \"outside\": \"grey\"}, "
                               "\"colors\"")),
              "mask.outside: it is neither transparent nor black");
    EXPECT_EQ(Refusal(Replaced(PLAIN, "\"colors\"",
                               "\"mask\": {\"area\": 7, \"outside\": \"black\"}, \"colors\"")),
              "mask.area: it is no text");
}

TEST(DisplayRecipe, NumbersWithoutAFormInJsonAreTexts) {
    std::string json = Replaced(PLAIN, "\"minimum\": 10", "\"minimum\": \"-Infinity\"");
    json = Replaced(json, "\"maximum\": 20", "\"maximum\": \"Infinity\"");
    json = Replaced(json, "\"mean\": 15", "\"mean\": \"NaN\"");
    CDisplayRecipe recipe;
    ASSERT_TRUE(recipe.SetJson(json)) << CGISDataSource::GetLastErrorText();
    const std::string written = recipe.GetJson();
    EXPECT_NE(written.find("\"minimum\": \"-Infinity\""), std::string::npos) << written;
    EXPECT_NE(written.find("\"maximum\": \"Infinity\""), std::string::npos) << written;
    EXPECT_NE(written.find("\"mean\": \"NaN\""), std::string::npos) << written;
    for (const char* number : {"4294967296", "18446744073709551615", "1e30", "-1"})
        EXPECT_EQ(Refusal(Replaced(PLAIN, "\"band\": 1", std::string("\"band\": ") + number)),
                  "bands[0].band: it is no whole number from 1 to 2147483647")
            << number;
}

TEST(DisplayRecipe, AFileThatIsTooLargeForARecipeIsNotRead) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "large.json", PLAIN);
    std::filesystem::resize_file(folder.Path() / "large.json", (std::uintmax_t{32} << 20) + 1);
    CDisplayRecipe recipe;
    EXPECT_FALSE(recipe.Read(folder.WideFile("large.json").c_str()));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              folder.File("large.json") + ": it is too large for a recipe");
}

TEST(DisplayRecipe, OfASourceThatIsNotOpenThereIsNone) {
    CRasterSource closed;
    CDisplayRecipe recipe;
    EXPECT_FALSE(recipe.Take(closed));
    EXPECT_NE(CGISDataSource::GetLastErrorText().find("it shows no band"), std::string::npos);
    EXPECT_FALSE(recipe.Apply(closed));
    EXPECT_NE(CGISDataSource::GetLastErrorText().find("the recipe shows no band"),
              std::string::npos);
}

TEST(DisplayRecipe, AFileThatCannotBeReadOrWrittenIsNamed) {
    const TemporaryFolder folder;
    CDisplayRecipe recipe;
    EXPECT_FALSE(recipe.Read(folder.WideFile("none.json").c_str()));
    EXPECT_EQ(CGISDataSource::GetLastErrorText().find(folder.File("none.json") + ": "), 0U);
    WriteFile(folder.Path() / "bad.json", Replaced(PLAIN, "\"mean\": 15", "\"mean\": true"));
    EXPECT_FALSE(recipe.Read(folder.WideFile("bad.json").c_str()));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              folder.File("bad.json") + ": bands[0].statistics.mean: it is no number");
    EXPECT_FALSE(recipe.Write(folder.WideFile("nowhere/look.json").c_str()));
    EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
    EXPECT_FALSE(recipe.Read(nullptr));
    EXPECT_FALSE(recipe.Write(nullptr));
}

TEST(DisplayRecipe, ASourceWithoutTheBandsStaysAsItWas) {
    ShownRaster source = Scene();
    source.Show({2});
    const std::string json = Prepared(source, "linear");
    ShownRaster one({.width = 2, .height = 1}, {{3, 200}});
    const Bytes before = one.Interleaved();
    CDisplayRecipe recipe;
    EXPECT_FALSE(recipe.Apply(one)) << "a recipe without bands";
    ASSERT_TRUE(recipe.SetJson(json));
    EXPECT_FALSE(recipe.Apply(one));
    EXPECT_NE(CGISDataSource::GetLastErrorText().find("scene.tif: it has no band 3"),
              std::string::npos);
    EXPECT_EQ(one.Interleaved(), before);
    source.Show({7});
    EXPECT_FALSE(recipe.Take(source));
}

TEST(DisplayRecipe, SamplesNothingWhenItIsApplied) {
    ShownRaster source = Scene();
    CDisplayRecipe recipe;
    ASSERT_TRUE(recipe.SetJson(PLAIN));
    ASSERT_TRUE(recipe.Apply(source));
    EXPECT_EQ(source.GetRasterBand(0)->GetMinimum(), 10);
    EXPECT_EQ(source.GetRasterBand(0)->GetMaximum(), 20);
}

TEST(DisplayRecipe, ACopyIsItsOwn) {
    CDisplayRecipe recipe;
    ASSERT_TRUE(recipe.SetJson(PLAIN));
    CDisplayRecipe copy(recipe);
    copy.SetView(CDisplayRecipe::View{{0, 1, 1, 0}, 1, 1, ""});
    EXPECT_FALSE(recipe.GetView().has_value());
    recipe = copy;
    EXPECT_TRUE(recipe.GetView().has_value());
}

TEST(DisplayRecipe, TakesABandThatLacksWhatItsStretchNeedsAsTheLinearOneItIsDrawnAs) {
    for (const int type :
         {static_cast<int>(StretchZoomLinear), static_cast<int>(StretchZoomLinear002),
          static_cast<int>(StretchWallis), static_cast<int>(StretchHistEqualize),
          static_cast<int>(StretchAutoLevels), static_cast<int>(StretchCustomHistEqualize),
          static_cast<int>(StretchEnhanceTable), 77, -1}) {
        for (const bool hasEmptyEnhancer : {false, true}) {
            ShownRaster source = Scene();
            if (hasEmptyEnhancer) {
                EXPECT_FALSE(source.GetRasterBand(0)->SetEnhancedData(nullptr, HistogramLineCurve,
                                                                      nullptr, 0));
                EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
            }
            source.SetStretchType(static_cast<StretchType>(type));
            CDisplayRecipe recipe;
            ASSERT_TRUE(recipe.Take(source)) << type << CGISDataSource::GetLastErrorText();
            EXPECT_NE(recipe.GetJson().find("\"stretch\": \"linear\""), std::string::npos) << type;
            ShownRaster again = Scene();
            ASSERT_TRUE(recipe.Apply(again));
            EXPECT_EQ(again.GetStretchType(), StretchLinear);
            EXPECT_EQ(again.Interleaved(), source.Interleaved()) << type;
        }
    }
}

TEST(DisplayRecipe, TakesZoomsWhoseBoundsRoundingMovesOrThatShowOneValue) {
    constexpr double LEAST = std::numeric_limits<double>::denorm_min();
    const std::pair<double, double> bounds[] = {
        {70.47, 304.59},             // 70.47 + 255 / (255 / 234.12) is one step below
        {192.42, 433.31},            // and here one above
        {50, 50},          {80, 20}, // no range
        {0, 1000 * LEAST},           // 255 divided by it is infinite
    };
    for (const auto& [low, high] : bounds) {
        ShownRaster source = Scene();
        for (int b = 0; b < 3; ++b)
            source.GetRasterBand(b)->SetStretchData(StretchZoomLinear, 0, 0, low, high, 0, 0);
        CDisplayRecipe recipe;
        ASSERT_TRUE(recipe.Take(source));
        ShownRaster again = Scene();
        CDisplayRecipe read;
        ASSERT_TRUE(read.SetJson(recipe.GetJson())) << CGISDataSource::GetLastErrorText();
        ASSERT_TRUE(read.Apply(again));
        EXPECT_EQ(again.Interleaved(), source.Interleaved()) << low << " " << high;
        const auto& function =
            dynamic_cast<const CZoomLinear&>(*again.GetRasterBand(0)->GetStretchFunction());
        if (high - low > 1) {
            EXPECT_EQ(function.GetScale(), 255.0 / (high - low));
            EXPECT_EQ(function.GetOffset(), low);
        }
    }
}

TEST(DisplayRecipe, HoldsAHistogramWithoutCounts) {
    ShownRaster source = Scene();
    for (int b = 0; b < 3; ++b)
        ASSERT_TRUE(source.GetRasterBand(b)->SetCustomHistogram(0, 100, 0, nullptr));
    source.SetStretchType(StretchCustomHistEqualize);
    CDisplayRecipe recipe;
    ASSERT_TRUE(recipe.Take(source));
    EXPECT_NE(recipe.GetJson().find("\"counts\": []"), std::string::npos) << recipe.GetJson();
    ShownRaster again = Scene();
    CDisplayRecipe read;
    ASSERT_TRUE(read.SetJson(recipe.GetJson()));
    ASSERT_TRUE(read.Apply(again));
    EXPECT_EQ(again.GetStretchType(), StretchCustomHistEqualize);
    EXPECT_EQ(again.Interleaved(), source.Interleaved());
}

TEST(DisplayRecipe, AFileMayHoldNeitherViewNorMask) {
    const TemporaryFolder folder;
    CDisplayRecipe recipe;
    ASSERT_TRUE(recipe.SetJson(PLAIN));
    ASSERT_TRUE(recipe.Write(folder.WideFile("look.json").c_str()));
    CDisplayRecipe read;
    ASSERT_TRUE(read.Read(folder.WideFile("look.json").c_str()));
    EXPECT_FALSE(read.GetView().has_value());
    EXPECT_FALSE(read.GetMask().has_value());
    EXPECT_EQ(read.GetJson(), recipe.GetJson());
    // A view in the image's own reference, an area that is transparent outside.
    recipe.SetView(CDisplayRecipe::View{{0, 1, 2, 0}, 2, 1, ""});
    recipe.SetMask(CDisplayRecipe::Mask{folder.WideFile("a.aif"), false});
    ASSERT_TRUE(recipe.Write(folder.WideFile("look.json").c_str()));
    ASSERT_TRUE(read.Read(folder.WideFile("look.json").c_str()));
    EXPECT_EQ(read.GetView()->srs, "");
    EXPECT_EQ(read.GetJson().find("srs"), std::string::npos);
    EXPECT_FALSE(read.GetMask()->isBlack);
    EXPECT_NE(read.GetJson().find("\"outside\": \"transparent\""), std::string::npos);
}

TEST(DisplayRecipe, AFileWhoseBytesCannotBeReadSaysWhy) {
    CDisplayRecipe recipe;
    // The memory of this process, of which there is none at the beginning.
    EXPECT_FALSE(recipe.Read(L"/proc/self/mem"));
    const std::string reason = CGISDataSource::GetLastErrorText();
    EXPECT_EQ(reason.rfind("/proc/self/mem: ", 0), 0U) << reason;
    EXPECT_NE(reason.find("Input/output error"), std::string::npos) << reason;
}

TEST(DisplayRecipe, OnAFullDiskSaysThat) {
    const TemporaryFolder folder;
    const SmallDisk disk(folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount a file system";
    {
        std::ofstream filling(folder.Path() / "disk" / "full", std::ios::binary);
        for (const std::string page(4096, 'x'); filling.write(page.data(), 4096).flush();) {
        }
    }
    CDisplayRecipe recipe;
    ASSERT_TRUE(recipe.SetJson(PLAIN));
    EXPECT_FALSE(recipe.Write(folder.WideFile("disk/look.json").c_str()));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              folder.File("disk/look.json") + ": No space left on device");
}
