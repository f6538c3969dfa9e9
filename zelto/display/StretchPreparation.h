#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/DataProgress.h"
#include "zelto/datasource/Enumerations.h"
#include "zelto/datasource/StretchType.h"
#include "zelto/geometry/BoundingBox.h"
#include "zelto/geometry/PlatformTypes.h"

#include <optional>
#include <string>
#include <vector>

class CAOISource;
class CRasterBand;
class CRasterSource;
class CRegionStatistics;

namespace zelto {
struct BandPlan;
}

/// Sets a stretch on a source by name, with everything that it needs before a drawing: bounds,
/// histograms, tables, the statistics of a first drawing. An addition to the fixed interface; all
/// that it does goes through the display settings of the source and its bands, and a host may do
/// the same by hand.
///
/// | name | how values are shown | settings it takes |
/// |---|---|---|
/// | `none` | 8-bit values as they are, others from minimum to maximum | |
/// | `linear` | from minimum to maximum | ranges, gamma, region |
/// | `table` | the same through a gamma curve, 1.5 unless it is set | ranges, gamma, region |
/// | `percent` | between two percentiles, 2 and 98 unless set | clip, gamma, region |
/// | `stddev` | two deviations around the mean | gamma, region |
/// | `equalize` | equal shares of the histogram | region |
/// | `autolevels` | cuts a share off both ends of the histogram | threshold, region |
/// | `custom-equalize` | equal shares of the histogram between bounds | bounds, region |
/// | `zoom002`, `zoom` | through the bounds, in display values | bounds, region |
/// | `wallis` | to a model's mean and deviation per colour; three bands | Wallis model |
/// | `auto` | `none` for palettes, classes and 8-bit values, else `percent` | clip, gamma, region |
///
/// Without a region a stretch goes by the whole image: `linear`, `table` and `stddev` by the
/// bands' own statistics, `percent` by a regular sample of at most 2^22 values over all shown
/// bands, the histograms by what CRasterBand::GetHistogram() counts. With a region (a view, an
/// area) they go by the values in it, sampled in the same way; SetExact() has every value read
/// instead. Values are those that CRegionStatistics counts: no-data and what is not finite is left
/// out, zeros count (but not in the histograms of ranges that begin with zero).
///
/// @code
/// CStretchPreparation stretch(&scene);
/// stretch.SetStretch("percent");
/// stretch.SetView(box);                      // the bounds follow the view
/// if (stretch.Apply(nullptr) == GIS_SUCCESS)
///     scene.GetShowData(&box, w, h, picture.data(), true);
/// @endcode
///
/// Any number of preparations may be made for a source, one after the other: each puts the bands'
/// own statistics back first. The bands to show are chosen before.
class ZELTO_API CStretchPreparation {
  public:
    /// What a stretch can be told beside its name.
    enum class Setting { Clip, Ranges, Gamma, Region, Bounds, Threshold, WallisModel };

    /// Sample values that a stretch shows as its darkest and its brightest.
    struct Range {
        double low = 0.0;
        double high = 0.0;
    };

    /// What a band that is shown goes by.
    struct Band {
        int index = 0; ///< in the raster, counted from 0
        /// The ends of the stretch, in sample values. For 8-bit bands shown as they are 0 and 255;
        /// for `zoom002` and `zoom` the values that the bounds refer to; 0 and 0 where a palette or
        /// classes give the colours.
        Range range;
        __int64 count = 0; ///< values the range was found from; 0 for given and own ones
    };

    /// @param source open for display, not owned
    explicit CStretchPreparation(CRasterSource* source);

    /// The names, those of the engine's ten types first, in their order.
    static std::vector<std::string> GetStretchNames();
    /// The name of one of the engine's types; that of StretchLinear for any other value.
    static std::string GetStretchName(StretchType type);
    /// Whether a stretch has use for a setting; false for a name that is none.
    static bool Takes(const std::string& name, Setting setting);

    /// `auto` until told otherwise.
    /// @return false for a name that is none, which changes nothing
    bool SetStretch(const std::string& name);
    const std::string& GetStretch() const { return m_name; }

    // Settings. Those that the stretch does not take are refused by Apply().

