#include "zelto/baselib/internal/Operation.h"

namespace zelto {

namespace {

thread_local int s_depth = 0;

} // namespace

OperationScope::OperationScope() {
    if (s_depth++ == 0)
        ClearLastError();
}

OperationScope::~OperationScope() {
    --s_depth;
}

} // namespace zelto
