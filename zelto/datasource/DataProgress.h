#pragma once

#include "zelto/Export.h"

/// Progress of long operations, implemented by the host (a progress bar, a dialog). The engine
/// calls BeginProgress once per stage and StepProgress from whatever thread does the work.
///
/// The operations whose names start with `Host` belong to the host; the engine never calls them.
class ZELTO_API CDataProgress {
  public:
    CDataProgress() = default;
    virtual ~CDataProgress();

    virtual void HostPrepare() = 0;

    /// Starts a stage.
    /// @param title what is being done
    /// @param total the value that stands for "all done"
    virtual void BeginProgress(const wchar_t* title, int total) = 0;

    /// Reports how far the stage has come.
    /// @param percent progress in the units of BeginProgress' total
    /// @param message what is being done at the moment
    /// @return true to go on, false to cancel the operation
    virtual bool StepProgress(int percent, const wchar_t* message) = 0;

    virtual void HostFinish() = 0;
    virtual void HostShow() = 0;
    virtual void HostHide() = 0;

    /// Whether the display offers no cancel button; read by the host only.
    virtual void SetReadOnly(bool readOnly);

    /// Whether the display closes itself when the work is done; read by the host only.
    void SetAutoClose(bool autoClose) { m_autoClose = autoClose; }

  protected:
    bool m_autoClose = false;
    bool m_readOnly = false;
};

/// Bridge from GDAL's progress callback to a progress object.
/// @param complete fraction done, 0 … 1; reported as complete × 100, truncated
/// @param message GDAL's UTF-8 message, shown in place of "处理中：" when not null
/// @param progressData a CDataProgress*, or null for no reporting
/// @return 1 to go on, 0 when the host cancelled
ZELTO_API int GDALProgressFuncEx(double complete, const char* message, void* progressData);

/// Progress callback that reports nothing and always goes on.
ZELTO_API int GDALProgressFuncNone(double complete, const char* message, void* progressData);
