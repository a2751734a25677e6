#include "CancelFlag.h"

namespace qv::call {

namespace {

thread_local const CancelFlag* thread_flag = nullptr;

}  // namespace

void SetCancelFlag(const CancelFlag* flag) { thread_flag = flag; }

const CancelFlag* CancelFlagOfThisThread() { return thread_flag; }

bool IsCancelled() { return thread_flag != nullptr && *thread_flag != 0; }

}  // namespace qv::call
