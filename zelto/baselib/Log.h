#pragma once

#include "zelto/Export.h"

#include <string>

/// Where the engine's own messages go. The host derives a logger, or uses CFileLog, and puts it
/// into m_pLogger; while that is null nothing is written.
///
/// Levels used by the engine: 2 creation problems, 3 notices, 4 failures.
class ZELTO_API CLog {
  public:
    /// The process's logger, not owned; null at first.
    static CLog* m_pLogger;

    CLog() = default;
    CLog(const CLog&) = delete;
    CLog& operator=(const CLog&) = delete;
    virtual ~CLog();

    /// Formats a message as printf does and hands it to WriteMessage(). In the format, %s takes
    /// a wide string and %hs a narrow one in UTF-8; numbers have a '.' whatever the locale. A
    /// message that cannot be formatted is its format.
    /// @param file name of the source that reports, without extension
    void WriteLog(int level, const wchar_t* file, int line, const wchar_t* function,
                  const wchar_t* format, ...);

  protected:
    /// Receives each message; may be called from any thread that uses the engine.
    virtual void WriteMessage(int level, const std::wstring& file, int line,
                              const std::wstring& function, const std::wstring& message) = 0;
};

/// Appends each message as one UTF-8 line with time and level to a file. A file that cannot be
/// opened loses the message.
class ZELTO_API CFileLog : public CLog {
  public:
    explicit CFileLog(const std::wstring& path) : m_path(path) {}

  protected:
    void WriteMessage(int level, const std::wstring& file, int line, const std::wstring& function,
                      const std::wstring& message) override;

  private:
    std::wstring m_path;
};
