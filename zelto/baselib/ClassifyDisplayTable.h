#pragma once

#include "zelto/Export.h"
#include "zelto/baselib/ClassifyDisplayItem.h"

#include <cstddef>
#include <vector>

/// Colours of the classes of a thematic display. A value belongs to the first class, in the
/// order added, whose range holds it.
class ZELTO_API CClassifyDisplayTable {
  public:
    /// @param itemCount how many classes will be added; they are added one by one all the same
    explicit CClassifyDisplayTable(int itemCount = 0);

    void AddClassifyItem(const CClassifyDisplayItem& item);
    int GetItemCount() const { return static_cast<int>(m_items.size()); }
    /// Null outside 0 ≤ index < GetItemCount().
    const CClassifyDisplayItem* GetItem(int index) const;

    /// Colour of a value; without a class all four are 0, which is transparent. May be called
    /// from several threads at once.
    /// @return whether the value belongs to a class
    bool GetColor(double value, unsigned char& red, unsigned char& green, unsigned char& blue,
                  unsigned char& alpha) const;

    /// The range of values that the table speaks of; stored for the host's legend.
    void SetMinMaxValue(double min, double max);
    double GetMinValue() const { return m_min; }
    double GetMaxValue() const { return m_max; }

  private:
    /// Values low ≤ v < high that belong to one item.
    struct Segment {
        double low = 0.0;
        double high = 0.0;
        std::size_t item = 0;
    };

    /// Ascending, never empty; a part of all segments, so that one in their middle is inserted
    /// quickly however many there are.
    using Chunk = std::vector<Segment>;

    /// Between two segments: before the one that it names, if there is one.
    struct Place {
        std::size_t chunk = 0;
        std::size_t at = 0;
    };

    void Claim(double low, double high, std::size_t item);
    Place FirstThatEndsAfter(double value) const;
    const Segment* SegmentAt(Place place) const;
    Place Next(Place place) const;
    Place Insert(Place place, const Segment& segment);
    const CClassifyDisplayItem* Find(double value) const;

    std::vector<CClassifyDisplayItem> m_items;
    /// The ranges without what earlier items took, disjoint and ascending: a colour is wanted
    /// for every pixel.
    std::vector<Chunk> m_segments;
    double m_min = 0.0;
    double m_max = 0.0;
};
