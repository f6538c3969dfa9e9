#pragma once

#include "zelto/baselib/Log.h"

#include <string>
#include <vector>

namespace zelto::test {

/// Is the process's logger while it lives and remembers what the engine reports.
class RecordingLog : public CLog {
  public:
    struct Record {
        int level;
        std::wstring file;
        std::wstring function;
        std::wstring message;
    };

    RecordingLog() : m_previous(m_pLogger) { m_pLogger = this; }
    ~RecordingLog() override { m_pLogger = m_previous; }

    std::vector<Record> m_records;

  protected:
    void WriteMessage(int level, const std::wstring& file, int /*line*/,
                      const std::wstring& function, const std::wstring& message) override {
        m_records.push_back({level, file, function, message});
    }

  private:
    CLog* m_previous;
};

} // namespace zelto::test
