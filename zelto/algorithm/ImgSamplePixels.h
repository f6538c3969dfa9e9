#pragma once

#include "zelto/Export.h"

#include <vector>

/// Training samples of one class: a list of samples, each holding one value per band in band
/// order. Copies are deep.
class ZELTO_API CImgSamplePixels {
  public:
    /// @param label the class value that the samples belong to
    explicit CImgSamplePixels(double label);
    CImgSamplePixels(const CImgSamplePixels& other);
    CImgSamplePixels& operator=(const CImgSamplePixels& other);
    ~CImgSamplePixels();

    double GetLable() const { return m_label; }
    /// Appends a sample.
    void Add(std::vector<double> sample);
    int GetSampleSize() const { return static_cast<int>(m_samples.size()); }
    /// Number of values in the first sample; 0 without samples.
    int GetElementSize() const;
    /// A copy of a sample; empty outside 0 ≤ index < GetSampleSize().
    std::vector<double> Get(int index) const;
    /// A value of a sample; 0 where there is none. A negative index and one beyond a count have
    /// always been refused with 0; one equal to a count is let through by the same tests and
    /// gives 0 as well. How many values there are is asked of the first sample.
    double Get(int index, int element) const;

  private:
    double m_label;
    std::vector<std::vector<double>> m_samples;
};
