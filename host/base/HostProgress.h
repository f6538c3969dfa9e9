#pragma once

#include "zelto/datasource/DataProgress.h"

namespace zelto::host {

/// Base of our hosts' progress objects, to which it leaves the stages and the steps: none of them
/// steers a window by the operations whose names start with `Host`.
class HostProgress : public CDataProgress {
  public:
    void HostPrepare() final {}
    void HostFinish() final {}
    void HostShow() final {}
    void HostHide() final {}
};

} // namespace zelto::host
