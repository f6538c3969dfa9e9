#include "zelto/algorithm/ImgSamplePixels.h"

#include <utility>

CImgSamplePixels::CImgSamplePixels(double label) : m_label(label) {}

CImgSamplePixels::CImgSamplePixels(const CImgSamplePixels& other) = default;
CImgSamplePixels& CImgSamplePixels::operator=(const CImgSamplePixels& other) = default;
CImgSamplePixels::~CImgSamplePixels() = default;

void CImgSamplePixels::Add(std::vector<double> sample) {
    m_samples.push_back(std::move(sample));
}

int CImgSamplePixels::GetElementSize() const {
    return m_samples.empty() ? 0 : static_cast<int>(m_samples.front().size());
}

std::vector<double> CImgSamplePixels::Get(int index) const {
    if (index < 0 || index >= GetSampleSize())
        return {};
    return m_samples[static_cast<std::size_t>(index)];
}

double CImgSamplePixels::Get(int index, int element) const {
    if (index < 0 || index > GetSampleSize() || element < 0 || element > GetElementSize())
        return 0.0;
    // The tests above let an index equal to its count through, and the samples need not all be
    // as long as the first.
    const auto i = static_cast<std::size_t>(index);
    const auto j = static_cast<std::size_t>(element);
    return i < m_samples.size() && j < m_samples[i].size() ? m_samples[i][j] : 0.0;
}