    /// Percentages of the values that are darker than the low and not brighter than the high end.
    /// @return false unless 0 ≤ low < high ≤ 100, which changes nothing
    bool SetClip(double low, double high);
    /// Sample values to show from darkest to brightest: one range for all shown bands, or one for
    /// each. None: as the stretch finds them.
    /// @return false for one that is not finite or whose low end is not below its high one
    bool SetRanges(const std::vector<Range>& ranges);
    /// Exponents of the curve that display values go through, 255 · (v / 255)^(1 / gamma): one for
    /// all shown bands, or one for each. Above 1 is brighter. None: as the stretch has it.
    /// @return false for one that is not finite and above 0
    bool SetGamma(const std::vector<double>& gamma);
    /// Bounds of `zoom002` and `zoom`, in display values (0 and 255; in sample values for 8-bit
    /// bands under `zoom002`, where they are those of the standard-deviation stretch), and of
    /// `custom-equalize`, in sample values (0, and the maximum or 255 for 8-bit bands). What is not
    /// given is as said here.
    /// @return false unless they are numbers and low < high
    bool SetBounds(std::optional<double> low, std::optional<double> high);
    /// Fraction of the values that `autolevels` cuts off at each end, 0.01 unless set.
    /// @return false unless 0 ≤ threshold < 0.5
    bool SetThreshold(double threshold);
    /// Colour model of `wallis`, 1 unless set.
    /// @return false unless 0, 1 or 2
    bool SetWallisModel(int model);
    /// The stretch goes by the whole image.
    void SetImage();
    /// It goes by the part of the image in a box, in ground units.
    void SetView(const CBoundingBox& box);
    /// It goes by the part of the image in an area, not owned; null: the whole image.
    void SetArea(CAOISource* area);
    /// Whether every value of the region (the image, where there is none) is read instead of a
    /// sample or the bands' own statistics. For the stretches that take a region.
    void SetExact(bool exact) { m_exact = exact; }

    /// Whether the stretch can be drawn with the bands that the source shows: `wallis` takes three.
    bool SuitsShownBands() const;

    /// Finds what the stretch needs and sets it on the source and its shown bands.
    /// @param progress may be null; reports and cancels reading a region
    /// @return GIS_NOT_SUPPORTED for values that lie too close together for the stretches
    ///         that go by a histogram; GIS_FAILED for a setting that the stretch does not take, for
    ///         bands that it does not suit, for a region without values, when a band cannot be read
    ///         or when cancelled; CGISDataSource::GetLastErrorText() tells which. The stretch of
    ///         the source is then the former one, though the bands may have their own statistics
    ///         back.
    GISError Apply(CDataProgress* progress);

    /// The stretch that Apply() has set; differs from GetStretch() for `auto`.
    const std::string& GetAppliedStretch() const { return m_applied; }
    /// What the shown bands go by since Apply(), in their order.
    const std::vector<Band>& GetBands() const { return m_bands; }
    /// Whether Apply() took a sample of the region rather than all of its values.
    bool IsSampled() const { return m_sampled; }

  private:
    struct Plan;

    bool IsUsable() const;
    bool CheckSettings() const;
    Plan MakePlan() const;
    bool GoesByRegion(const Plan& plan) const;
    bool Measure(Plan& plan, CDataProgress* progress) const;
    bool CountBuckets(Plan& plan, CRegionStatistics& region, CDataProgress* progress) const;
    GISError Commit(const Plan& plan, CDataProgress* progress) const;
    GISError SetBand(const Plan& plan, const zelto::BandPlan& found, bool curved,
                     CDataProgress* progress) const;

    CRasterSource* m_source;
    std::string m_name = "auto";
    std::optional<Range> m_clip;
    std::vector<Range> m_ranges;
    std::vector<double> m_gamma;
    std::optional<double> m_low;
    std::optional<double> m_high;
    std::optional<double> m_threshold;
    std::optional<int> m_wallisModel;
    std::optional<CBoundingBox> m_view;
    CAOISource* m_area = nullptr;
    bool m_exact = false;
    std::string m_applied;
    std::vector<Band> m_bands;
    bool m_sampled = false;
};
