#include "zelto/display/WallisStretch.h"

#include "zelto/display/internal/StretchFunctions.h"

CWallisStretch::CWallisStretch(StretchType type, double outputLow, double outputHigh,
                               double sourceMean, double sourceDeviation, double lowerClamp,
                               double upperClamp, double targetMean, double targetDeviation)
    : CImgStretch(type),
      m_outputLow(outputLow),
      m_outputHigh(outputHigh),
      m_sourceMean(sourceMean),
      m_sourceDeviation(sourceDeviation),
      m_lowerClamp(lowerClamp),
      m_upperClamp(upperClamp),
      m_targetMean(targetMean),
      m_targetDeviation(targetDeviation) {}

CWallisStretch::~CWallisStretch() = default;

unsigned char CWallisStretch::GetStretchValue8UB(double value) const {
    return zelto::WallisFunction(*this)(value);
}
