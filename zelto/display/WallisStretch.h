#pragma once

#include "zelto/display/ImgStretch.h"

/// Wallis filter applied to the whole image: brings the mean and standard deviation of the
/// source close to target values, with contrast factor 5 and brightness weight 1, then clamps
/// and truncates:
/// y = (x − source mean) × 5 × target deviation / (5 × source deviation + target deviation / 5)
///     + target mean
class ZELTO_API CWallisStretch : public CImgStretch {
  public:
    /// The output bounds are stored and take no part in the function; the clamps do.
    CWallisStretch(StretchType type, double outputLow, double outputHigh, double sourceMean,
                   double sourceDeviation, double lowerClamp, double upperClamp, double targetMean,
                   double targetDeviation);
    ~CWallisStretch() override;

    unsigned char GetStretchValue8UB(double value) const override;

    double GetOutputLow() const { return m_outputLow; }
    double GetOutputHigh() const { return m_outputHigh; }
    double GetSourceMean() const { return m_sourceMean; }
    double GetSourceDeviation() const { return m_sourceDeviation; }
    double GetLowerClamp() const { return m_lowerClamp; }
    double GetUpperClamp() const { return m_upperClamp; }
    double GetTargetMean() const { return m_targetMean; }
    double GetTargetDeviation() const { return m_targetDeviation; }

  protected:
    double m_outputLow = 0.0;
    double m_outputHigh = 0.0;
    double m_sourceMean = 0.0;
    double m_sourceDeviation = 0.0;
    double m_lowerClamp = 0.0;
    double m_upperClamp = 0.0;
    double m_targetMean = 0.0;
    double m_targetDeviation = 0.0;
};
