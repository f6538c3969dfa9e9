#pragma once

#include "zelto/datasource/DataProgress.h"

#include <string>
#include <utility>
#include <vector>

namespace zelto::test {

/// Remembers what it was told and cancels after a given number of steps.
class RecordingProgress : public CDataProgress {
  public:
    explicit RecordingProgress(int stepsBeforeCancel = -1) : m_stepsLeft(stepsBeforeCancel) {}

    void HostPrepare() override {}
    void BeginProgress(const wchar_t* title, int total) override {
        m_stages.emplace_back(title, total);
    }
    bool StepProgress(int percent, const wchar_t* message) override {
        m_steps.emplace_back(percent, message);
        return m_stepsLeft < 0 || m_stepsLeft-- > 0;
    }
    void HostFinish() override {}
    void HostShow() override {}
    void HostHide() override {}

    std::vector<std::pair<std::wstring, int>> m_stages; ///< title, total
    std::vector<std::pair<int, std::wstring>> m_steps;  ///< percent, message

  private:
    int m_stepsLeft;
};

} // namespace zelto::test
